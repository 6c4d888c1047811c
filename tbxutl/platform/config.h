#pragma once
// The suite's directories and settings that a host supplies to the library.
//
// Each setting is read from the value the host set on tbx::Config first and
// then from its environment variable. An empty value counts as not set, and
// so does a value that is not of the setting's form: a malformed environment
// value is reported once on the debug output (OutputDebugStringA) and
// ignored; a malformed host value is refused by Set.
//
//   Setting       Environment variable   Form
//   DataDir       TBXUTL_DATA_DIR        directory: the application family's data
//   SkinDir       TBXUTL_SKIN_DIR        directory: the application's skin
//   WorkspaceDir  TBXUTL_WORKSPACE_DIR   directory: the user's workspaces
//   Assert        TBXUTL_ASSERT          "1": show assertion dialogs, "0": do not
//   LanguageDir   TBXUTL_LANGUAGE_DIR    directory: the base language directory
//   UILanguage    TBXUTL_UI_LANGUAGE     a language code of two letters: "de"
//   Languages     TBXUTL_LANGUAGES       the registered languages, codes of two
//                                        letters separated by commas: "en,de,fr"
//                                        (spaces around a code are allowed)
//   AppKey        TBXUTL_APP_KEY         the application's registry key path
//                                        below the root: "Software\Tobix\App"
//                                        (no empty component, no root name)
//   IniFile       TBXUTL_INI_FILE        file: the configuration file of custom units
//
// Directories and files are paths as the file functions take them. A host
// sets its values in one place, for example at start:
//
//   tbx::Config::Set(tbx::Config::Setting::DataDir, "/opt/suite/data");
//   tbx::Config::Set(tbx::Config::Setting::Languages, "en,de");
//
// and removes them with Clear or ClearAll. Every member is safe to call from
// any thread. The environment is read at each call; changing it while other
// threads read it is a race of the host's own (as with getenv).

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tbxutl/export.h"

namespace tbx {

class TBXUTL_API Config {
 public:
  enum class Setting {
    DataDir,
    SkinDir,
    WorkspaceDir,
    Assert,
    LanguageDir,
    UILanguage,
    Languages,
    AppKey,
    IniFile,
  };

  Config() = delete;

  // Sets the host's value of a setting, in the form of its environment
  // variable. An empty value clears it. A malformed value clears it too, is
  // reported once on the debug output, and answers false.
  static bool Set(Setting setting, std::string_view value);
  static void Clear(Setting setting);
  static void ClearAll();

  // The setting's value: the host's, else the environment's. Not set gives
  // "", std::nullopt or an empty list.
  static std::string DataDir();
  static std::string SkinDir();
  static std::string WorkspaceDir();
  static std::optional<bool> AssertDialogs();
  static std::string LanguageDir();
  static std::string UILanguage();
  static std::vector<std::string> Languages();
  static std::string AppKey();
  static std::string IniFile();

  // "TBXUTL_DATA_DIR" ... for the setting.
  static const char* EnvironmentVariable(Setting setting);
};

}  // namespace tbx
