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
