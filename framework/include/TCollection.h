// TCollection and TCollectionItem: owned, ordered lists of persistent items (framework layer).
#pragma once

#include <string>
#include <vector>

#include "TPersistent.h"

namespace fw {

class TCollection;

enum TCollectionNotification : uint8_t { cnAdded, cnExtracting, cnDeleting };

/// An item of a collection. Its constructor inserts it into `collection` (when not null), which
/// then owns it; destroying the item (`delete`) takes it out of its collection.
class TCollectionItem : public TPersistent {
 public:
  explicit TCollectionItem(TCollection* collection);
  ~TCollectionItem() override;

  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override;

  TCollection* Collection() const { return FCollection; }
  /// Moves the item to another collection (nullptr: the caller then owns it).
  void SetCollection(TCollection* value);
  /// Position in the collection, -1 without one.
  int Index() const;
  /// Moves the item within its collection (clamped).
  void SetIndex(int value);
  /// Unique within the collection, never reused; assigned on insertion.
  int ID() const { return FID; }
  /// Name shown by the designer; the base gives the class name.
  virtual std::string DisplayName() const;
  /// "CollectionName[Index]".
  std::string GetNamePath() const override;

 protected:
  /// Tells the collection the item changed (`Update(this)`, or `Update(nullptr)` when `all`).
  void Changed(bool all);

 private:
  friend class TCollection;
  TCollection* FCollection = nullptr;
  int FID = 0;
};

/// An ordered list of items it owns. Descendants create their item class in `CreateItem`.
/// Indexes out of range raise EListError.
class TCollection : public TPersistent {
 public:
  /// `owner` is the object that publishes the collection (for names and the designer).
  explicit TCollection(TPersistent* owner = nullptr);
  ~TCollection() override;

  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override;

  TPersistent* Owner() const { return FOwner; }
  int Count() const { return static_cast<int>(FItems.size()); }
  TCollectionItem* Items(int index) const;
  /// Creates an item with CreateItem and returns it (owned by the collection).
  TCollectionItem* Add();
  /// Creates an item and moves it to `index`.
  TCollectionItem* Insert(int index);
  /// Destroys item `index`.
  void Delete(int index);
  /// Destroys every item (last first).
  void Clear();
  TCollectionItem* FindItemID(int id) const;
  /// Nested update brackets; at the outermost EndUpdate, Update(nullptr) runs once.
  void BeginUpdate();
  void EndUpdate();
  int UpdateCount() const { return FUpdateCount; }
  /// Replaces the items by copies of another collection's (item Assign); other sources go
  /// to TPersistent::Assign.
  void Assign(const TPersistent& source) override;
  std::string GetNamePath() const override;
  /// Name of the property that publishes the collection, for GetNamePath ("Items" default).
  void SetPropName(std::string name) { FPropName = std::move(name); }

 protected:
  // ---- descendants must implement ----
  /// Returns `new TMyItem(this)` (whose constructor inserts it).
  virtual TCollectionItem* CreateItem() = 0;

  // ---- descendants may override ----
  /// After a change: `item` changed, or (nullptr) the whole collection did. Base: nothing.
  virtual void Update(TCollectionItem* /*item*/) {}
  /// Item added, about to be extracted, or about to be deleted. Base: nothing.
  virtual void Notify(TCollectionItem* /*item*/, TCollectionNotification /*action*/) {}
  /// Runs Update(item) unless inside BeginUpdate/EndUpdate.
  void Changed(TCollectionItem* item);

 private:
  friend class TCollectionItem;
  void InsertItem(TCollectionItem* item);
  void RemoveItem(TCollectionItem* item);

  TPersistent* FOwner;
  std::vector<TCollectionItem*> FItems;
  int FNextID = 0;
  int FUpdateCount = 0;
  std::string FPropName = "Items";
};

}  // namespace fw
