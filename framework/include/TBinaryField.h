// TBinaryField, TBytesField and TVarBytesField: fixed and variable byte fields (framework layer).
#pragma once

#include "TField.h"

namespace fw {

/// Base of the byte classes; Size is the number of bytes (default 16).
class TBinaryField : public TField {
 public:
  explicit TBinaryField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }

  /// The bytes as characters (Bytes: zero-padded to Size; VarBytes: at most Size).
  void SetAsString(const std::string& Value) override;

 protected:
  std::string GetAsString() const override;
  /// A byte array, or Null.
  Variant GetAsVariant() const override;
  /// Byte arrays and strings.
  void SetVarValue(const Variant& Value) override;
  void CheckSize(int Value) const override;
  /// The stored bytes; false when null.
  virtual bool GetBytes(std::string& Bytes) const = 0;
  virtual void SetBytes(const std::string& Bytes) = 0;
};

/// Native format: exactly Size bytes.
class TBytesField : public TBinaryField {
 public:
  explicit TBytesField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }
  int DataSize() const override { return Size(); }

 protected:
  bool GetBytes(std::string& Bytes) const override;
  void SetBytes(const std::string& Bytes) override;
};

/// Native format: a little-endian uint16 length followed by up to Size bytes (Size + 2 total).
class TVarBytesField : public TBinaryField {
 public:
  explicit TVarBytesField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }
  int DataSize() const override { return Size() + 2; }

 protected:
  bool GetBytes(std::string& Bytes) const override;
  void SetBytes(const std::string& Bytes) override;
};

}  // namespace fw
