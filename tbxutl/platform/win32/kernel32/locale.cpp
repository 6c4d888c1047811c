#include "tbxutl/platform/win32/kernel32/locale.h"

#include <langinfo.h>
#include <locale.h>

#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "tbxutl/platform/win32/kernel32/last_error.h"
#include "tbxutl/platform/win32/winerror.h"

namespace {

// UTF-8 spellings of the separators that are not ASCII.
#define NBSP "\xC2\xA0"            // no-break space
#define RSQUO "\xE2\x80\x99"       // right single quotation mark
#define A_RING "\xC3\xA5"          // small a with ring above

// One locale as Windows describes it. The first entry of a language is the
// one its neutral LCID and a country we do not list lead to.
struct LocaleEntry {
  LANGID langId;
  const char* iso639;
  const char* iso3166;
  const char* displayName;  // LOCALE_SLANGUAGE
  const char* englishName;  // LOCALE_SENGLANGUAGE
  unsigned ansiCodePage;
  const char* decimal;
  const char* thousand;
  const char* list;
};

constexpr LocaleEntry kLocales[] = {
    {0x0409, "en", "US", "English (United States)", "English", 1252, ".", ",", ","},
    {0x0809, "en", "GB", "English (United Kingdom)", "English", 1252, ".", ",", ","},
    {0x0C09, "en", "AU", "English (Australia)", "English", 1252, ".", ",", ","},
    {0x1009, "en", "CA", "English (Canada)", "English", 1252, ".", ",", ","},
    {0x1409, "en", "NZ", "English (New Zealand)", "English", 1252, ".", ",", ","},
    {0x1809, "en", "IE", "English (Ireland)", "English", 1252, ".", ",", ","},
    {0x0407, "de", "DE", "German (Germany)", "German", 1252, ",", ".", ";"},
    {0x0C07, "de", "AT", "German (Austria)", "German", 1252, ",", NBSP, ";"},
    {0x0807, "de", "CH", "German (Switzerland)", "German", 1252, ".", RSQUO, ";"},
    {0x040C, "fr", "FR", "French (France)", "French", 1252, ",", NBSP, ";"},
    {0x080C, "fr", "BE", "French (Belgium)", "French", 1252, ",", NBSP, ";"},
    {0x0C0C, "fr", "CA", "French (Canada)", "French", 1252, ",", NBSP, ";"},
    {0x100C, "fr", "CH", "French (Switzerland)", "French", 1252, ",", NBSP, ";"},
    {0x0410, "it", "IT", "Italian (Italy)", "Italian", 1252, ",", ".", ";"},
    {0x0810, "it", "CH", "Italian (Switzerland)", "Italian", 1252, ".", RSQUO, ";"},
    {0x0C0A, "es", "ES", "Spanish (Spain)", "Spanish", 1252, ",", ".", ";"},
    {0x080A, "es", "MX", "Spanish (Mexico)", "Spanish", 1252, ".", ",", ";"},
    {0x0413, "nl", "NL", "Dutch (Netherlands)", "Dutch", 1252, ",", ".", ";"},
    {0x0813, "nl", "BE", "Dutch (Belgium)", "Dutch", 1252, ",", ".", ";"},
    {0x0416, "pt", "BR", "Portuguese (Brazil)", "Portuguese", 1252, ",", ".", ";"},
    {0x0816, "pt", "PT", "Portuguese (Portugal)", "Portuguese", 1252, ",", NBSP, ";"},
    {0x041D, "sv", "SE", "Swedish (Sweden)", "Swedish", 1252, ",", NBSP, ";"},
    {0x0406, "da", "DK", "Danish (Denmark)", "Danish", 1252, ",", ".", ";"},
    {0x0414, "nb", "NO", "Norwegian Bokm" A_RING "l (Norway)", "Norwegian Bokm" A_RING "l", 1252, ",",
     NBSP, ";"},
    {0x040B, "fi", "FI", "Finnish (Finland)", "Finnish", 1252, ",", NBSP, ";"},
    {0x0415, "pl", "PL", "Polish (Poland)", "Polish", 1250, ",", NBSP, ";"},
    {0x0405, "cs", "CZ", "Czech (Czechia)", "Czech", 1250, ",", NBSP, ";"},
    {0x040E, "hu", "HU", "Hungarian (Hungary)", "Hungarian", 1250, ",", NBSP, ";"},
    {0x0419, "ru", "RU", "Russian (Russia)", "Russian", 1251, ",", NBSP, ";"},
    {0x041F, "tr", "TR", "Turkish (Turkey)", "Turkish", 1254, ",", ".", ";"},
    {0x0408, "el", "GR", "Greek (Greece)", "Greek", 1253, ",", ".", ";"},
    {0x0411, "ja", "JP", "Japanese (Japan)", "Japanese", 932, ".", ",", ","},
    {0x0412, "ko", "KR", "Korean (Korea)", "Korean", 949, ".", ",", ","},
    {0x0804, "zh", "CN", "Chinese (Simplified, China)", "Chinese (Simplified)", 936, ".", ",", ","},
    {0x0404, "zh", "TW", "Chinese (Traditional, Taiwan)", "Chinese (Traditional)", 950, ".", ",", ","},
};

constexpr LocaleEntry kInvariant = {
    LANG_INVARIANT, "iv", "IV", "Invariant Language (Invariant Country)", "Invariant Language",
    1252, ".", ",", ","};

#undef NBSP
#undef RSQUO
#undef A_RING

const LocaleEntry& kEnglishUS = kLocales[0];

const LocaleEntry* FindByLangId(LANGID langId) {
  for (const LocaleEntry& entry : kLocales) {
    if (entry.langId == langId) return &entry;
  }
  return nullptr;
}

const LocaleEntry* FindByPrimaryLanguage(WORD primary) {
  for (const LocaleEntry& entry : kLocales) {
    if (PRIMARYLANGID(entry.langId) == primary) return &entry;
  }
  return nullptr;
}

char AsciiLower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }
char AsciiUpper(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

bool IsCLocaleName(std::string_view name) {
  return name.empty() || name == "C" || name == "POSIX" || name.starts_with("C.");
}

// The entry of a POSIX locale name "language[_territory][.codeset][@modifier]":
// the exact language and territory, else the language's first entry; null
// for "C", "POSIX" and languages we do not know.
const LocaleEntry* FindByPosixName(std::string_view name) {
  if (IsCLocaleName(name)) return nullptr;
  std::string_view::size_type end = name.find_first_of(".@");
  if (end != std::string_view::npos) name = name.substr(0, end);
  std::string_view language = name.substr(0, name.find('_'));
  std::string_view territory;
  if (language.size() < name.size()) territory = name.substr(language.size() + 1);
  if (language.size() != 2) return nullptr;
  const LocaleEntry* first = nullptr;
  for (const LocaleEntry& entry : kLocales) {
    if (AsciiLower(language[0]) != entry.iso639[0] || AsciiLower(language[1]) != entry.iso639[1]) {
      continue;
    }
    if (first == nullptr) first = &entry;
    if (territory.size() == 2 && AsciiUpper(territory[0]) == entry.iso3166[0] &&
        AsciiUpper(territory[1]) == entry.iso3166[1]) {
      return &entry;
    }
  }
  return first;
}

// The first of the variables that is set and not empty, or "".
std::string FirstSetVariable(std::initializer_list<const char*> names) {
  for (const char* name : names) {
    const char* value = std::getenv(name);
    if (value != nullptr && *value != '\0') return value;
  }
  return {};
}

const LocaleEntry& UserEntry() {
  const LocaleEntry* entry =
      FindByPosixName(FirstSetVariable({"LC_ALL", "LC_NUMERIC", "LC_MESSAGES", "LANG"}));
  return entry != nullptr ? *entry : kEnglishUS;
}

struct Separators {
  std::string decimal;
  std::string thousand;
};

// The LC_NUMERIC locale of the environment, kept as a private locale object
// for as long as the environment names the same locale.
class NumericLocale {
 public:
  Separators Get() {
    std::string name = FirstSetVariable({"LC_ALL", "LC_NUMERIC", "LANG"});
    if (IsCLocaleName(name)) return {kEnglishUS.decimal, kEnglishUS.thousand};
    {
      std::lock_guard<std::mutex> lock(m_mutex);
      if (!m_loaded || name != m_name) {
        if (m_locale != nullptr) freelocale(m_locale);
        m_locale = newlocale(LC_NUMERIC_MASK, name.c_str(), nullptr);
        m_name = name;
        m_loaded = true;
      }
      if (m_locale != nullptr) {
        return {nl_langinfo_l(RADIXCHAR, m_locale), nl_langinfo_l(THOUSEP, m_locale)};
      }
    }
    // The system lacks the locale: Windows's values for its language.
    const LocaleEntry* entry = FindByPosixName(name);
    if (entry == nullptr) entry = &kEnglishUS;
    return {entry->decimal, entry->thousand};
  }

 private:
  std::mutex m_mutex;
  bool m_loaded = false;
  std::string m_name;
  locale_t m_locale = nullptr;
};

// Both singletons live until the process ends, so that a call from another
// static object's destructor still finds them.
NumericLocale& TheNumericLocale() {
  static NumericLocale* instance = new NumericLocale;
  return *instance;
}

// The user's own values of single items (tbx::SetUserLocaleInfo).
class UserOverrides {
 public:
  void Set(LCTYPE item, const char* value) {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (value == nullptr) {
      m_values.erase(item);
    } else {
      m_values[item] = value;
    }
  }

  std::optional<std::string> Get(LCTYPE item) {
    std::lock_guard<std::mutex> lock(m_mutex);
    auto found = m_values.find(item);
    if (found == m_values.end()) return std::nullopt;
    return found->second;
  }

 private:
  std::mutex m_mutex;
  std::map<LCTYPE, std::string> m_values;
};

UserOverrides& TheUserOverrides() {
  static UserOverrides* instance = new UserOverrides;
  return *instance;
}

enum class ItemKind { Unknown, Text, Decimal, Hexadecimal };

ItemKind KindOf(LCTYPE item) {
  switch (item) {
    case LOCALE_SLANGUAGE:
    case LOCALE_SENGLANGUAGE:
    case LOCALE_SLIST:
    case LOCALE_SDECIMAL:
    case LOCALE_STHOUSAND:
    case LOCALE_SNEGATIVESIGN:
    case LOCALE_SISO639LANGNAME:
    case LOCALE_SISO3166CTRYNAME:
      return ItemKind::Text;
    case LOCALE_IMEASURE:
    case LOCALE_ILZERO:
    case LOCALE_IDEFAULTANSICODEPAGE:
      return ItemKind::Decimal;
    case LOCALE_ILANGUAGE:
      return ItemKind::Hexadecimal;
    default:
      return ItemKind::Unknown;
  }
}

// The number a numeric item's text stands for; nullopt if it is none.
std::optional<DWORD> ParseNumber(const std::string& text, ItemKind kind) {
  const int base = kind == ItemKind::Hexadecimal ? 16 : 10;
  const std::size_t maxDigits = kind == ItemKind::Hexadecimal ? 8 : 9;
  if (text.empty() || text.size() > maxDigits) return std::nullopt;
  DWORD value = 0;
  for (char c : text) {
    int digit;
    if (c >= '0' && c <= '9') {
      digit = c - '0';
    } else if (base == 16 && AsciiLower(c) >= 'a' && AsciiLower(c) <= 'f') {
      digit = AsciiLower(c) - 'a' + 10;
    } else {
      return std::nullopt;
    }
    value = value * static_cast<DWORD>(base) + static_cast<DWORD>(digit);
  }
  return value;
}

std::string ItemText(const LocaleEntry& entry, LCTYPE item, bool isUser) {
  switch (item) {
    case LOCALE_SLANGUAGE: return entry.displayName;
    case LOCALE_SENGLANGUAGE: return entry.englishName;
    case LOCALE_SLIST: return entry.list;
    case LOCALE_SDECIMAL:
      return isUser ? TheNumericLocale().Get().decimal : entry.decimal;
    case LOCALE_STHOUSAND:
      return isUser ? TheNumericLocale().Get().thousand : entry.thousand;
    case LOCALE_SNEGATIVESIGN: return "-";
    case LOCALE_SISO639LANGNAME: return entry.iso639;
    case LOCALE_SISO3166CTRYNAME: return entry.iso3166;
    case LOCALE_IMEASURE: return std::strcmp(entry.iso3166, "US") == 0 ? "1" : "0";
    case LOCALE_ILZERO: return "1";
    case LOCALE_IDEFAULTANSICODEPAGE: return std::to_string(entry.ansiCodePage);
    case LOCALE_ILANGUAGE: {
      static const char kHex[] = "0123456789abcdef";
      std::string text(4, '0');
      for (int i = 0; i < 4; ++i) text[3 - i] = kHex[(entry.langId >> (4 * i)) & 0xF];
      return text;
    }
    default: return {};
  }
}

// The entry an LCID stands for, or null when we have no such locale.
const LocaleEntry* Resolve(LCID lcid, bool& isUser) {
  isUser = false;
  if ((lcid >> 20) != 0) return nullptr;
  const LANGID langId = LANGIDFROMLCID(lcid);
  const LocaleEntry& user = UserEntry();
  const LocaleEntry* entry = nullptr;
  if (PRIMARYLANGID(langId) == LANG_NEUTRAL) {
    // Neutral, user default, system default and the custom defaults.
    if (SUBLANGID(langId) <= 5) entry = &user;
  } else if (langId == LANG_INVARIANT) {
    return &kInvariant;
  } else if (SUBLANGID(langId) == SUBLANG_NEUTRAL) {
    entry = FindByPrimaryLanguage(PRIMARYLANGID(langId));
  } else {
    entry = FindByLangId(langId);
  }
  isUser = entry == &user;
  return entry;
}

}  // namespace

extern "C" int WINAPI GetLocaleInfoA(LCID locale, LCTYPE type, LPSTR buffer, int size) {
  if (size < 0 || (size > 0 && buffer == nullptr)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  const LCTYPE item = type & 0xFFFF;
  const ItemKind kind = KindOf(item);
  const bool asNumber = (type & LOCALE_RETURN_NUMBER) != 0;
  if (kind == ItemKind::Unknown || (asNumber && kind == ItemKind::Text)) {
    SetLastError(ERROR_INVALID_FLAGS);
    return 0;
  }
  bool isUser = false;
  const LocaleEntry* entry = Resolve(locale, isUser);
  if (entry == nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }

  std::optional<std::string> text;
  if (isUser && (type & LOCALE_NOUSEROVERRIDE) == 0) text = TheUserOverrides().Get(item);
  if (!text) text = ItemText(*entry, item, isUser);

  if (asNumber) {
    // Overrides are checked when set, and our own texts are numbers.
    const DWORD value = ParseNumber(*text, kind).value_or(0);
    constexpr int kNeeded = static_cast<int>(sizeof(DWORD) / sizeof(CHAR));
    if (size == 0) return kNeeded;
    if (size < kNeeded) {
      SetLastError(ERROR_INSUFFICIENT_BUFFER);
      return 0;
    }
    std::memcpy(buffer, &value, sizeof value);
    return kNeeded;
  }

  const int needed = static_cast<int>(text->size()) + 1;
  if (size == 0) return needed;
  if (size < needed) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return 0;
  }
  std::memcpy(buffer, text->c_str(), static_cast<std::size_t>(needed));
  return needed;
}

extern "C" LCID WINAPI GetUserDefaultLCID() { return MAKELCID(UserEntry().langId, SORT_DEFAULT); }

extern "C" LCID WINAPI GetSystemDefaultLCID() { return GetUserDefaultLCID(); }

extern "C" LANGID WINAPI GetUserDefaultLangID() { return LANGIDFROMLCID(GetUserDefaultLCID()); }

extern "C" LCID WINAPI GetThreadLocale() { return GetUserDefaultLCID(); }

namespace tbx {

bool SetUserLocaleInfo(LCTYPE type, const char* value) {
  const ItemKind kind = KindOf(type);
  if (kind == ItemKind::Unknown) {
    SetLastError(ERROR_INVALID_FLAGS);
    return false;
  }
  if (value != nullptr && kind != ItemKind::Text && !ParseNumber(value, kind)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return false;
  }
  TheUserOverrides().Set(type, value);
  return true;
}

}  // namespace tbx
