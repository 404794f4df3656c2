// LocateMatch: key conversion and the two record tests of Locate/Lookup (dataset, unit CTTables).
#include "LocateMatch.h"

#include <clocale>
#include <cstring>
#include <limits>

#include "StringUtils.h"
#include "TCTConnection.h"
#include "TCTCustomRecordBuffer.h"
#include "TDataSet.h"

namespace CTTables {

namespace {

TLocateKind KindOf(fw::TFieldType type) {
  switch (type) {
    case fw::ftString:
    case fw::ftFixedChar:
    case fw::ftWideString:
    case fw::ftMemo:
    case fw::ftFmtMemo: return lkText;
    case fw::ftSmallint:
    case fw::ftInteger:
    case fw::ftWord:
    case fw::ftAutoInc:
    case fw::ftLargeint: return lkInteger;
    case fw::ftFloat:
    case fw::ftCurrency: return lkFloat;
    case fw::ftBCD:
    case fw::ftFMTBcd: return lkCurrency;
    case fw::ftDate:
    case fw::ftTime:
    case fw::ftDateTime: return lkDateTime;
    case fw::ftBoolean: return lkBoolean;
    default: return lkNever;
  }
}

// The integer value of a native integer field, as its getter reads it.
int64_t NativeInteger(fw::TFieldType type, const uint8_t* native) {
  switch (type) {
    case fw::ftSmallint: { int16_t v; std::memcpy(&v, native, sizeof v); return v; }
    case fw::ftWord: { uint16_t v; std::memcpy(&v, native, sizeof v); return v; }
    case fw::ftLargeint: { int64_t v; std::memcpy(&v, native, sizeof v); return v; }
    default: { int32_t v; std::memcpy(&v, native, sizeof v); return v; }
  }
}

// Whether `value` fits the native form of an integer field (otherwise no record can hold it).
bool FitsNative(fw::TFieldType type, int64_t value) {
  switch (type) {
    case fw::ftSmallint: return value >= INT16_MIN && value <= INT16_MAX;
    case fw::ftWord: return value >= 0 && value <= UINT16_MAX;
    case fw::ftLargeint: return true;
    default: return value >= INT32_MIN && value <= INT32_MAX;
  }
}

bool ByteCollation() {
  const char* name = std::setlocale(LC_COLLATE, nullptr);
  return name == nullptr || std::strcmp(name, "C") == 0 || std::strcmp(name, "POSIX") == 0;
}

}  // namespace

LocateMatch::LocateMatch(fw::TDataSet* DataSet, const std::vector<fw::TField*>& Fields,
                         const std::vector<fw::Variant>& Values, fw::TLocateOptions Options)
    : FDataSet(DataSet),
      FCaseInsensitive(Options.Contains(fw::loCaseInsensitive)),
      FByteCollation(ByteCollation()) {
  if (FCaseInsensitive) {
    // The case table is taken from AnsiUpperCase itself, byte by byte as it maps, so that the
    // byte comparison below and the locale-aware one can never disagree.
    std::string all(255, '\0');
    for (int i = 1; i < 256; ++i) all[static_cast<size_t>(i - 1)] = static_cast<char>(i);
    const std::string upper = fw::AnsiUpperCase(all);
    FUpper[0] = 0;
    for (int i = 1; i < 256; ++i)
      FUpper[static_cast<size_t>(i)] = static_cast<uint8_t>(upper[static_cast<size_t>(i - 1)]);
  }

  FConditions.resize(Fields.size());
  for (size_t i = 0; i < Fields.size(); ++i) {
    LocateCondition& condition = FConditions[i];
    condition.Field = Fields[i];
    condition.Kind = KindOf(Fields[i]->DataType());
    ConvertKey(condition, Values[i]);
  }
  // The partial field is the last one, when it holds text.
  if (Options.Contains(fw::loPartialKey) && !FConditions.empty() && FConditions.back().Kind == lkText) {
    const fw::TFieldType type = FConditions.back().Field->DataType();
    FConditions.back().Partial = type == fw::ftString || type == fw::ftMemo;
  }
}

void LocateMatch::ConvertKey(LocateCondition& Condition, const fw::Variant& Value) {
  if (Value.IsNull() || Value.IsEmpty()) {
    Condition.Kind = lkNull;
    return;
  }
  fw::TField* field = Condition.Field;
  const fw::TFieldType type = field->DataType();
  std::vector<uint8_t>& native = Condition.Native;
  native.assign(static_cast<size_t>(std::max(field->DataSize(), 16)), 0);
  switch (Condition.Kind) {
    case lkText: {
      const std::string text = Value.AsString();
      // The comparisons see text as the framework's string routines do: up to a zero byte.
      Condition.Text = text.substr(0, std::strlen(text.c_str()));
      native.assign(Condition.Text.begin(), Condition.Text.end());
      native.push_back(0);
      break;
    }
    case lkInteger: {
      Condition.Integer = Value.AsInt64();
      if (!FitsNative(type, Condition.Integer)) break;
      const int64_t v = Condition.Integer;
      if (type == fw::ftSmallint) { const auto n = static_cast<int16_t>(v); std::memcpy(native.data(), &n, sizeof n); }
      else if (type == fw::ftWord) { const auto n = static_cast<uint16_t>(v); std::memcpy(native.data(), &n, sizeof n); }
      else if (type == fw::ftLargeint) std::memcpy(native.data(), &v, sizeof v);
      else { const auto n = static_cast<int32_t>(v); std::memcpy(native.data(), &n, sizeof n); }
      break;
    }
    case lkFloat:
      Condition.Float = Value.AsDouble();
      std::memcpy(native.data(), &Condition.Float, sizeof Condition.Float);
      break;
    case lkCurrency: {
      const fw::Currency value = Value.AsCurrency();
      Condition.Integer = value;
      FDataSet->DataConvert(field, &value, native.data(), true);
      break;
    }
    case lkDateTime:
      Condition.Float = static_cast<double>(Value.AsDateTime());
      FDataSet->DataConvert(field, &Condition.Float, native.data(), true);
      break;
    case lkBoolean: {
      Condition.Integer = Value.AsBoolean() ? 1 : 0;
      const uint16_t n = Condition.Integer != 0 ? 0xFFFF : 0;
      std::memcpy(native.data(), &n, sizeof n);
      break;
    }
    default:
      break;
  }
}

bool LocateMatch::Satisfiable() const {
  for (const LocateCondition& c : FConditions) {
    switch (c.Kind) {
      case lkNever: return false;
      case lkText:
        if (!c.Field->IsBlob() && c.Field->Size() > 0 && c.Text.size() > static_cast<size_t>(c.Field->Size()))
          return false;
        break;
      case lkInteger:
        if (!FitsNative(c.Field->DataType(), c.Integer)) return false;
        break;
      case lkDateTime: {
        // A date or time field holds only what its native form keeps: a key it cannot hold
        // exactly (a date with a time of day) can equal no record.
        double back = 0;
        FDataSet->DataConvert(c.Field, c.Native.data(), &back, false);
        if (back != c.Float) return false;
        break;
      }
      default: break;
    }
  }
  return true;
}

bool LocateMatch::DecodesRecords() const {
  for (const LocateCondition& c : FConditions)
    if (c.Field->FieldKind() != fw::fkData || c.Field->FieldNo() <= 0 || c.Field->IsBlob()) return false;
  return true;
}

bool LocateMatch::TextMatches(const LocateCondition& Condition, std::string_view Value) const {
  const std::string& key = Condition.Text;
  const auto sameBytes = [&](size_t n) {
    // An empty value may have no bytes at all behind it.
    if (!FCaseInsensitive) return n == 0 || std::memcmp(Value.data(), key.data(), n) == 0;
    for (size_t i = 0; i < n; ++i)
      if (FUpper[static_cast<uint8_t>(Value[i])] != FUpper[static_cast<uint8_t>(key[i])]) return false;
    return true;
  };
  if (Condition.Partial) {
    if (key.empty()) return true;
    if (FByteCollation) return Value.size() >= key.size() && sameBytes(key.size());
    return (FCaseInsensitive ? fw::AnsiStrLIComp(Value, key, key.size()) : fw::AnsiStrLComp(Value, key, key.size())) == 0;
  }
  if (FByteCollation) return Value.size() == key.size() && sameBytes(key.size());
  return (FCaseInsensitive ? fw::AnsiCompareText(Value, key) : fw::AnsiCompareStr(Value, key)) == 0;
}

bool LocateMatch::MatchesFields(size_t From) const {
  for (size_t i = From; i < FConditions.size(); ++i) {
    const LocateCondition& c = FConditions[i];
    const fw::TField* f = c.Field;
    bool match = false;
    switch (c.Kind) {
      case lkNull: match = f->IsNull(); break;
      case lkText: match = TextMatches(c, f->AsString()); break;
      case lkInteger: match = f->AsLargeInt() == c.Integer; break;
      case lkFloat: match = f->AsFloat() == c.Float; break;
      case lkCurrency: match = f->AsCurrency() == c.Integer; break;
      case lkDateTime: match = static_cast<double>(f->AsDateTime()) == c.Float; break;
      case lkBoolean: match = f->AsBoolean() == (c.Integer != 0); break;
      default: break;
    }
    if (!match) return false;
  }
  return true;
}

bool LocateMatch::MatchesRecord(Ctdb::TCTConnection& Conn, Ctdb::TCTCursorDesc* Cursor,
                                Ctdb::TCTCustomRecordBuffer& Scratch, const uint8_t* Record, int32_t Length) {
  Scratch.SetRecord(Record, Length);
  for (const LocateCondition& c : FConditions) {
    fw::TField* f = c.Field;
    const size_t size = static_cast<size_t>(std::max(f->DataSize(), 16)) + 1;
    if (FNative.size() < size) FNative.resize(size);
    uint8_t* native = FNative.data();
    // Each field is decoded as its getter would see it: the getters start from zeroed memory
    // and read 0, 0.0, false or "" for a null field.
    std::memset(native, 0, size);
    bool blank = true;
    if (Conn.GetField(Cursor, f->FieldNo(), &Scratch, c.Kind == lkNull ? nullptr : native, blank) != 0) return false;
    if (blank && c.Kind != lkNull) std::memset(native, 0, size);
    bool match = false;
    switch (c.Kind) {
      case lkNull: match = blank; break;
      case lkText: {
        const char* text = reinterpret_cast<const char*>(native);
        match = TextMatches(c, blank ? std::string_view() : std::string_view(text, strnlen(text, static_cast<size_t>(f->Size()))));
        break;
      }
      case lkInteger: match = NativeInteger(f->DataType(), native) == c.Integer; break;
      case lkFloat: {
        double v = 0;
        std::memcpy(&v, native, sizeof v);
        match = v == c.Float;
        break;
      }
      case lkCurrency: {
        fw::Currency v = 0;
        if (!blank) FDataSet->DataConvert(f, native, &v, false);
        match = v == c.Integer;
        break;
      }
      case lkDateTime: {
        double v = 0;
        if (!blank) FDataSet->DataConvert(f, native, &v, false);
        match = v == c.Float;
        break;
      }
      case lkBoolean: {
        uint16_t v = 0;
        std::memcpy(&v, native, sizeof v);
        match = (v != 0) == (c.Integer != 0);
        break;
      }
      default: break;
    }
    if (!match) return false;
  }
  return true;
}

}  // namespace CTTables
