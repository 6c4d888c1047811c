#pragma once
// Tests only: the registry of the config tests.
//
// On Linux the whole test program keeps its registry in a fresh temporary
// folder (TBXUTL_REGISTRY_DIR); Windows ignores the variable, so there each
// test works below a key of its own, which goes when the test ends.

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <set>
#include <string>

#include "tbxutl/config/registry.h"
#include "tbxutl/platform/scoped_env_testing.h"
#include "tbxutl/testing/temp_folder_testing.h"

namespace tbx::testing {

class RegistryFolderEnvironment : public ::testing::Environment {
 public:
  void SetUp() override {
    m_folder.emplace();
    m_env.emplace("TBXUTL_REGISTRY_DIR", m_folder->path().c_str());
  }
  void TearDown() override {
    m_env.reset();
    m_folder.reset();
  }

 private:
  std::optional<TempFolder> m_folder;
  std::optional<ScopedEnv> m_env;
};

inline ::testing::Environment* const kRegistryFolderEnvironment =
    ::testing::AddGlobalTestEnvironment(new RegistryFolderEnvironment);

// "HKEY_CURRENT_USER\Software\TbxutlTest\<test>-<random>", deleted with
// everything below it when the object goes.
class TestKey {
 public:
  TestKey() {
    std::random_device random;
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    m_path = std::string(kParent) + "\\" + (test != nullptr ? test->name() : "key") + "-" +
             std::to_string(random());
    for (char& c : m_path) {
      if (c == '/') c = '_';  // parameterised test names
    }
  }
  ~TestKey() {
    WUTLRegistry::DeleteRegistryKey(m_path.c_str());
    // Only goes when no other test key is left below it.
    RegDeleteKeyA(HKEY_CURRENT_USER, "Software\\TbxutlTest");
  }
  TestKey(const TestKey&) = delete;
  TestKey& operator=(const TestKey&) = delete;

  const char* path() const { return m_path.c_str(); }
  // The path of a key below this one.
  std::string operator/(const std::string& name) const { return m_path + "\\" + name; }

  static constexpr const char* kParent = "HKEY_CURRENT_USER\\Software\\TbxutlTest";

 private:
  std::string m_path;
};

// The names of a double-zero list (values enumerate in different orders on
// different platforms).
inline std::multiset<std::string> NamesOfList(const char* list) {
  std::multiset<std::string> names;
  for (const char* p = list; *p != '\0'; p += std::string(p).size() + 1) names.insert(p);
  return names;
}

}  // namespace tbx::testing
