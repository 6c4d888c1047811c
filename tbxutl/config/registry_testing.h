#pragma once
// Tests only. On Linux the test program keeps its registry in a fresh
// temporary folder (TBXUTL_REGISTRY_DIR, which Windows ignores); on both
// platforms each test works below a key of its own, deleted at its end.

#include <gtest/gtest.h>

#include <optional>
#include <random>
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

// "HKEY_CURRENT_USER\Software\TbxutlTest\<test name>-<random number>".
class TestKey {
 public:
  TestKey() {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    m_path = std::string("HKEY_CURRENT_USER\\Software\\TbxutlTest\\") + test->name() + "-" +
             std::to_string(std::random_device()());
  }
  ~TestKey() {
    WUTLRegistry::DeleteRegistryKey(m_path.c_str());
    RegDeleteKeyA(HKEY_CURRENT_USER, "Software\\TbxutlTest");  // only when no other test's key is left
  }
  TestKey(const TestKey&) = delete;
  TestKey& operator=(const TestKey&) = delete;

  const char* path() const { return m_path.c_str(); }
  std::string operator/(const std::string& below) const { return m_path + "\\" + below; }

 private:
  std::string m_path;
};

}  // namespace tbx::testing
