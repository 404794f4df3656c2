// FieldText: the texts the tool reads and writes for field values, and what a blank field is.
#pragma once

#include <string>
#include <vector>

#include "RowWriter.h"
#include "TField.h"
#include "TableBackend.h"

namespace ctt {

/// How a field's texts are shaped: numbers, booleans, dates and times, or text.
ColumnKind KindOf(fw::TFieldType type);

/// The text of a field's value. A c-tree record keeps no null flags, so a blank field (all its
/// bytes empty) is written as the value it reads as: 0 for numbers, "false" for booleans,
/// "00:00:00" for a time, and "" for text, a date and a date-time. Dates are "yyyy-mm-dd", times
/// "hh:nn:ss" and date-times both, with ".zzz" only when there are milliseconds, so that every
/// text written reads back as the same value.
std::string FieldText(const fw::TField& field);

/// Sets the field from `text` (the model of FieldText): "" or `spellings.Null` leaves it blank;
/// booleans take the spellings; text longer than a string field raises, or is cut at a
/// character boundary with `spellings.Truncate`; the rest goes through the field's own text
/// setter, which raises for a text that does not convert.
void SetFieldText(fw::TField& field, const std::string& text, const ValueSpellings& spellings);

}  // namespace ctt
