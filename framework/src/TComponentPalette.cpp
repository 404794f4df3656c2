// TComponentPalette: pages and classes in registration order.
#include "TComponentPalette.h"

#include <algorithm>

#include "Exception.h"
#include "StringUtils.h"
#include "TClassInfo.h"

namespace fw {

void TComponentPalette::Add(const std::string& page, const TClassInfo& cls) {
  if (page.empty()) throw EComponentError("A palette page needs a name");
  if (!cls.CanCreate())
    throw EComponentError("Class " + cls.ClassName() + " cannot be placed on a form");
  auto it = std::find_if(FPages.begin(), FPages.end(),
                         [&](const TPalettePage& p) { return SameText(p.Name, page); });
  if (it == FPages.end()) it = FPages.insert(FPages.end(), TPalettePage{page, {}});
  if (std::find(it->Classes.begin(), it->Classes.end(), &cls) == it->Classes.end())
    it->Classes.push_back(&cls);
}

const TPalettePage* TComponentPalette::FindPage(std::string_view name) const {
  for (const TPalettePage& p : FPages)
    if (SameText(p.Name, name)) return &p;
  return nullptr;
}

TComponentPalette& ComponentPalette() {
  static TComponentPalette palette;
  return palette;
}

void RegisterComponents(const std::string& page, std::initializer_list<const TClassInfo*> classes) {
  for (const TClassInfo* cls : classes) {
    ComponentPalette().Add(page, *cls);
    RegisterClass(*cls);
  }
}

}  // namespace fw
