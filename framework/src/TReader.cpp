// TReader: creates and fills components from a parsed text form, then resolves and loads them.
#include "TReader.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include "Exception.h"
#include "FormParser.h"
#include "StringUtils.h"
#include "TClassInfo.h"
#include "TCollection.h"
#include "TComponent.h"
#include "TStrings.h"

namespace fw {

namespace {

[[noreturn]] void Fail(int line, const std::string& what) {
  throw EParserError("Line " + std::to_string(line) + ": " + what);
}

// Runs `f`, turning framework exceptions other than EParserError into EParserError at `line`.
template <class F>
void AtLine(int line, const std::string& context, F f) {
  try {
    f();
  } catch (const EParserError&) {
    throw;
  } catch (const Exception& e) {
    Fail(line, context + e.Message());
  }
}

// Roots read successfully and still alive, for "Root.Component" references. A component of its
// own learns through free notifications when a root goes away. It is never destroyed: roots may
// outlive every static object of the program.
class LoadedRoots : public TComponent {
 public:
  LoadedRoots() : TComponent(nullptr) {}

  static LoadedRoots& Instance() {
    static LoadedRoots* roots = new LoadedRoots();
    return *roots;
  }

  void Add(TComponent* root) {
    if (std::find(FRoots.begin(), FRoots.end(), root) != FRoots.end()) return;
    FRoots.push_back(root);
    root->FreeNotification(this);
  }

  TComponent* Find(std::string_view name) const {
    for (TComponent* r : FRoots)
      if (!name.empty() && SameText(r->Name(), name)) return r;
    return nullptr;
  }

  void Notification(TComponent* c, TOperation operation) override {
    TComponent::Notification(c, operation);
    if (operation == opRemove) FRoots.erase(std::remove(FRoots.begin(), FRoots.end(), c), FRoots.end());
  }

 private:
  std::vector<TComponent*> FRoots;
};

bool ClassMatches(const TComponent& instance, std::string_view className) {
  for (const TClassInfo* c = &instance.ClassType(); c != nullptr; c = c->Parent())
    if (SameText(c->ClassName(), className)) return true;
  return false;
}

}  // namespace

void TComponent::ReadState(TReader& reader) { reader.ReadProperties(*this); }

TComponent* FindGlobalComponent(std::string_view name) { return LoadedRoots::Instance().Find(name); }

TComponent* ReadComponentText(std::string_view text, TComponent* root) {
  const FormObject tree = ParseForm(text);
  TReader reader;
  return reader.Read(tree, root);
}

std::string ReadFormClassName(std::string_view text) { return ParseForm(text).ClassName; }

TComponent* ReadComponentFile(const std::string& fileName, TComponent* root) {
  std::ifstream in(fileName, std::ios::binary);
  if (!in) throw EInOutError("Cannot open form file '" + fileName + "'", errno);
  std::ostringstream text;
  text << in.rdbuf();
  if (in.bad()) throw EInOutError("Cannot read form file '" + fileName + "'", errno);
  return ReadComponentText(text.str(), root);
}

TComponent* TReader::Read(const FormObject& tree, TComponent* root) {
  if (root != nullptr) {
    if (!ClassMatches(*root, tree.ClassName))
      Fail(tree.Line, "the form's class " + tree.ClassName + " does not match the root's class " + root->ClassName());
    FRoot = root;
  } else {
    const TClassInfo* cls = GetClass(tree.ClassName);
    if (cls == nullptr) Fail(tree.Line, "class " + tree.ClassName + " not found");
    AtLine(tree.Line, "", [&] { FRoot = cls->Create(nullptr); });
    FOwnsRoot = true;
  }
  try {
    FRoot->SetComponentStateFlag(csLoading, true);
    FRoot->SetComponentStateFlag(csReading, true);
    FLoaded.push_back(FRoot);
    if (!tree.Name.empty()) AtLine(tree.Line, "", [&] { FRoot->SetName(tree.Name); });
    ReadStateOf(FRoot, tree, nullptr);
    ReadChildren(tree, FRoot);
    ResolveFixups();
    FRoot->SetComponentStateFlag(csReading, false);
    for (TComponent* c : FLoaded) c->Loaded();
  } catch (...) {
    DestroyCreated();
    throw;
  }
  LoadedRoots::Instance().Add(FRoot);
  return FRoot;
}

void TReader::ReadStateOf(TComponent* instance, const FormObject& node, TComponent* parent) {
  FCurrentInstance = instance;
  FCurrentNode = &node;
  FParent = parent;
  AtLine(node.Line, "error reading " + node.ClassName + " " + node.Name + ": ", [&] { instance->ReadState(*this); });
  FCurrentInstance = nullptr;
  FCurrentNode = nullptr;
}

void TReader::ReadChildren(const FormObject& node, TComponent* parent) {
  for (const FormObject& child : node.Children) ReadObject(child, parent);
}

void TReader::ReadObject(const FormObject& node, TComponent* parent) {
  TComponent* instance = nullptr;
  if (node.Keyword == "inherited") {
    instance = FRoot->FindComponent(node.Name);
    if (instance != nullptr && !ClassMatches(*instance, node.ClassName))
      Fail(node.Line, "inherited component " + node.Name + " is not a " + node.ClassName);
  }
  if (instance == nullptr) {
    const TClassInfo* cls = GetClass(node.ClassName);
    if (cls == nullptr) Fail(node.Line, "class " + node.ClassName + " not found");
    if (!cls->CanCreate()) Fail(node.Line, "class " + node.ClassName + " cannot be created");
    AtLine(node.Line, "", [&] { instance = cls->Create(FRoot); });
    FCreated.push_back(instance);
  }
  instance->SetComponentStateFlag(csLoading, true);
  AtLine(node.Line, "", [&] {
    instance->SetParentComponent(parent);
    instance->SetName(node.Name);
  });
  instance->SetComponentStateFlag(csReading, true);
  ReadStateOf(instance, node, parent);
  ReadChildren(node, instance);
  instance->SetComponentStateFlag(csReading, false);
  FLoaded.push_back(instance);
}

void TReader::ReadProperties(TComponent& instance) {
  if (&instance != FCurrentInstance || FCurrentNode == nullptr)
    throw EParserError("ReadProperties called outside the component's ReadState");
  for (const FormProperty& prop : FCurrentNode->Properties) AssignProperty(instance, prop);
}

void TReader::AssignProperty(TPersistent& target, const FormProperty& prop) {
  TPersistent* object = &target;
  std::string_view path = prop.Name;
  for (std::size_t dot = path.find('.'); dot != std::string_view::npos; dot = path.find('.')) {
    const std::string part(path.substr(0, dot));
    const TPropInfo* sub = object->ClassType().FindProperty(part);
    if (sub == nullptr || sub->Kind != pkObject)
      Fail(prop.Line, "class " + object->ClassName() + " has no object property '" + part + "'");
    object = sub->GetObject(*object);
    if (object == nullptr) Fail(prop.Line, "property '" + part + "' holds no object");
    path.remove_prefix(dot + 1);
  }
  const TPropInfo* info = object->ClassType().FindProperty(path);
  if (info == nullptr) Fail(prop.Line, "class " + object->ClassName() + " has no property '" + std::string(path) + "'");
  AtLine(prop.Line, "error reading property " + prop.Name + ": ",
         [&] { AssignValue(*object, *info, prop.Value, prop.Line); });
}

void TReader::AssignValue(TPersistent& target, const TPropInfo& info, const FormValue& value, int line) {
  auto bad = [&]() { Fail(line, "invalid value for property " + info.Name); };
  if (info.Kind != pkObject && info.ReadOnly()) Fail(line, "property " + info.Name + " is read-only");
  switch (info.Kind) {
    case pkInteger:
    case pkInt64:
      if (value.ValueKind != FormValue::vkInteger) bad();
      info.Set(target, Variant(static_cast<long long>(value.Int)));
      break;
    case pkFloat:
      if (value.ValueKind == FormValue::vkInteger) info.Set(target, Variant(static_cast<double>(value.Int)));
      else if (value.ValueKind == FormValue::vkFloat) info.Set(target, Variant(value.Float));
      else bad();
      break;
    case pkCurrency:
      if (value.ValueKind == FormValue::vkInteger) info.Set(target, Variant::FromCurrency(StrToCurr(IntToStr(value.Int))));
      else if (value.ValueKind == FormValue::vkFloat) info.Set(target, Variant::FromCurrency(DoubleToCurr(value.Float)));
      else bad();
      break;
    case pkString:
      if (value.ValueKind != FormValue::vkString) bad();
      info.Set(target, Variant(value.Text));
      break;
    case pkBoolean:
      if (value.ValueKind != FormValue::vkIdent || !(SameText(value.Text, "True") || SameText(value.Text, "False"))) bad();
      info.Set(target, Variant(SameText(value.Text, "True")));
      break;
    case pkEnum: {
      const int ord = value.ValueKind == FormValue::vkIdent ? info.OrdinalOf(value.Text) : -1;
      if (ord < 0) Fail(line, "'" + value.Text + "' is not a valid value for property " + info.Name);
      info.Set(target, Variant(static_cast<int32_t>(ord)));
      break;
    }
    case pkSet: {
      if (value.ValueKind != FormValue::vkSet) bad();
      uint64_t mask = 0;
      for (const std::string& name : value.Names) {
        const int ord = info.OrdinalOf(name);
        if (ord < 0 || ord >= 64) Fail(line, "'" + name + "' is not a member of property " + info.Name);
        mask |= uint64_t{1} << ord;
      }
      info.Set(target, Variant(static_cast<long long>(mask)));
      break;
    }
    case pkComponent:
      if (value.ValueKind != FormValue::vkIdent) bad();
      if (SameText(value.Text, "nil")) {
        info.SetComponent(target, nullptr);
      } else {
        info.SetComponent(target, nullptr);
        FFixups.push_back(Fixup{FCurrentInstance, &target, &info, value.Text, line});
        FCurrentInstance->SetComponentStateFlag(csFixups, true);
      }
      break;
    case pkObject: {
      TPersistent* object = info.GetObject(target);
      if (object == nullptr) Fail(line, "property " + info.Name + " holds no object");
      AssignItems(*object, info, value);
      break;
    }
    case pkBinary:
      if (value.ValueKind != FormValue::vkBinary) bad();
      info.Set(target, VarByteArrayOf(value.Text.data(), value.Text.size()));
      break;
  }
}

void TReader::AssignItems(TPersistent& object, const TPropInfo& info, const FormValue& value) {
  if (auto* strings = dynamic_cast<TStrings*>(&object); strings != nullptr && value.ValueKind == FormValue::vkList) {
    for (const FormValue& item : value.Items)
      if (item.ValueKind != FormValue::vkString) Fail(item.Line, "string expected in list of property " + info.Name);
    strings->BeginUpdate();
    try {
      strings->Clear();
      for (const FormValue& item : value.Items) strings->Add(item.Text);
    } catch (...) {
      strings->EndUpdate();
      throw;
    }
    strings->EndUpdate();
    return;
  }
  if (auto* collection = dynamic_cast<TCollection*>(&object);
      collection != nullptr && value.ValueKind == FormValue::vkCollection) {
    collection->BeginUpdate();
    try {
      collection->Clear();
      for (const FormValue::Item& item : value.CollectionItems) {
        TCollectionItem* instance = collection->Add();
        for (const FormProperty& prop : item.Properties) AssignProperty(*instance, prop);
      }
    } catch (...) {
      collection->EndUpdate();
      throw;
    }
    collection->EndUpdate();
    return;
  }
  Fail(value.Line, "invalid value for property " + info.Name);
}

void TReader::ResolveFixups() {
  for (const Fixup& f : FFixups) {
    TComponent* target = nullptr;
    const std::size_t dot = f.Name.find('.');
    if (dot == std::string::npos) {
      target = SameText(f.Name, FRoot->Name()) ? FRoot : FRoot->FindComponent(f.Name);
      if (target == nullptr) Fail(f.Line, "reference to unknown component '" + f.Name + "'");
    } else {
      TComponent* other = SameText(f.Name.substr(0, dot), FRoot->Name()) ? FRoot : FindGlobalComponent(f.Name.substr(0, dot));
      if (other != nullptr) target = other->FindComponent(f.Name.substr(dot + 1));
    }
    AtLine(f.Line, "error setting property " + f.Prop->Name + ": ", [&] { f.Prop->SetComponent(*f.Instance, target); });
  }
  for (const Fixup& f : FFixups) f.Component->SetComponentStateFlag(csFixups, false);
}

void TReader::DestroyCreated() {
  if (FOwnsRoot) {
    FRoot->Free();
  } else {
    for (auto it = FCreated.rbegin(); it != FCreated.rend(); ++it) (*it)->Free();
    FRoot->SetComponentStateFlag(csLoading, false);
    FRoot->SetComponentStateFlag(csReading, false);
    FRoot->SetComponentStateFlag(csFixups, false);
  }
  FCreated.clear();
}

}  // namespace fw
