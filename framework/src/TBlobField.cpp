// TBlobField, TMemoField and TGraphicField: fields whose data lives outside the record buffer
// (framework layer).
#include "TBlobField.h"

#include "DataSetMessages.h"
#include "TClassInfo.h"
#include "TDataSet.h"
#include "TMemoryStream.h"

namespace fw {

TBlobField::TBlobField(TComponent* AOwner) : TField(AOwner) { SetDataType(ftBlob); }
TMemoField::TMemoField(TComponent* AOwner) : TBlobField(AOwner) { SetDataType(ftMemo); }
TGraphicField::TGraphicField(TComponent* AOwner) : TBlobField(AOwner) { SetDataType(ftGraphic); }

void TBlobField::SetBlobType(TFieldType Value) {
  if (!ftBlobTypes.Contains(Value)) DatabaseError(FmtMsg(SFieldTypeMismatch, {DisplayName()}), this);
  SetDataType(Value);
}

void TBlobField::CheckSize(int Value) const {
  if (Value < 0) DatabaseError(SInvalidFieldSize, this);
}

std::unique_ptr<TStream> TBlobField::OpenStream(TBlobStreamMode Mode) const {
  if (DataSet() == nullptr) DatabaseError(FmtMsg(SNoDataSet, {DisplayName()}));
  std::unique_ptr<TStream> stream = DataSet()->CreateBlobStream(const_cast<TBlobField*>(this), Mode);
  if (!stream && Mode != bmRead) DatabaseError(FmtMsg(SBlobNoStream, {DisplayName()}), DataSet());
  return stream;
}

namespace {

/// Reads the whole stream from its start; a missing stream (null blob) gives "".
std::string ReadAll(TStream* Stream) {
  std::string content;
  if (Stream == nullptr) return content;
  content.resize(static_cast<std::size_t>(Stream->Size()));
  Stream->SetPosition(0);
  if (!content.empty()) Stream->ReadBuffer(content.data(), static_cast<int64_t>(content.size()));
  return content;
}

/// Commits a written blob stream so that errors reach the caller.
void Finish(std::unique_ptr<TStream>& Stream) {
  if (Stream) Stream->Commit();
  Stream.reset();
}

}  // namespace

std::string TBlobField::GetAsString() const {
  std::unique_ptr<TStream> stream = OpenStream(bmRead);
  return ReadAll(stream.get());
}

int64_t TBlobField::BlobSize() const {
  std::unique_ptr<TStream> stream = OpenStream(bmRead);
  return stream ? stream->Size() : 0;
}

bool TBlobField::IsNull() const {
  if (FModified) return BlobSize() == 0;
  return TField::IsNull();
}

void TBlobField::SetAsString(const std::string& Value) {
  std::unique_ptr<TStream> stream = OpenStream(bmWrite);
  if (!Value.empty()) stream->WriteBuffer(Value.data(), static_cast<int64_t>(Value.size()));
  Finish(stream);
}

void TBlobField::Clear() {
  std::unique_ptr<TStream> stream = OpenStream(bmWrite);
  Finish(stream);
}

void TBlobField::LoadFromStream(TStream& Stream) {
  std::unique_ptr<TStream> blob = OpenStream(bmWrite);
  Stream.SetPosition(0);
  if (Stream.Size() > 0) blob->CopyFrom(Stream, 0);
  Finish(blob);
}

void TBlobField::SaveToStream(TStream& Stream) const {
  const std::string content = GetAsString();
  if (!content.empty()) Stream.WriteBuffer(content.data(), static_cast<int64_t>(content.size()));
}

void TBlobField::LoadFromFile(const std::string& FileName) {
  TMemoryStream file;
  file.LoadFromFile(FileName);
  LoadFromStream(file);
}

void TBlobField::SaveToFile(const std::string& FileName) const {
  TMemoryStream file;
  SaveToStream(file);
  file.SaveToFile(FileName);
}

Variant TBlobField::GetAsVariant() const {
  if (IsNull()) return Null();
  return Variant(GetAsString());
}

void TBlobField::SetVarValue(const Variant& Value) {
  if (Value.Type() == (varArray | varByte))
    SetAsString(std::string(Value.Bytes()));
  else
    SetAsString(Value.AsString());
}

void TBlobField::GetText(std::string& Text, bool DisplayText) const {
  Text = DisplayText ? TField::GetAsString() : GetAsString();
}

const TClassInfo& TBlobField::StaticClass() {
  static const TClassInfo info = TClassBuilder<TBlobField>("TBlobField", &TField::StaticClass())
                                     .Creatable()
                                     .Property("Size", &TBlobField::Size, &TBlobField::SetSize, 0)
                                     .Build();
  return info;
}

const TClassInfo& TMemoField::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TMemoField>("TMemoField", &TBlobField::StaticClass())
          .Creatable()
          .Property("Transliterate", &TMemoField::Transliterate, &TMemoField::SetTransliterate, true)
          .Build();
  return info;
}

const TClassInfo& TGraphicField::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TGraphicField>("TGraphicField", &TBlobField::StaticClass()).Creatable().Build();
  return info;
}

}  // namespace fw
