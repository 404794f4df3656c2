// Test fixture of the binding layer: restores the loader's state around each test.
#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>

#include "CTDbIntf.h"

namespace CTDbIntf::testing {

/// Runs `call`, expects ECtreeException and returns it.
template <class F>
ECtreeException Raised(F call) {
  try {
    call();
  } catch (const ECtreeException& e) {
    return e;
  }
  ADD_FAILURE() << "no ECtreeException raised";
  return ECtreeException("");
}

class BindingTest : public ::testing::Test {
 protected:
  void SetUp() override {
    savedNames_ = LibraryNames;
    UnloadAll();
  }
  void TearDown() override {
    UnloadAll();
    LibraryNames = savedNames_;
  }

  static void UnloadAll() {
    for (std::size_t i = 0; i < kVariantCount; ++i) UnLoadCTreeDLL(static_cast<TLoadAlignment>(i));
  }

  // Name of the last entry point called in the stand-in library loaded for `alignment`.
  static std::string LastCall(TLoadAlignment alignment) {
    auto lastCall =
        reinterpret_cast<const char* (*)()>(dlsym(Handles[alignment], "fake_last_call"));
    EXPECT_NE(lastCall, nullptr);
    return lastCall ? lastCall() : "";
  }

  // Whether the platform loader has the file mapped right now.
  static bool IsMapped(const std::string& path) {
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr) dlclose(handle);
    return handle != nullptr;
  }

 private:
  std::array<std::string, kVariantCount> savedNames_;
};

}  // namespace CTDbIntf::testing
