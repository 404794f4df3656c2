// BlobColumns: how memo and binary blob fields travel in CSV and show in listings (tools layer).
#include "BlobColumns.h"

#include <array>
#include <cstdint>

namespace ctt {

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr int kNotBase64 = -1;
constexpr int kPadding = -2;
constexpr int kSkipped = -3;

constexpr std::array<int, 256> MakeDecodeTable() {
  std::array<int, 256> table{};
  for (int& entry : table) entry = kNotBase64;
  for (int i = 0; i < 64; ++i) table[static_cast<unsigned char>(kAlphabet[i])] = i;
  table['='] = kPadding;
  for (unsigned char c : {' ', '\t', '\r', '\n'}) table[c] = kSkipped;
  return table;
}
constexpr std::array<int, 256> kDecode = MakeDecodeTable();

}  // namespace

bool IsBinaryBlob(fw::TFieldType type) {
  switch (type) {
    case fw::ftMemo:
    case fw::ftFmtMemo:
    case fw::ftWideMemo:
    case fw::ftOraClob:
      return false;
    default:
      return fw::ftBlobTypes.Contains(type);
  }
}

std::string EncodeBase64(std::string_view bytes) {
  std::string out;
  out.reserve((bytes.size() + 2) / 3 * 4);
  std::size_t i = 0;
  for (; i + 3 <= bytes.size(); i += 3) {
    const uint32_t n = static_cast<uint8_t>(bytes[i]) << 16 |
                       static_cast<uint8_t>(bytes[i + 1]) << 8 | static_cast<uint8_t>(bytes[i + 2]);
    out += {kAlphabet[n >> 18], kAlphabet[(n >> 12) & 63], kAlphabet[(n >> 6) & 63],
            kAlphabet[n & 63]};
  }
  const std::size_t rest = bytes.size() - i;
  if (rest > 0) {
    uint32_t n = static_cast<uint8_t>(bytes[i]) << 16;
    if (rest == 2) n |= static_cast<uint8_t>(bytes[i + 1]) << 8;
    out += {kAlphabet[n >> 18], kAlphabet[(n >> 12) & 63],
            rest == 2 ? kAlphabet[(n >> 6) & 63] : '=', '='};
  }
  return out;
}

std::optional<std::string> DecodeBase64(std::string_view text) {
  std::string out;
  out.reserve(text.size() / 4 * 3);
  uint32_t group = 0;
  int digits = 0;   // base64 digits in the current group of four
  int padding = 0;  // "=" seen; only more "=" may follow
  for (char ch : text) {
    const int value = kDecode[static_cast<unsigned char>(ch)];
    if (value == kSkipped) continue;
    if (value == kNotBase64) return std::nullopt;
    if (value == kPadding) {
      // "=" stands for the missing third or fourth digit of the last group only.
      if (digits < 2 || digits + padding >= 4) return std::nullopt;
      ++padding;
      continue;
    }
    if (padding > 0) return std::nullopt;
    group = group << 6 | static_cast<uint32_t>(value);
    if (++digits == 4) {
      out +=
          {static_cast<char>(group >> 16), static_cast<char>(group >> 8), static_cast<char>(group)};
      group = 0;
      digits = 0;
    }
  }
  if (padding == 0) return digits == 0 ? std::optional<std::string>(std::move(out)) : std::nullopt;
  if (digits + padding != 4) return std::nullopt;
  group <<= 6 * padding;
  out += static_cast<char>(group >> 16);
  if (digits == 3) out += static_cast<char>(group >> 8);
  return out;
}

void EncodeBinaryColumns(const std::vector<FieldDefinition>& fields,
                         std::vector<std::string>& values) {
  for (std::size_t i = 0; i < fields.size() && i < values.size(); ++i)
    if (IsBinaryBlob(fields[i].DataType)) values[i] = EncodeBase64(values[i]);
}

std::optional<std::string> DecodeBinaryColumns(const std::vector<FieldDefinition>& fields,
                                               std::vector<std::optional<std::string>>& values) {
  for (std::size_t i = 0; i < fields.size() && i < values.size(); ++i) {
    if (!values[i] || !IsBinaryBlob(fields[i].DataType)) continue;
    std::optional<std::string> bytes = DecodeBase64(*values[i]);
    if (!bytes) return "field '" + fields[i].Name + "': not valid base64";
    values[i] = std::move(bytes);
  }
  return std::nullopt;
}

void ShowBinaryColumnsAsSize(const std::vector<FieldDefinition>& fields,
                             std::vector<std::string>& values) {
  for (std::size_t i = 0; i < fields.size() && i < values.size(); ++i)
    if (IsBinaryBlob(fields[i].DataType) && !values[i].empty())
      values[i] = std::to_string(values[i].size()) + (values[i].size() == 1 ? " byte" : " bytes");
}

}  // namespace ctt
