// Dataset error helper and message formatting (framework layer).
#include "DataSetTypes.h"

#include <algorithm>

#include "DataSetMessages.h"
#include "Exception.h"
#include "StringUtils.h"
#include "TComponent.h"

namespace fw {

void DatabaseError(const std::string& message, const TComponent* component) {
  if (component != nullptr && !component->Name().empty())
    throw EDatabaseError(component->Name() + ": " + message);
  throw EDatabaseError(message);
}

std::string ExtractFieldName(const std::string& Fields, int& Pos) {
  const int length = static_cast<int>(Fields.size());
  const int start = std::max(Pos, 1);
  int i = start;
  while (i <= length && Fields[static_cast<std::size_t>(i - 1)] != ';') ++i;
  std::string name = start <= length ? Trim(std::string_view(Fields).substr(static_cast<std::size_t>(start - 1),
                                                                           static_cast<std::size_t>(i - start)))
                                     : std::string();
  if (i <= length) ++i;
  Pos = i;
  return name;
}

const std::vector<std::string>& FieldTypeNames() {
  static const std::vector<std::string> names = {
      "ftUnknown",   "ftString",     "ftSmallint",   "ftInteger",       "ftWord",         "ftBoolean",
      "ftFloat",     "ftCurrency",   "ftBCD",        "ftDate",          "ftTime",         "ftDateTime",
      "ftBytes",     "ftVarBytes",   "ftAutoInc",    "ftBlob",          "ftMemo",         "ftGraphic",
      "ftFmtMemo",   "ftParadoxOle", "ftDBaseOle",   "ftTypedBinary",   "ftCursor",       "ftFixedChar",
      "ftWideString", "ftLargeint",  "ftADT",        "ftArray",         "ftReference",    "ftDataSet",
      "ftOraBlob",   "ftOraClob",    "ftVariant",    "ftInterface",     "ftIDispatch",    "ftGuid",
      "ftTimeStamp", "ftFMTBcd",     "ftFixedWideChar", "ftWideMemo",   "ftOraTimeStamp", "ftOraInterval",
      "ftLongWord",  "ftShortint",   "ftByte",       "ftExtended",      "ftConnection",   "ftParams",
      "ftStream",    "ftTimeStampOffset", "ftObject", "ftSingle"};
  return names;
}

std::string FmtMsg(const char* Pattern, std::initializer_list<std::string_view> Args) {
  std::string out;
  auto arg = Args.begin();
  for (const char* p = Pattern; *p != '\0'; ++p) {
    if (p[0] == '%' && p[1] == 's') {
      if (arg != Args.end()) out += *arg++;
      ++p;
    } else {
      out += *p;
    }
  }
  return out;
}

}  // namespace fw
