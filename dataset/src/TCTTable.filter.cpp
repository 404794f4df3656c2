// TCTTable: record filtering by OnFilterRecord and the Filter text, and the condition list (dataset, unit CTTables).
#include "FilterProgram.h"
#include "StringUtils.h"
#include "TCTTable.h"
#include "TField.h"
#include "UnitFilterParser.h"

namespace CTTables {

namespace {

// The text that stands for `Field` in the substituted filter, into `Out`: text kinds quoted (an
// empty value as two quotes), any other kind as its text or "*NULL*" when it has none.
void Replacement(fw::TField& Field, std::string& Out) {
  const std::string value = Field.AsString();
  switch (Field.DataType()) {
    case fw::ftString:
    case fw::ftMemo:
    case fw::ftWideString:
      Out.assign(1, '\'');
      Out += value;
      Out += '\'';
      break;
    default:
      Out.assign(value.empty() ? std::string_view("*NULL*") : std::string_view(value));
  }
}

}  // namespace

// --- Writers --------------------------------------------------------------------------------

void TCTTable::ReopenForFilter() {
  DisableControls();
  try {
    Close();
    Open();
  } catch (...) {
    EnableControls();
    throw;
  }
  EnableControls();
}

void TCTTable::SetFilterText(const std::string& Value) {
  Ctdb::TCTCustomDataSet::SetFilterText(Value);
  FFilterProgram.reset();
  FFilterFields.clear();
  ReopenForFilter();
}

void TCTTable::SetFiltered(bool Value) {
  Ctdb::TCTCustomDataSet::SetFiltered(Value);
  ReopenForFilter();
}

void TCTTable::SetOnFilterRecord(const fw::TFilterRecordEvent& Value) {
  Ctdb::TCTCustomDataSet::SetOnFilterRecord(Value);
  // Kept on purpose: any assignment, clearing the handler included, switches filtering on.
  SetFiltered(true);
}

// --- Deciding one record --------------------------------------------------------------------

bool TCTTable::DoRecordFilter(TCTRecordBuffer* Buffer) {
  bool accept = true;
  TCTRecordBuffer* saved = FFilterBuffer;
  FFilterBuffer = Buffer;
  try {
    fw::TTempState filtering(this, fw::dsFilter);
    // The event is the first filter: a record it rejects is not evaluated against the text.
    if (OnFilterRecord()) OnFilterRecord()(this, accept);
    if (accept && !Filter().empty()) accept = FilterTextAccepts();
  } catch (...) {
    FFilterBuffer = saved;
    throw;
  }
  FFilterBuffer = saved;
  return accept;
}

bool TCTTable::RecordFilter(TCTRecordBuffer* Buffer) { return DoRecordFilter(Buffer); }

std::string TCTTable::BuildparsString() {
  const std::string normal = UnitFilterParser::Encrypter(UnitFilterParser::Spacer(Filter()));
  std::string result;
  std::size_t pos = 0;
  while (pos < normal.size()) {
    const std::string t = UnitFilterParser::NextToken(normal, pos);
    if (t.empty()) continue;
    if (t.front() == '"') {
      // The name is the token without its first and last character, whatever that last one is.
      std::string replacement;
      Replacement(*FieldByName(t.size() >= 2 ? t.substr(1, t.size() - 2) : std::string()), replacement);
      result += replacement;
    } else if (fw::UpperCase(fw::Trim(t)) == "NULL") {
      result += "*NULL*";
    } else {
      result += t;
    }
  }
  return result;
}

bool TCTTable::FilterTextAccepts() {
  if (!FFilterProgram) {
    auto program = std::make_unique<FilterProgram>(Filter());
    std::vector<fw::TField*> fields;
    for (const std::string& name : program->FieldNames()) fields.push_back(FindField(name));
    FFilterFields = std::move(fields);
    FFilterProgram = std::move(program);
  }
  FFilterValues.resize(FFilterFields.size());
  for (std::size_t i = 0; i < FFilterFields.size(); ++i) {
    // A name that is no field: the described substitution raises the framework's error for it.
    if (FFilterFields[i] == nullptr) return UnitFilterParser::ParseFilter(BuildparsString());
    Replacement(*FFilterFields[i], FFilterValues[i]);
  }
  return FFilterProgram->Evaluate(FFilterValues);
}

// --- Condition list -------------------------------------------------------------------------

void TCTTable::AddFilterCondition(const std::string& FieldName, int32_t FieldIndex, TCTFilterComp Comp,
                                  const fw::Variant& Value) {
  FFilterConditions.push_back(std::make_unique<TCTFilter>(FieldName, FieldIndex, Comp, Value));
}

void TCTTable::ClearFilter() {
  while (!FFilterConditions.empty()) FFilterConditions.pop_back();
}

}  // namespace CTTables
