// Dataset error helper and message formatting (framework layer).
#include "DataSetTypes.h"

#include "DataSetMessages.h"
#include "Exception.h"
#include "TComponent.h"

namespace fw {

void DatabaseError(const std::string& message, const TComponent* component) {
  if (component != nullptr && !component->Name().empty())
    throw EDatabaseError(component->Name() + ": " + message);
  throw EDatabaseError(message);
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
