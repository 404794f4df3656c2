// TReader: builds components from a text form file (framework layer).
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace fw {

class TComponent;
class TPersistent;
struct TPropInfo;
struct FormObject;
struct FormProperty;
struct FormValue;

/// Reads one text form (see `ReadComponentText`). An instance exists only during one read; a
/// component's `ReadState` override receives it to read its properties (`ReadProperties`) and to
/// learn the root and the enclosing object.
///
/// Reading order: the whole text is parsed first (a malformed text creates nothing). Then the
/// root (the supplied instance, or a new one of the named class) gets csLoading | csReading and
/// reads its properties; every nested object, depth-first in file order, is created from the
/// class registry with the ROOT as owner, marked csLoading, told its enclosing object through
/// `SetParentComponent`, named, marked csReading, reads its properties through `ReadState`,
/// reads its own nested objects, loses csReading and joins the loaded list (after its nested
/// objects; the root is first). Component references are then resolved by name, and finally
/// `Loaded()` runs on every component of the loaded list in order.
class TReader {
 public:
  /// The root being read.
  TComponent* Root() const { return FRoot; }
  /// The enclosing object of the component whose properties are being read (nullptr for the
  /// root).
  TComponent* Parent() const { return FParent; }
  /// Assigns the properties written for `instance` in the form, in file order, through its
  /// class's property table. Only valid inside `instance`'s ReadState. References to
  /// components are recorded and resolved after the whole form is read.
  void ReadProperties(TComponent& instance);

 private:
  friend TComponent* ReadComponentText(std::string_view text, TComponent* root);

  struct Fixup {
    TComponent* Component;  // the component being read when the reference was met
    TPersistent* Instance;  // the object that has the property (the component or a sub-object)
    const TPropInfo* Prop;
    std::string Name;
    int Line;
  };

  TReader() = default;
  TComponent* Read(const FormObject& tree, TComponent* root);
  void ReadChildren(const FormObject& node, TComponent* parent);
  void ReadObject(const FormObject& node, TComponent* parent);
  void ReadStateOf(TComponent* instance, const FormObject& node, TComponent* parent);
  void AssignProperty(TPersistent& target, const FormProperty& prop);
  void AssignValue(TPersistent& target, const TPropInfo& info, const FormValue& value, int line);
  void AssignItems(TPersistent& object, const TPropInfo& info, const FormValue& value);
  void ResolveFixups();
  void DestroyCreated();

  TComponent* FRoot = nullptr;
  bool FOwnsRoot = false;
  TComponent* FParent = nullptr;
  TComponent* FCurrentInstance = nullptr;
  const FormObject* FCurrentNode = nullptr;
  std::vector<TComponent*> FCreated;
  std::vector<TComponent*> FLoaded;
  std::vector<Fixup> FFixups;
};

/// Reads the form `text` into `root` (when not null: the file's root class must be root's
/// class or an ancestor of it; the root's Name is set from the file) or into a new root of the
/// class the file names (found in the class registry), which the caller then owns. Returns the
/// root. Components of the file are owned by the root.
///
/// Errors: malformed text, an unknown class or property, a value that does not fit the
/// property, a duplicate name or a reference to a component that the form does not contain
/// raise EParserError "Line N: <what is wrong>". Then every component the reader created is
/// destroyed (a supplied root keeps the property values already assigned, and loses
/// csLoading/csReading). An exception from a `Loaded()` override (a deferred open that fails)
/// propagates unchanged after the same clean-up.
///
/// References "A.B" name component B of another root A read earlier and still alive; when A is
/// not loaded the reference stays nullptr (no error). The "[n]" child-order suffix of an object
/// line is accepted and not used; "inherited" reuses a component of that name the root already
/// owns. Reads are not synchronised with each other: read forms from one thread at a time.
TComponent* ReadComponentText(std::string_view text, TComponent* root = nullptr);
/// Reads the file `fileName` (EInOutError when it cannot be read) with ReadComponentText.
TComponent* ReadComponentFile(const std::string& fileName, TComponent* root = nullptr);
/// The class name of the root object of form `text` (a designer makes the root before reading).
/// Raises EParserError "Line N: <what is wrong>" as ReadComponentText does for malformed text.
std::string ReadFormClassName(std::string_view text);
/// The loaded root named `name` (case-insensitive) or nullptr.
TComponent* FindGlobalComponent(std::string_view name);

}  // namespace fw
