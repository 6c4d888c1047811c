#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tbxutl/frame/fixed_strings.h"

#if defined(_WIN32)
#  include <windows.h>
#else
#  include <dlfcn.h>
#endif

namespace {

const std::vector<std::string> kExportedNames = {
#include "tbxutl_exported_names.inc"
};

void* FindExport(const std::string& name) {
#if defined(_WIN32)
  HMODULE library = GetModuleHandleA("tbxutl.dll");
  return library ? reinterpret_cast<void*>(GetProcAddress(library, name.c_str())) : nullptr;
#else
  return dlsym(RTLD_DEFAULT, name.c_str());
#endif
}

}  // namespace

// Applications bind to the plain functions by their undecorated names.
TEST(Exports, EveryPlainFunctionResolvesByItsUndecoratedName) {
  ASSERT_FALSE(kExportedNames.empty());
  for (const std::string& name : kExportedNames) {
    EXPECT_NE(FindExport(name), nullptr) << name;
  }
  EXPECT_EQ(FindExport("NoSuchFunctionInTbxutl"), nullptr);
}

TEST(Exports, NameLeadsToTheFunctionThatCallersLinkTo) {
  EXPECT_EQ(FindExport("UTLGetString"), reinterpret_cast<void*>(&UTLGetString));
}
