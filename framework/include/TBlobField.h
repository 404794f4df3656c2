// TBlobField, TMemoField and TGraphicField: fields whose data lives outside the record buffer
// (framework layer).
#pragma once

#include <memory>
#include <string>

#include "TField.h"
#include "TStream.h"

namespace fw {

/// A blob field reads and writes its content only through DataSet()->CreateBlobStream: AsString
/// opens a bmRead stream, SetAsString a bmWrite stream; Clear opens and frees a bmWrite stream
/// (the field becomes null). DataSize is 0; Size is an inline size taken from the definition.
class TBlobField : public TField {
 public:
  explicit TBlobField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }

  bool IsBlob() const override { return true; }
  TFieldType BlobType() const { return DataType(); }
  /// Only blob types are accepted (else EDatabaseError).
  void SetBlobType(TFieldType Value);
  /// True once a written stream was committed in the current edit; the dataset resets it
  /// when the edit ends.
  bool Modified() const { return FModified; }
  void SetModified(bool Value) { FModified = Value; }
  /// Bytes of content (0 for null).
  int64_t BlobSize() const;
  /// With Modified: content size 0; else the dataset's null test.
  bool IsNull() const override;
  void Clear() override;

  void SetAsString(const std::string& Value) override;
  /// Replaces the content by all of `Stream` (read from its start).
  void LoadFromStream(TStream& Stream);
  /// Writes the content to `Stream` at its position.
  void SaveToStream(TStream& Stream) const;
  void LoadFromFile(const std::string& FileName);
  void SaveToFile(const std::string& FileName) const;

 protected:
  std::string GetAsString() const override;
  /// The content as a string, or Null.
  Variant GetAsVariant() const override;
  void SetVarValue(const Variant& Value) override;
  /// Display text is the class description ("(BLOB)", "(memo)"); edit text the content.
  void GetText(std::string& Text, bool DisplayText) const override;
  void CheckSize(int Value) const override;
  /// A stream from the dataset; raises when the dataset gives none.
  std::unique_ptr<TStream> OpenStream(TBlobStreamMode Mode) const;

 private:
  bool FModified = false;
};

/// Text blob (ftMemo); Transliterate defaults to true.
class TMemoField : public TBlobField {
 public:
  explicit TMemoField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }
  bool Transliterate() const { return FTransliterate; }
  void SetTransliterate(bool Value) { FTransliterate = Value; }

 private:
  bool FTransliterate = true;
};

/// Picture blob (ftGraphic).
class TGraphicField : public TBlobField {
 public:
  explicit TGraphicField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }
};

}  // namespace fw
