// TWriter: writes components as a text form file (framework layer).
#pragma once

#include <string>

namespace fw {

class TComponent;
class TPersistent;

/// Writes a root and its children in the text form format that TReader reads:
///
///     object Name: TClass            (the name is omitted when empty)
///       Prop = value                 (published properties in published order)
///       Sub.Prop = value             (properties of owned sub-objects)
///       Lines.Strings = ( ... )      (string lists), Items = < item ... end > (collections)
///       object Child: TOtherClass
///       end
///     end
///
/// What is written: every published property with a setter whose value differs from its
/// default (properties without default are always written, except empty strings, empty binary
/// values and unset references); Name goes in the object line. Children are those listed by
/// `GetChildren(proc, root)` of each object, recursively. References are written by name
/// ("Owner.Name" for a component owned by another root). Components carry csWriting while they
/// are written. Raises EWriteError for an enumeration value without a member name.
class TWriter {
 public:
  explicit TWriter(TComponent& root) : FRoot(root) {}
  /// The form text of the root.
  std::string Write();

 private:
  void WriteObject(TComponent& c, int indent);
  void WriteProperties(TPersistent& object, const std::string& prefix, int indent);
  void Line(int indent, const std::string& text);

  TComponent& FRoot;
  std::string FOut;
};

/// `TWriter(root).Write()`.
std::string WriteComponentText(TComponent& root);
/// Writes the form text to `fileName` (EFCreateError when it cannot be created).
void WriteComponentFile(const std::string& fileName, TComponent& root);

}  // namespace fw
