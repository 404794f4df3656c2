// Published-property tables and the class registry.
#include "TClassInfo.h"

#include <map>
#include <mutex>

#include "StringUtils.h"
#include "TComponent.h"

namespace fw {

namespace {

struct NameLess {
  bool operator()(const std::string& a, const std::string& b) const { return CompareText(a, b) < 0; }
};

struct Registry {
  std::mutex Lock;
  std::map<std::string, const TClassInfo*, NameLess> Classes;
};

Registry& TheRegistry() {
  static Registry r;
  return r;
}

}  // namespace

int TPropInfo::OrdinalOf(std::string_view name) const {
  for (std::size_t i = 0; i < Names.size(); ++i)
    if (SameText(Names[i], name)) return static_cast<int>(i);
  return -1;
}

TClassInfo::TClassInfo(std::string name, const TClassInfo* parent, Factory create)
    : FName(std::move(name)), FParent(parent), FCreate(std::move(create)) {}

bool TClassInfo::InheritsFrom(const TClassInfo& other) const {
  for (const TClassInfo* c = this; c != nullptr; c = c->FParent)
    if (c == &other) return true;
  return false;
}

TComponent* TClassInfo::Create(TComponent* owner) const {
  if (!FCreate) throw EComponentError("Cannot create an instance of abstract class " + FName);
  return FCreate(owner);
}

const TPropInfo* TClassInfo::FindProperty(std::string_view name) const {
  for (const TClassInfo* c = this; c != nullptr; c = c->FParent)
    for (const TPropInfo& p : c->FProps)
      if (SameText(p.Name, name)) return &p;
  return nullptr;
}

std::vector<const TPropInfo*> TClassInfo::Properties() const {
  std::vector<const TPropInfo*> out = FParent != nullptr ? FParent->Properties() : std::vector<const TPropInfo*>{};
  for (const TPropInfo& p : FProps) out.push_back(&p);
  return out;
}

void TClassInfo::AddProperty(TPropInfo prop) {
  for (const TPropInfo& p : FProps)
    if (SameText(p.Name, prop.Name))
      throw EComponentError("Class " + FName + " already publishes a property " + prop.Name);
  FProps.push_back(std::move(prop));
}

void RegisterClass(const TClassInfo& cls) {
  Registry& r = TheRegistry();
  std::lock_guard<std::mutex> guard(r.Lock);
  auto [it, inserted] = r.Classes.emplace(cls.ClassName(), &cls);
  if (!inserted && it->second != &cls)
    throw EComponentError("A class named " + cls.ClassName() + " is already registered");
}

void RegisterClasses(std::initializer_list<const TClassInfo*> classes) {
  for (const TClassInfo* c : classes) RegisterClass(*c);
}

void UnRegisterClass(const TClassInfo& cls) {
  Registry& r = TheRegistry();
  std::lock_guard<std::mutex> guard(r.Lock);
  auto it = r.Classes.find(cls.ClassName());
  if (it != r.Classes.end() && it->second == &cls) r.Classes.erase(it);
}

const TClassInfo* GetClass(std::string_view name) {
  Registry& r = TheRegistry();
  std::lock_guard<std::mutex> guard(r.Lock);
  auto it = r.Classes.find(std::string(name));
  return it == r.Classes.end() ? nullptr : it->second;
}

const TClassInfo& FindClass(std::string_view name) {
  const TClassInfo* c = GetClass(name);
  if (c == nullptr) throw EClassNotFound("Class " + std::string(name) + " not found");
  return *c;
}

}  // namespace fw
