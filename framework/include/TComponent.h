// TComponent: ownership, names, component state and removal notices (framework layer).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "TPersistent.h"
#include "TSet.h"

namespace fw {

class TReader;
class TWriter;

enum TComponentStateFlag : uint8_t {
  csLoading,           // being read from a form file; cleared by Loaded()
  csReading,           // its own properties are being read
  csWriting,           // being written to a form file
  csDestroying,        // destruction has begun (also set on everything it owns)
  csDesigning,         // design time
  csAncestor,
  csUpdating,          // between Updating() and Updated()
  csFixups,            // has unresolved component references while reading
  csFreeNotification,  // some component asked to be told when this one is destroyed
  csInline,
  csDesignInstance,
};
using TComponentState = TSet<TComponentStateFlag>;

enum TOperation : uint8_t { opInsert, opRemove };

/// Base of all components. A component may have an Owner; the owner destroys what it owns.
///
/// Lifetime: a component with an owner belongs to that owner. A component without owner belongs
/// to whoever created it, who releases it with `Free()` (or a `TComponentPtr`). Plain `delete`
/// also works, but `Free()` marks the component csDestroying before any destructor runs, so
/// descendant destructors can test it; prefer `Free()`.
///
/// Destruction (`Free()`): (1) `Destroying()` sets csDestroying on it and everything it owns;
/// (2) every free-notification partner, last registered first, is taken off the list and told
/// `Notification(this, opRemove)`; (3) owned components are destroyed last-inserted first, each
/// unlinked silently, except those marked csFreeNotification, which are removed with an opRemove
/// broadcast to the remaining siblings; (4) if it still has an owner, the owner removes it with
/// an opRemove broadcast. Steps 2-4 run in ~TComponent, after descendant destructors: a
/// descendant whose owned components call back into it while dying calls `DestroyComponents()`
/// first thing in its own destructor.
class TComponent : public TPersistent {
 public:
  /// Inserts itself into `owner` (may be nullptr); see InsertComponent.
  explicit TComponent(TComponent* owner);
  ~TComponent() override;

  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override;

  // ---- properties ----
  const std::string& Name() const { return FName; }
  /// Empty or an identifier (letter or '_' first, then letters, digits, '_'); otherwise
  /// EComponentError. The owner refuses a name another owned component has (case-insensitive,
  /// EComponentError), unless the change is only in case. Empty names never collide.
  virtual void SetName(const std::string& value);
  TComponent* Owner() const { return FOwner; }
  int ComponentCount() const { return static_cast<int>(FComponents.size()); }
  /// Owned component `index` in insertion order; EListError when out of range.
  TComponent* Components(int index) const;
  /// Position in the owner's list, -1 without owner.
  int ComponentIndex() const;
  /// Moves this component within its owner's list (clamped to the list; no-op without owner).
  void SetComponentIndex(int value);
  TComponentState ComponentState() const { return FComponentState; }
  int32_t Tag() const { return FTag; }
  void SetTag(int32_t value) { FTag = value; }
  /// The component's Name.
  std::string GetNamePath() const override { return FName; }

  // ---- methods ----
  /// Destroys this component (see the class comment). Call on a non-null pointer only.
  void Free();
  /// Takes ownership of `c`: hooks ValidateContainer/ValidateInsert, rename validation, removal
  /// from a previous owner, append, csDesigning propagation, then Notification(c, opInsert)
  /// broadcast to everything this owner owns.
  void InsertComponent(TComponent* c);
  /// Releases ownership of `c` (which must be owned by this): Notification(c, opRemove)
  /// broadcast first, then unlink (c's Owner becomes nullptr) and clear its csDesigning.
  void RemoveComponent(TComponent* c);
  /// Directly owned component named `name` (case-insensitive); nullptr for "" or none.
  TComponent* FindComponent(std::string_view name) const;
  /// Asks that `c` be told `c->Notification(this, opRemove)` when this component is destroyed
  /// (and this one when `c` is). Idempotent. Between two components of the same owner nothing is
  /// stored: this component is marked csFreeNotification so that the owner broadcasts its
  /// removal, also during the owner's own destruction.
  void FreeNotification(TComponent* c);
  /// Undoes FreeNotification on both sides.
  void RemoveFreeNotification(TComponent* c);
  /// Destroys every owned component, last-inserted first (step 3 of destruction).
  void DestroyComponents();
  /// Sets csDestroying on this component and, recursively, on what it owns (stops at a component
  /// that already has it).
  void Destroying();
  /// Sets or clears csDesigning on this component and everything it owns.
  void SetDesigning(bool value);
  virtual void Updating();
  virtual void Updated();

  /// Removal and insertion notices. The base, on opRemove, drops `c` from the free-notify lists
  /// (both sides), then forwards the call to every owned component, last to first. Overrides call
  /// the base and clear any pointer they keep to `c`.
  virtual void Notification(TComponent* c, TOperation operation);

  // ---- streaming hooks (descendants may override) ----
  /// True when the component is written inside a parent object rather than directly in the root
  /// (a field inside its dataset). Base: false.
  virtual bool HasParent() const { return false; }
  /// The enclosing object in a form file; base: nullptr.
  virtual TComponent* GetParentComponent() const { return nullptr; }
  /// Called by the form reader right after creating a nested object, before its properties are
  /// read, with the enclosing object (csLoading is set, csReading not yet). Base: nothing. A
  /// component that must join its parent only once its properties are known (a field checks its
  /// FieldName against its dataset's fields) remembers the parent here and joins in ReadState.
  virtual void SetParentComponent(TComponent* /*parent*/) {}
  /// Lists the components written nested inside this one, in order. Base: when `this` is the
  /// root, every owned component without a parent (HasParent() false); otherwise none. A dataset
  /// lists its persistent fields.
  virtual void GetChildren(const std::function<void(TComponent*)>& proc, TComponent* root) const;

 protected:
  // ---- descendants may override ----
  /// Called once the whole form is read and references are resolved; clears csLoading.
  /// Overrides call the base first, then perform what they deferred (open, connect).
  virtual void Loaded();
  /// Reads this component's own properties from the form reader (csReading is set). Overrides
  /// call the base, then act on the values read (e.g. join the parent noted by
  /// SetParentComponent).
  virtual void ReadState(TReader& reader);
  /// Lets the owner refuse renaming `c` from `curName` to `newName`; the base raises
  /// EComponentError on a duplicate among its owned components.
  virtual void ValidateRename(TComponent* c, std::string_view curName, std::string_view newName) const;
  /// Lets `c` refuse this component as its new owner (`c->ValidateContainer(this)` is called
  /// first by InsertComponent). Base: accepts.
  virtual void ValidateContainer(TComponent* /*container*/) {}
  /// Lets this owner refuse inserting `c`. Base: accepts.
  virtual void ValidateInsert(TComponent* /*c*/) {}

  /// Sets or clears one state flag (for descendants and the form reader).
  void SetComponentStateFlag(TComponentStateFlag flag, bool on);

 private:
  friend class TReader;
  friend class TWriter;
  void Unlink(TComponent* c);
  void RemoveNotify(TComponent* c);

  std::string FName;
  TComponent* FOwner = nullptr;
  std::vector<TComponent*> FComponents;
  std::vector<TComponent*> FFreeNotifies;
  TComponentState FComponentState;
  int32_t FTag = 0;
};

/// unique_ptr deleter that releases a component with Free().
struct TComponentDeleter {
  void operator()(TComponent* c) const {
    if (c != nullptr) c->Free();
  }
};
/// Owning pointer for a component without owner.
template <class T>
using TComponentPtr = std::unique_ptr<T, TComponentDeleter>;

/// Frees `p` (if not null) and sets it to nullptr.
template <class T>
void FreeAndNil(T*& p) {
  T* q = p;
  p = nullptr;
  if (q != nullptr) q->Free();
}

/// True when `name` is a valid identifier (letter or '_' first, then letters, digits, '_').
bool IsValidIdent(std::string_view name);

}  // namespace fw
