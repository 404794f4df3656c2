// TComponentPalette: the pages of component classes a designer offers for adding (framework layer,
// design time).
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace fw {

class TClassInfo;

/// One palette page: its caption and its classes in registration order.
struct TPalettePage {
  std::string Name;
  std::vector<const TClassInfo*> Classes;
};

/// Pages in the order of their first registration. Classes are kept by address (statics).
class TComponentPalette {
 public:
  /// Adds `cls` at the end of page `page`, which is created after the existing pages when new.
  /// A class already on that page keeps its place. Raises EComponentError for an empty page name
  /// or a class that cannot be created by name (no factory).
  void Add(const std::string& page, const TClassInfo& cls);
  const std::vector<TPalettePage>& Pages() const { return FPages; }
  /// The page named `name` (case-insensitive) or nullptr.
  const TPalettePage* FindPage(std::string_view name) const;

 private:
  std::vector<TPalettePage> FPages;
};

/// The designer's palette, filled by the packages' Register functions.
TComponentPalette& ComponentPalette();

/// Puts `classes` on page `page` of ComponentPalette() in order, and registers each class for
/// form reading (RegisterClass). Raises as TComponentPalette::Add and RegisterClass.
void RegisterComponents(const std::string& page, std::initializer_list<const TClassInfo*> classes);

}  // namespace fw
