#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "tbxutl/platform/config.h"
#include "tbxutl/platform/scoped_env_testing.h"

using tbx::Config;
using tbx::testing::ScopedEnv;
using Setting = Config::Setting;

namespace {

// What a setting's getter answers, in the setting's text form.
std::string Value(Setting setting) {
  if (setting == Setting::Assert) {
    const std::optional<bool> on = Config::AssertDialogs();
    return on ? (*on ? "1" : "0") : "";
  }
  if (setting == Setting::Languages) {
    std::string joined;
    for (const std::string& code : Config::Languages()) joined += (joined.empty() ? "" : ",") + code;
    return joined;
  }
  using Getter = std::string (*)();
  const Getter getters[] = {Config::DataDir,     Config::SkinDir,    Config::WorkspaceDir,
                            nullptr,             Config::LanguageDir, Config::UILanguage,
                            nullptr,             Config::AppKey,     Config::IniFile};
  return getters[static_cast<int>(setting)]();
}

class ConfigTest : public ::testing::Test {
 protected:
  void SetUp() override { Config::ClearAll(); }
  void TearDown() override { Config::ClearAll(); }
};

}  // namespace

TEST_F(ConfigTest, HostValueComesBeforeTheEnvironment) {
  const struct {
    Setting setting;
    const char *variable, *host, *environment, *malformed;  // null: no malformed form
  } cases[] = {
      {Setting::DataDir, "TBXUTL_DATA_DIR", "/host/data", "C:\\Suite\\Data", nullptr},
      {Setting::SkinDir, "TBXUTL_SKIN_DIR", "/host/skin", "/env/skin", nullptr},
      {Setting::WorkspaceDir, "TBXUTL_WORKSPACE_DIR", "/host/ws", "/env/ws", nullptr},
      {Setting::Assert, "TBXUTL_ASSERT", "0", "1", "yes"},
      {Setting::LanguageDir, "TBXUTL_LANGUAGE_DIR", "/host/lang", "/env/lang", nullptr},
      {Setting::UILanguage, "TBXUTL_UI_LANGUAGE", "de", "fr", "deu"},
      {Setting::Languages, "TBXUTL_LANGUAGES", "en,de", "fr", "en,deu"},
      {Setting::AppKey, "TBXUTL_APP_KEY", "Software\\Tobix\\App", "Software\\Other", "\\Software"},
      {Setting::IniFile, "TBXUTL_INI_FILE", "/host/units.ini", "/env/units.ini", nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.variable);
    EXPECT_STREQ(Config::EnvironmentVariable(c.setting), c.variable);
    {
      ScopedEnv empty(c.variable, "");
      EXPECT_EQ(Value(c.setting), "") << "an empty variable is not set";
    }
    if (c.malformed != nullptr) {
      ScopedEnv malformed(c.variable, c.malformed);
      EXPECT_EQ(Value(c.setting), "") << "a malformed variable is not set";
    }
    ScopedEnv env(c.variable, c.environment);
    EXPECT_EQ(Value(c.setting), c.environment);
    EXPECT_TRUE(Config::Set(c.setting, c.host));
    EXPECT_EQ(Value(c.setting), c.host);
    if (c.malformed != nullptr) {
      EXPECT_FALSE(Config::Set(c.setting, c.malformed));
      EXPECT_EQ(Value(c.setting), c.environment) << "a refused host value leaves none";
    }
    EXPECT_TRUE(Config::Set(c.setting, c.host));
    EXPECT_TRUE(Config::Set(c.setting, "")) << "an empty value clears";
    EXPECT_EQ(Value(c.setting), c.environment);
    EXPECT_TRUE(Config::Set(c.setting, c.host));
    Config::Clear(c.setting);
    EXPECT_EQ(Value(c.setting), c.environment);
  }
}

TEST_F(ConfigTest, FormsOfTheSettings) {
  const struct {
    Setting setting;
    const char* value;
    const char* read;  // null: malformed
  } cases[] = {
      {Setting::Assert, " 1", nullptr},
      {Setting::UILanguage, "EN", "EN"},
      {Setting::UILanguage, "e1", nullptr},
      {Setting::Languages, "en,de,fr", "en,de,fr"},
      {Setting::Languages, " en , de ", "en,de"},
      {Setting::Languages, "en,,de", nullptr},
      {Setting::Languages, "en;de", nullptr},
      {Setting::AppKey, "Software\\Tobix\\", nullptr},
      {Setting::AppKey, "Software\\\\App", nullptr},
      {Setting::AppKey, "hkey_current_user\\Software", nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << Config::EnvironmentVariable(c.setting) << "=" << c.value);
    EXPECT_EQ(Config::Set(c.setting, c.value), c.read != nullptr);
    EXPECT_EQ(Value(c.setting), c.read != nullptr ? c.read : "");
  }
}

TEST_F(ConfigTest, MalformedEnvironmentValueIsReportedOnce) {
#if defined(_WIN32)
  GTEST_SKIP() << "the debugger output of Windows cannot be read back here";
#else
  ScopedEnv debug("TBXUTL_DEBUG_OUTPUT", "1");
  ScopedEnv env("TBXUTL_UI_LANGUAGE", "english");
  testing::internal::CaptureStderr();
  EXPECT_EQ(Config::UILanguage(), "");
  EXPECT_EQ(Config::UILanguage(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "tbxutl: TBXUTL_UI_LANGUAGE=\"english\" is not a language code of two letters; ignored\n");
#endif
}
