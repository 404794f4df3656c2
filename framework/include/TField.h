// TField: one column of a dataset, the base of every typed field class (framework layer).
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "DataSetTypes.h"
#include "SystemTypes.h"
#include "TComponent.h"
#include "Variant.h"

namespace fw {

class TDataSet;
class TFieldDef;
class TField;

using TFieldNotifyEvent = std::function<void(TField* Sender)>;
/// OnGetText(Sender, Text, DisplayText): fill `Text`; `DisplayText` false asks for edit text.
using TFieldGetTextEvent = std::function<void(TField* Sender, std::string& Text, bool DisplayText)>;
using TFieldSetTextEvent = std::function<void(TField* Sender, const std::string& Text)>;

/// A field reads and writes one value of the dataset's current record through
/// TDataSet::GetFieldData/SetFieldData, in the native buffer format of its DataType (DataSize
/// bytes). The base class has no value type: every AsXxx conversion it does not override raises
/// EDatabaseError "invalid type conversion". A field belongs to at most one dataset; it is
/// destroyed with its dataset or with its owner, whichever goes first.
class TField : public TComponent {
 public:
  explicit TField(TComponent* AOwner);
  ~TField() override;
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }
  /// Clears LookupDataSet when it is removed.
  void Notification(TComponent* AComponent, TOperation Operation) override;
  /// Form streaming: a field is written inside its dataset, and joins the dataset named by the
  /// enclosing object once its own properties (FieldName) have been read.
  bool HasParent() const override { return true; }
  TComponent* GetParentComponent() const override;
  void SetParentComponent(TComponent* Parent) override;

  // --- Properties -------------------------------------------------------------------------
  /// The dataset this field belongs to. Setting it requires both the old and the new dataset to
  /// be inactive (else EDatabaseError); the field leaves the old dataset's Fields and joins the
  /// new one's (a duplicate FieldName there raises and leaves the field where it was).
  TDataSet* DataSet() const { return FDataSet; }
  void SetDataSet(TDataSet* Value);
  const std::string& FieldName() const { return FFieldName; }
  /// Raises EDatabaseError when another field of the dataset already has the name.
  void SetFieldName(const std::string& Value);
  TFieldType DataType() const { return FDataType; }
  TFieldKind FieldKind() const { return FFieldKind; }
  /// Raises unless the dataset is inactive.
  void SetFieldKind(TFieldKind Value);
  bool Calculated() const { return FFieldKind == fkCalculated; }
  void SetCalculated(bool Value) { SetFieldKind(Value ? fkCalculated : fkData); }
  bool Lookup() const { return FFieldKind == fkLookup; }
  void SetLookup(bool Value) { SetFieldKind(Value ? fkLookup : fkData); }
  /// 1-based number of the bound field definition; -1 for calculated and lookup fields; 0 while
  /// unbound.
  int FieldNo() const { return FFieldNo; }
  /// Offset in the calculated-field area (calculated/lookup fields); index among blob fields
  /// (blob fields); unused otherwise.
  int Offset() const { return FOffset; }
  int Size() const { return FSize; }
  /// Raises unless the dataset is inactive, and for a size the class cannot take.
  void SetSize(int Value);
  /// Bytes of the native value (see the typed classes); 0 for the base class and blobs.
  virtual int DataSize() const { return 0; }
  /// Position in DataSet()->Fields(); setting moves the field (clamped) and sends layout and list
  /// change events. -1 without dataset.
  int Index() const;
  void SetIndex(int Value);
  bool Required() const { return FRequired; }
  void SetRequired(bool Value) { FRequired = Value; }
  bool ReadOnly() const { return FReadOnly; }
  void SetReadOnly(bool Value);
  bool Visible() const { return FVisible; }
  void SetVisible(bool Value);
  const std::string& DisplayLabel() const { return FDisplayLabel.empty() ? FFieldName : FDisplayLabel; }
  void SetDisplayLabel(const std::string& Value);
  /// DisplayLabel when set, else FieldName.
  const std::string& DisplayName() const { return DisplayLabel(); }
  /// 0 stands for the class default (GetDefaultWidth).
  int DisplayWidth() const { return FDisplayWidth > 0 ? FDisplayWidth : GetDefaultWidth(); }
  void SetDisplayWidth(int Value);
  TAlignment Alignment() const { return FAlignment; }
  void SetAlignment(TAlignment Value);
  const std::string& EditMask() const { return FEditMask; }
  void SetEditMask(const std::string& Value) { FEditMask = Value; }
  /// The bound field definition while the dataset is open, else null.
  TFieldDef* FieldDef() const { return FFieldDef; }
  /// Not ReadOnly, kind fkData or fkInternalCalc, dataset active and DataSet()->CanModify().
  bool CanModify() const;
  /// True for the blob classes only.
  virtual bool IsBlob() const { return false; }

  // Lookup definition (kind fkLookup). Setting LookupDataSet registers a free notification.
  TDataSet* LookupDataSet() const { return FLookupDataSet; }
  void SetLookupDataSet(TDataSet* Value);
  const std::string& KeyFields() const { return FKeyFields; }
  void SetKeyFields(const std::string& Value) { FKeyFields = Value; }
  const std::string& LookupKeyFields() const { return FLookupKeyFields; }
  void SetLookupKeyFields(const std::string& Value) { FLookupKeyFields = Value; }
  const std::string& LookupResultField() const { return FLookupResultField; }
  void SetLookupResultField(const std::string& Value) { FLookupResultField = Value; }
  /// With LookupCache the (key, value) pairs are read once at binding (RefreshLookupList).
  bool LookupCache() const { return FLookupCache; }
  void SetLookupCache(bool Value) { FLookupCache = Value; }
  /// Re-reads the lookup cache from every record of LookupDataSet (its position and scroll
  /// state are restored; controls are disabled meanwhile).
  void RefreshLookupList();

  // --- Values -----------------------------------------------------------------------------
  // Getters read the dataset's current buffer (see TDataSet::GetFieldData); setters write it
  // and require an editing state. Conversions a class does not support raise EDatabaseError.
  std::string AsString() const { return GetAsString(); }
  virtual void SetAsString(const std::string& Value);
  int32_t AsInteger() const { return GetAsInteger(); }
  virtual void SetAsInteger(int32_t Value);
  int64_t AsLargeInt() const { return GetAsLargeInt(); }
  virtual void SetAsLargeInt(int64_t Value);
  double AsFloat() const { return GetAsFloat(); }
  virtual void SetAsFloat(double Value);
  /// Currency (value x 10000). Defaults to AsFloat.
  Currency AsCurrency() const { return GetAsCurrency(); }
  virtual void SetAsCurrency(Currency Value);
  bool AsBoolean() const { return GetAsBoolean(); }
  virtual void SetAsBoolean(bool Value);
  TDateTime AsDateTime() const { return GetAsDateTime(); }
  virtual void SetAsDateTime(TDateTime Value);
  /// The value as a variant (Null when null). Setting Null clears the field; an EVariantError
  /// raised by the conversion becomes EDatabaseError. Unassigned converts like 0 / "" / false.
  Variant Value() const { return GetAsVariant(); }
  void SetValue(const Variant& Value);
  Variant AsVariant() const { return GetAsVariant(); }
  void SetAsVariant(const Variant& Value) { SetValue(Value); }
  /// Values before editing, after editing and as stored: read through the dataset's temporary
  /// states dsOldValue / dsNewValue / dsCurValue.
  Variant OldValue() const;
  Variant NewValue() const;
  void SetNewValue(const Variant& Value);
  Variant CurValue() const;
  /// DisplayText: OnGetText(.., true) if set, else GetText(.., true). Text: the same for editing.
  std::string DisplayText() const;
  std::string Text() const;
  /// OnSetText if set, else SetAsString.
  void SetText(const std::string& Value);

  /// Reads the value in native format (NativeFormat true) or in the class's plain form into
  /// `Buffer` (DataSize bytes; may be null to test for null). Returns false for null. While the
  /// field is validating, returns the value under validation. Raises without dataset.
  bool GetData(void* Buffer, bool NativeFormat = true) const;
  /// Writes the value; a null `Buffer` sets null. Raises without dataset.
  void SetData(const void* Buffer, bool NativeFormat = true);
  /// !GetData(nullptr).
  virtual bool IsNull() const;
  /// Sets the field null (SetData(nullptr)).
  virtual void Clear();
  /// Runs OnValidate with `Buffer` as the pending value (reads inside the handler see it).
  /// Raising rejects the write. Called by the dataset's SetFieldData before storing.
  void Validate(const void* Buffer);
  /// Fires OnChange; the dataset calls it on deFieldChange.
  virtual void Change();
  /// Sends deFocusControl for this field to the dataset's links.
  void FocusControl();
  /// Assigns one element of an open array: Unassigned leaves the field unchanged, Null clears,
  /// anything else goes to SetValue.
  void AssignValue(const Variant& Value);
  /// Copies the value of another field (null clears); a null `Source` clears.
  void Assign(const TField* Source);

  // --- Events -----------------------------------------------------------------------------
  TFieldNotifyEvent OnChange;
  TFieldNotifyEvent OnValidate;
  TFieldGetTextEvent OnGetText;
  TFieldSetTextEvent OnSetText;

 protected:
  friend class TDataSet;
  friend class TFields;
  friend class TFieldDef;
  friend class TFieldDefs;

  // --- Descendants may override ------------------------------------------------------------
  virtual std::string GetAsString() const;
  virtual int32_t GetAsInteger() const;
  virtual int64_t GetAsLargeInt() const;
  virtual double GetAsFloat() const;
  virtual Currency GetAsCurrency() const;
  virtual bool GetAsBoolean() const;
  virtual TDateTime GetAsDateTime() const;
  /// Base: raises the conversion error (only a class with a value type has a variant).
  virtual Variant GetAsVariant() const;
  /// Converts a non-null, non-empty variant into the field (base: raises).
  virtual void SetVarValue(const Variant& Value);
  /// Text for display (`DisplayText` true) or editing. Base: AsString.
  virtual void GetText(std::string& Text, bool DisplayText) const;
  /// Width used when DisplayWidth is 0. Base: 10.
  virtual int GetDefaultWidth() const { return 10; }
  /// Raises when the class cannot take `Value` as its Size. Base: only 0 is allowed.
  virtual void CheckSize(int Value) const;

  void ReadState(TReader& Reader) override;
  /// For the typed constructors.
  void SetDataType(TFieldType Value) { FDataType = Value; }
  /// Raises "invalid type conversion to `TypeName` in field X".
  [[noreturn]] void AccessError(const std::string& TypeName) const;
  /// Raises "invalid value for field X".
  [[noreturn]] void InvalidValueError(const std::string& Text) const;
  /// Sends deLayoutChange (`LayoutAffected`) or deDataSetChange to an active dataset.
  void PropertyChanged(bool LayoutAffected);
  /// Class name shortened to the description used by the base AsString ("BLOB", "Memo").
  std::string ClassDescription() const;
  /// Looks the value up in LookupDataSet for the current record (Null when not found).
  Variant CalcLookupValue() const;

  int FSize = 0;
  TFieldDef* FFieldDef = nullptr;

 private:
  Variant StateValue(TDataSetState TempState) const;

  TDataSet* FDataSet = nullptr;
  std::string FFieldName;
  TFieldType FDataType = ftUnknown;
  TFieldKind FFieldKind = fkData;
  int FFieldNo = 0;
  int FOffset = 0;
  bool FRequired = false;
  bool FReadOnly = false;
  bool FVisible = true;
  std::string FDisplayLabel;
  int FDisplayWidth = 0;
  TAlignment FAlignment = taLeftJustify;
  std::string FEditMask;
  TDataSet* FLookupDataSet = nullptr;
  std::string FKeyFields;
  std::string FLookupKeyFields;
  std::string FLookupResultField;
  bool FLookupCache = false;
  std::vector<std::pair<Variant, Variant>> FLookupList;
  TDataSet* FPendingDataSet = nullptr;
  bool FValidating = false;
  const void* FValueBuffer = nullptr;
};

/// Factory of a field class (the framework's class reference): creates a field owned by `Owner`.
using TFieldClass = TField* (*)(TComponent* Owner);

}  // namespace fw
