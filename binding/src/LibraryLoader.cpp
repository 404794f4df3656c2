// The binding layer's library loader: loading a variant's file and binding its entry points.
#include "LibraryLoader.h"

#include <dlfcn.h>

#include "CtMessages.h"
#include "ECtreeException.h"
#include "EntryPoints.h"
#include "StringUtils.h"

namespace CTDbIntf {

std::array<std::string, kVariantCount> LibraryNames = {"libctstd32b.so", "libctstd32w.so",
                                                       "libctstd32d.so", "libctreebm.so",
                                                       "libctreebr.so",  "libctreebc.so"};
std::array<bool, kVariantCount> LoadedVariants{};
std::array<void*, kVariantCount> Handles{};

namespace {

std::uint64_t lookupCount = 0;
std::string LoaderMessage;

[[noreturn]] void RaiseLoaderError(std::int32_t ident, std::initializer_list<fw::Variant> args) {
  throw ECtreeException(fw::Format(std::string(*CtMessage(ident)), args), 0);
}

// The slow path of LoadCTreeDLL: load the file, then bind every name in order.
void LoadVariant(TLoadAlignment alignment) {
  if (alignment >= kVariantCount)
    RaiseLoaderError(kMsgCannotLoad,
                     {fw::Variant("<alignment " + std::to_string(alignment) + ">")});
  // A local copy: the name stays what it was when loading started, for the messages too.
  const std::string fileName = LibraryNames[alignment];
  // An empty name would make the platform loader return the main program: refuse it.
  void* handle = fileName.empty() ? nullptr : dlopen(fileName.c_str(), RTLD_NOW | RTLD_LOCAL);
  Handles[alignment] = handle;
  if (handle == nullptr) {
    const char* why = fileName.empty() ? nullptr : dlerror();
    LoaderMessage = why != nullptr ? why : "";
    RaiseLoaderError(kMsgCannotLoad, {fw::Variant(fileName)});
  }
  LoaderMessage.clear();
  // Names bound before a failure keep their new addresses and the library stays loaded; the
  // variant is not marked loaded, so the next call loads and binds again from the start.
  for (const TBinding& binding : BindingOrder()) {
    ++lookupCount;
    void* address = dlsym(handle, binding.Name);
    if (address == nullptr)
      RaiseLoaderError(kMsgProcNotFound,
                       {fw::Variant(std::string(binding.Name)), fw::Variant(fileName)});
    binding.Store(address);
  }
  LoadedVariants[alignment] = true;
}

// Unit finalization: unloads every variant, ordinals 0 to 5 in turn, then releases the names.
// Declared after the arrays above so that it is destroyed before them.
struct TFinalization {
  ~TFinalization() {
    for (std::size_t i = 0; i < kVariantCount; ++i) UnLoadCTreeDLL(static_cast<TLoadAlignment>(i));
    for (std::string& name : LibraryNames) name.clear();
  }
} finalization;

}  // namespace

const std::string& LastLoaderMessage() { return LoaderMessage; }

void LoadCTreeDLL(TLoadAlignment Alignment) {
  if (Alignment < kVariantCount && LoadedVariants[Alignment]) return;
  LoadVariant(Alignment);
}

void UnLoadCTreeDLL(TLoadAlignment Alignment) {
  const unsigned index = static_cast<unsigned>(Alignment) & 0x7Fu;
  if (index >= kVariantCount || !LoadedVariants[index]) return;
  dlclose(Handles[index]);
  LoadedVariants[index] = false;
}

std::uint64_t EntryPointLookupCount() { return lookupCount; }

}  // namespace CTDbIntf
