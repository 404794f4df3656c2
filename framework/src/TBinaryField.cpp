// TBinaryField, TBytesField and TVarBytesField: fixed and variable byte fields (framework layer).
#include "TBinaryField.h"

#include <cstring>
#include <vector>

#include "DataSetMessages.h"
#include "TClassInfo.h"

namespace fw {

TBinaryField::TBinaryField(TComponent* AOwner) : TField(AOwner) { FSize = 16; }
TBytesField::TBytesField(TComponent* AOwner) : TBinaryField(AOwner) { SetDataType(ftBytes); }
TVarBytesField::TVarBytesField(TComponent* AOwner) : TBinaryField(AOwner) { SetDataType(ftVarBytes); }

void TBinaryField::CheckSize(int Value) const {
  if (Value < 0 || Value > 65535) DatabaseError(SInvalidFieldSize, this);
}

std::string TBinaryField::GetAsString() const {
  std::string bytes;
  return GetBytes(bytes) ? bytes : std::string();
}

void TBinaryField::SetAsString(const std::string& Value) { SetBytes(Value); }

Variant TBinaryField::GetAsVariant() const {
  std::string bytes;
  if (!GetBytes(bytes)) return Null();
  return VarByteArrayOf(bytes.data(), bytes.size());
}

void TBinaryField::SetVarValue(const Variant& Value) {
  if (Value.Type() == (varArray | varByte))
    SetBytes(std::string(Value.Bytes()));
  else
    SetBytes(Value.AsString());
}

bool TBytesField::GetBytes(std::string& Bytes) const {
  Bytes.assign(static_cast<std::size_t>(Size()), '\0');
  return GetData(Bytes.data());
}

void TBytesField::SetBytes(const std::string& Bytes) {
  std::string padded = Bytes.substr(0, static_cast<std::size_t>(Size()));
  padded.resize(static_cast<std::size_t>(Size()), '\0');
  SetData(padded.data());
}

bool TVarBytesField::GetBytes(std::string& Bytes) const {
  std::vector<unsigned char> buffer(static_cast<std::size_t>(Size()) + 2, 0);
  if (!GetData(buffer.data())) return false;
  std::size_t length = buffer[0] | (static_cast<std::size_t>(buffer[1]) << 8);
  length = std::min(length, static_cast<std::size_t>(Size()));
  Bytes.assign(reinterpret_cast<const char*>(buffer.data()) + 2, length);
  return true;
}

void TVarBytesField::SetBytes(const std::string& Bytes) {
  const std::size_t length = std::min(Bytes.size(), static_cast<std::size_t>(Size()));
  std::vector<unsigned char> buffer(static_cast<std::size_t>(Size()) + 2, 0);
  buffer[0] = static_cast<unsigned char>(length & 0xFF);
  buffer[1] = static_cast<unsigned char>(length >> 8);
  std::memcpy(buffer.data() + 2, Bytes.data(), length);
  SetData(buffer.data());
}

const TClassInfo& TBinaryField::StaticClass() {
  static const TClassInfo info = TClassBuilder<TBinaryField>("TBinaryField", &TField::StaticClass()).Build();
  return info;
}

const TClassInfo& TBytesField::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TBytesField>("TBytesField", &TBinaryField::StaticClass()).Creatable().Build();
  return info;
}

const TClassInfo& TVarBytesField::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TVarBytesField>("TVarBytesField", &TBinaryField::StaticClass()).Creatable().Build();
  return info;
}

}  // namespace fw
