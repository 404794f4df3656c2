// BlobColumns: how memo and binary blob fields travel in CSV and show in listings (tools layer).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "FieldDefinition.h"

namespace ctt {

/// Whether CSV carries fields of `type` as base64: the blob types other than the text ones
/// (memo, formatted memo, wide memo and character large objects travel as plain text).
bool IsBinaryBlob(fw::TFieldType type);

/// Standard base64 (RFC 4648 alphabet, "=" padding, one line).
std::string EncodeBase64(std::string_view bytes);
/// The bytes of base64 `text` (line breaks and blanks inside are ignored); nullopt when the
/// text holds another character, its length is not a multiple of four or "=" is misplaced.
std::optional<std::string> DecodeBase64(std::string_view text);

/// Replaces each binary blob value of a record read as text (`values[i]` belongs to
/// `fields[i]`) by its base64 form, for export.
void EncodeBinaryColumns(const std::vector<FieldDefinition>& fields,
                         std::vector<std::string>& values);
/// The reverse for a row to import: decodes each binary blob value in place. Returns the
/// reason the row must be rejected ("field 'photo': not valid base64") or nullopt.
std::optional<std::string> DecodeBinaryColumns(const std::vector<FieldDefinition>& fields,
                                               std::vector<std::optional<std::string>>& values);
/// Replaces each binary blob value by its size for a listing ("1024 bytes"; empty stays empty).
void ShowBinaryColumnsAsSize(const std::vector<FieldDefinition>& fields,
                             std::vector<std::string>& values);

}  // namespace ctt
