#include "tbxutl/platform/config.h"

#include <array>
#include <cstddef>
#include <cstdlib>
#include <mutex>
#include <set>

#include "tbxutl/platform/windows.h"

namespace {

using Setting = tbx::Config::Setting;

enum class Form { Path, Flag, Language, LanguageList, KeyPath };

struct Description {
  const char* variable;
  const char* name;
  Form form;
};

constexpr std::size_t kSettingCount = 9;

// In the order of tbx::Config::Setting.
constexpr Description kSettings[kSettingCount] = {
    {"TBXUTL_DATA_DIR", "DataDir", Form::Path},
    {"TBXUTL_SKIN_DIR", "SkinDir", Form::Path},
    {"TBXUTL_WORKSPACE_DIR", "WorkspaceDir", Form::Path},
    {"TBXUTL_ASSERT", "Assert", Form::Flag},
    {"TBXUTL_LANGUAGE_DIR", "LanguageDir", Form::Path},
    {"TBXUTL_UI_LANGUAGE", "UILanguage", Form::Language},
    {"TBXUTL_LANGUAGES", "Languages", Form::LanguageList},
    {"TBXUTL_APP_KEY", "AppKey", Form::KeyPath},
    {"TBXUTL_INI_FILE", "IniFile", Form::Path},
};

// The index of a setting in kSettings; kSettingCount for a value that names none.
std::size_t IndexOf(Setting setting) {
  const auto index = static_cast<std::size_t>(setting);
  return index < kSettingCount ? index : kSettingCount;
}

bool IsAsciiLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool IsLanguageCode(std::string_view text) {
  return text.size() == 2 && IsAsciiLetter(text[0]) && IsAsciiLetter(text[1]);
}

std::string_view TrimSpaces(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

// The codes of a list, or an empty list when one of them is not a code.
std::vector<std::string> ParseLanguageList(std::string_view text) {
  std::vector<std::string> codes;
  for (;;) {
    const std::string_view::size_type comma = text.find(',');
    const std::string_view code = TrimSpaces(text.substr(0, comma));
    if (!IsLanguageCode(code)) return {};
    codes.emplace_back(code);
    if (comma == std::string_view::npos) return codes;
    text.remove_prefix(comma + 1);
  }
}

// "Software\Tobix\App": components that are not empty, and no root name.
bool IsKeyPath(std::string_view text) {
  if (text.size() >= 5) {
    bool root = true;
    for (std::size_t i = 0; i < 5 && root; ++i) {
      const char c = text[i];
      root = (c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c) == "HKEY_"[i];
    }
    if (root) return false;
  }
  std::size_t componentLength = 0;
  for (char c : text) {
    if (c == '\\') {
      if (componentLength == 0) return false;
      componentLength = 0;
    } else {
      ++componentLength;
    }
  }
  return componentLength != 0;
}

bool IsWellFormed(Form form, std::string_view text) {
  switch (form) {
    case Form::Path: return true;
    case Form::Flag: return text == "1" || text == "0";
    case Form::Language: return IsLanguageCode(text);
    case Form::LanguageList: return !ParseLanguageList(text).empty();
    case Form::KeyPath: return IsKeyPath(text);
  }
  return false;
}

const char* FormText(Form form) {
  switch (form) {
    case Form::Path: return "a path";
    case Form::Flag: return "\"1\" or \"0\"";
    case Form::Language: return "a language code of two letters";
    case Form::LanguageList: return "language codes of two letters separated by commas";
    case Form::KeyPath: return "a registry key path below the root";
  }
  return "";
}

struct State {
  std::mutex mutex;
  std::array<std::string, kSettingCount> hostValues;  // well-formed or empty
  std::set<std::string> reported;
};

// Lives until the process ends, so that static destructors can still read it.
State& TheState() {
  static State* state = new State;
  return *state;
}

void ReportOnce(const std::string& message) {
  bool first;
  {
    std::lock_guard<std::mutex> lock(TheState().mutex);
    first = TheState().reported.insert(message).second;
  }
  if (first) OutputDebugStringA(message.c_str());
}

// The setting's text, host's first; "" when not set.
std::string Lookup(Setting setting) {
  const std::size_t index = IndexOf(setting);
  if (index == kSettingCount) return {};
  {
    std::lock_guard<std::mutex> lock(TheState().mutex);
    if (!TheState().hostValues[index].empty()) return TheState().hostValues[index];
  }
  const Description& description = kSettings[index];
  const char* value = std::getenv(description.variable);
  if (value == nullptr || *value == '\0') return {};
  if (!IsWellFormed(description.form, value)) {
    ReportOnce(std::string("tbxutl: ") + description.variable + "=\"" + value + "\" is not " +
               FormText(description.form) + "; ignored\n");
    return {};
  }
  return value;
}

}  // namespace

namespace tbx {

bool Config::Set(Setting setting, std::string_view value) {
  const std::size_t index = IndexOf(setting);
  if (index == kSettingCount) return false;
  const Description& description = kSettings[index];
  const bool wellFormed = IsWellFormed(description.form, value);
  {
    std::lock_guard<std::mutex> lock(TheState().mutex);
    TheState().hostValues[index] = wellFormed ? std::string(value) : std::string();
  }
  if (!wellFormed && !value.empty()) {
    ReportOnce(std::string("tbxutl: tbx::Config ") + description.name + " \"" + std::string(value) +
               "\" is not " + FormText(description.form) + "; refused\n");
    return false;
  }
  return true;
}

void Config::Clear(Setting setting) { Set(setting, {}); }

void Config::ClearAll() {
  std::lock_guard<std::mutex> lock(TheState().mutex);
  for (std::string& value : TheState().hostValues) value.clear();
}

std::string Config::DataDir() { return Lookup(Setting::DataDir); }
std::string Config::SkinDir() { return Lookup(Setting::SkinDir); }
std::string Config::WorkspaceDir() { return Lookup(Setting::WorkspaceDir); }
std::string Config::LanguageDir() { return Lookup(Setting::LanguageDir); }
std::string Config::UILanguage() { return Lookup(Setting::UILanguage); }
std::string Config::AppKey() { return Lookup(Setting::AppKey); }
std::string Config::IniFile() { return Lookup(Setting::IniFile); }

std::optional<bool> Config::AssertDialogs() {
  const std::string value = Lookup(Setting::Assert);
  if (value.empty()) return std::nullopt;
  return value == "1";
}

std::vector<std::string> Config::Languages() {
  const std::string value = Lookup(Setting::Languages);
  if (value.empty()) return {};
  return ParseLanguageList(value);
}

const char* Config::EnvironmentVariable(Setting setting) {
  const std::size_t index = IndexOf(setting);
  return index < kSettingCount ? kSettings[index].variable : "";
}

}  // namespace tbx
