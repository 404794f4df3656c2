// The designer of each form: a table kept up to date through removal notices.
#include "IDesigner.h"

#include <map>

#include "TComponent.h"

namespace fw {

namespace {

// Forms with a designer. A component of its own, so that a form's destruction removes its
// entry; never destroyed, since forms may outlive every static object of the program.
class RootDesigners : public TComponent {
 public:
  RootDesigners() : TComponent(nullptr) {}

  static RootDesigners& Instance() {
    static RootDesigners* table = new RootDesigners();
    return *table;
  }

  void Set(TComponent* root, IDesigner* designer) {
    if (designer == nullptr) {
      if (FDesigners.erase(root) > 0) root->RemoveFreeNotification(this);
      return;
    }
    FDesigners[root] = designer;
    root->FreeNotification(this);
  }

  IDesigner* Find(const TComponent* root) const {
    auto it = FDesigners.find(root);
    return it == FDesigners.end() ? nullptr : it->second;
  }

  void Notification(TComponent* c, TOperation operation) override {
    TComponent::Notification(c, operation);
    if (operation == opRemove) FDesigners.erase(c);
  }

 private:
  std::map<const TComponent*, IDesigner*> FDesigners;
};

}  // namespace

void SetRootDesigner(TComponent* root, IDesigner* designer) {
  if (root != nullptr) RootDesigners::Instance().Set(root, designer);
}

IDesigner* FindRootDesigner(const TComponent* component) {
  if (component == nullptr) return nullptr;
  while (component->Owner() != nullptr) component = component->Owner();
  return RootDesigners::Instance().Find(component);
}

}  // namespace fw
