// FormDocument: reading a form for design, its components and editors, and saving it safely.
#include "FormDocument.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "Exception.h"
#include "PropertyEditorRegistry.h"
#include "StringUtils.h"
#include "TDataModule.h"
#include "TReader.h"
#include "TWriter.h"

namespace ctdesign {

namespace {

// The root of a form whose class this designer does not know (a program's own form class): it
// carries the file's class name, so that the form is read and written back under it, and
// publishes what every component does.
class StandInRoot : public fw::TComponent {
 public:
  explicit StandInRoot(const fw::TClassInfo& cls) : fw::TComponent(nullptr), FClass(cls) {}
  const fw::TClassInfo& ClassType() const override { return FClass; }

 private:
  const fw::TClassInfo& FClass;
};

// "order-entry.fm" gives "Order_entry": the file's base name as an identifier.
std::string RootNameFor(const std::string& fileName) {
  std::string name = fw::ChangeFileExt(fw::ExtractFileName(fileName), "");
  for (char& c : name)
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_') c = '_';
  if (name.empty() || std::isdigit(static_cast<unsigned char>(name[0]))) name = "Form" + name;
  name[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(name[0])));
  return name;
}

[[noreturn]] void SaveFailed(const std::string& what, const std::string& temp, int fd) {
  const int error = errno;
  if (fd >= 0) close(fd);
  unlink(temp.c_str());
  throw fw::EInOutError(what + ": " + std::strerror(error), error);
}

}  // namespace

FormDocument::FormDocument(std::string fileName) : FFileName(std::move(fileName)) { Load(); }

FormDocument::~FormDocument() { fw::SetRootDesigner(FRoot.get(), nullptr); }

void FormDocument::Load() {
  auto emptyForm = [this](const std::string& name) {
    FRoot.reset(new fw::TDataModule(nullptr));
    FRoot->SetName(name);
    FRoot->SetDesigning(true);
  };
  std::ifstream in(FFileName, std::ios::binary);
  if (!in) {
    const int error = errno;
    std::error_code ignored;
    if (!std::filesystem::exists(FFileName, ignored))
      FNew = true;
    else
      FLoadError = "Cannot open " + FFileName + ": " + std::strerror(error);
    emptyForm(RootNameFor(FFileName));
  } else {
    std::ostringstream text;
    text << in.rdbuf();
    try {
      const std::string className = fw::ReadFormClassName(text.str());
      const fw::TClassInfo* cls = fw::GetClass(className);
      if (cls != nullptr && cls->CanCreate()) {
        FRoot.reset(cls->Create(nullptr));
      } else {
        FRootClass = std::make_unique<fw::TClassInfo>(className, &fw::TComponent::StaticClass());
        FRoot.reset(new StandInRoot(*FRootClass));
      }
      // Set before reading, so that every component the reader inserts is designed too.
      FRoot->SetDesigning(true);
      fw::ReadComponentText(text.str(), FRoot.get());
    } catch (const std::exception& e) {
      FLoadError = e.what();
      FRoot.reset();
      emptyForm(RootNameFor(FFileName));
    }
  }
  fw::SetRootDesigner(FRoot.get(), this);
}

std::vector<fw::TComponent*> FormDocument::Components() const {
  std::vector<fw::TComponent*> list;
  for (int i = 0; i < FRoot->ComponentCount(); ++i) list.push_back(FRoot->Components(i));
  return list;
}

void FormDocument::Select(fw::TComponent* component) { FSelected = component; }

fw::TComponent* FormDocument::AddComponent(const fw::TClassInfo& cls) {
  if (!FLoadError.empty())
    throw fw::Exception("The form could not be read, so nothing can be added to it");
  std::string base = cls.ClassName();
  if (base.size() > 1 && (base[0] == 'T' || base[0] == 't')) base.erase(0, 1);
  std::string name;
  for (int n = 1; name.empty() || FRoot->FindComponent(name) != nullptr; ++n)
    name = base + std::to_string(n);
  fw::TComponent* component = cls.Create(FRoot.get());
  try {
    component->SetName(name);
  } catch (...) {
    component->Free();
    throw;
  }
  FSelected = component;
  Modified();
  return component;
}

void FormDocument::DeleteSelected() {
  if (FSelected == nullptr) return;
  fw::TComponent* doomed = FSelected;
  FSelected = nullptr;
  doomed->Free();
  Modified();
}

std::vector<PropertyRow> FormDocument::Properties() {
  std::vector<PropertyRow> rows;
  if (FSelected == nullptr) return rows;
  for (const fw::TPropInfo* info : FSelected->ClassType().Properties())
    rows.push_back({info, fw::GetPropertyEditor(*this, {FSelected}, *info)});
  return rows;
}

void FormDocument::Save() {
  if (!FLoadError.empty())
    throw fw::Exception("The form could not be read, so it is not written back");
  const std::string text = fw::WriteComponentText(*FRoot);
  // The new text goes to a file of its own in the same directory (a rename does not cross file
  // systems), reaches the disk, and only then replaces the old file in one step.
  const std::string temp = FFileName + ".saving-" + std::to_string(getpid());
  mode_t mode = 0644;
  struct stat old {};
  if (stat(FFileName.c_str(), &old) == 0) mode = old.st_mode & 07777;
  const int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode);
  if (fd < 0) SaveFailed("Cannot create " + temp, temp, -1);
  for (size_t done = 0; done < text.size();) {
    const ssize_t n = write(fd, text.data() + done, text.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) SaveFailed("Cannot write " + temp, temp, fd);
    done += static_cast<size_t>(n);
  }
  if (fsync(fd) != 0) SaveFailed("Cannot write " + temp, temp, fd);
  if (close(fd) != 0) SaveFailed("Cannot write " + temp, temp, -1);
  if (rename(temp.c_str(), FFileName.c_str()) != 0)
    SaveFailed("Cannot replace " + FFileName, temp, -1);
  FModified = false;
  FNew = false;
}

}  // namespace ctdesign
