// Message texts of the dataset classes (framework layer, private).
#pragma once

namespace fw {

inline constexpr const char* SDataSetClosed = "Cannot perform this operation on a closed dataset";
inline constexpr const char* SDataSetOpen = "Cannot perform this operation on an open dataset";
inline constexpr const char* SDataSetUnidirectional = "Operation not allowed on a unidirectional dataset";
inline constexpr const char* SDataSetReadOnly = "Cannot modify a read-only dataset";
inline constexpr const char* SDataSetEmpty = "Cannot perform this operation on an empty dataset";
inline constexpr const char* SNotEditing = "Dataset not in edit or insert mode";
inline constexpr const char* SRecordNotFound = "Record not found";
inline constexpr const char* SFieldNotFound = "Field '%s' not found";
inline constexpr const char* SFieldRequired = "Field '%s' must have a value";
inline constexpr const char* SFieldReadOnly = "Field '%s' cannot be modified";
inline constexpr const char* SDuplicateFieldName = "Duplicate field name '%s'";
inline constexpr const char* SFieldTypeMismatch = "Type mismatch for field '%s'";
inline constexpr const char* SNoFieldClass = "No field class for field '%s' of this data type";
inline constexpr const char* SNoDataSet = "Field '%s' has no dataset";
inline constexpr const char* SFieldIndexError = "Field index out of range";
inline constexpr const char* SInvalidTypeConversion = "Invalid type conversion to %s in field '%s'";
inline constexpr const char* SInvalidFieldValue = "Invalid value for field '%s'";
inline constexpr const char* SInvalidVariantValue = "Invalid variant value for field '%s'";
inline constexpr const char* SInvalidIntegerValue = "'%s' is not a valid integer value for field '%s'";
inline constexpr const char* SInvalidFloatValue = "'%s' is not a valid floating point value for field '%s'";
inline constexpr const char* SInvalidBoolValue = "'%s' is not a valid boolean value for field '%s'";
inline constexpr const char* SInvalidDateTimeValue = "'%s' is not a valid date and time for field '%s'";
inline constexpr const char* SFieldRangeError = "%s is not a valid value for field '%s'. The allowed range is %s to %s";
inline constexpr const char* SInvalidFieldSize = "Invalid field size";
inline constexpr const char* SInvalidBoolDisplayValues = "Invalid boolean display values";
inline constexpr const char* SLookupInfoError = "Lookup information for field '%s' is incomplete";
inline constexpr const char* SFieldKindNotData = "Field '%s' is not a data field and cannot be written here";
inline constexpr const char* STooManyValues = "Too many values: the dataset has fewer fields";
inline constexpr const char* SCircularDataLink = "Circular datalinks are not allowed";
inline constexpr const char* SIndexNotFound = "Index '%s' not found";
inline constexpr const char* SNoIndexForFields = "No index for fields '%s'";
inline constexpr const char* SDuplicateIndexName = "Duplicate index name '%s'";
inline constexpr const char* SEmptyFieldDefName = "Field definitions must have a name";
inline constexpr const char* SFieldDefIndexError = "Definition index out of range";
inline constexpr const char* SBcdOverflow = "BCD overflow in field '%s'";
inline constexpr const char* SBlobNoStream = "Field '%s' has no blob stream";

}  // namespace fw

#include <initializer_list>
#include <string>
#include <string_view>

namespace fw {

/// Replaces each "%s" of `Pattern` with the next of `Args` (missing arguments give "").
std::string FmtMsg(const char* Pattern, std::initializer_list<std::string_view> Args);

}  // namespace fw
