#include "tbxutl/platform/win32/kernel32/resources/resource_script.h"

#include <array>
#include <map>
#include <memory>
#include <utility>

namespace tbx::win32 {

namespace {

// Code page 1252 differs from Latin-1 only in 0x80-0x9F; the five bytes it
// leaves undefined map to the unit of the same value, as Windows maps them.
constexpr std::array<char16_t, 32> kCp1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char16_t FromCp1252(unsigned char byte) {
  return byte >= 0x80 && byte <= 0x9F ? kCp1252High[byte - 0x80] : static_cast<char16_t>(byte);
}

constexpr std::uint16_t kRtMenu = 4;
constexpr std::uint16_t kRtString = 6;
constexpr std::uint16_t kDefaultLanguage = 0x0409;
constexpr std::size_t kMaxStringUnits = 0xFFFF;

// Menu template flags (the low byte of MENU options, and the extended
// template's item bits).
constexpr std::uint16_t kMfPopup = 0x10;
constexpr std::uint16_t kMfEnd = 0x80;
constexpr std::uint16_t kExPopup = 0x01;

struct MenuOption {
  std::string_view keyword;
  std::uint16_t flag;
};
constexpr MenuOption kMenuOptions[] = {{"CHECKED", 0x0008},      {"GRAYED", 0x0001},   {"HELP", 0x4000},
                                       {"INACTIVE", 0x0002},     {"MENUBARBREAK", 0x0020},
                                       {"MENUBREAK", 0x0040}};

constexpr std::string_view kMemoryOptions[] = {"DISCARDABLE", "MOVEABLE", "FIXED", "PURE", "IMPURE",
                                               "PRELOAD", "LOADONCALL", "SHARED", "NONSHARED"};

bool SameKeyword(std::string_view text, std::string_view keyword) {
  if (text.size() != keyword.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    if (c != keyword[i]) return false;
  }
  return true;
}

std::string AsciiUpper(std::string_view text) {
  std::string result(text);
  for (char& c : result) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return result;
}

bool IsOctal(char c) { return c >= '0' && c <= '7'; }

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Decodes the raw text of a string token as the resource compiler does.
std::u16string DecodeString(const ScriptToken& token) {
  const std::string& raw = token.text;
  std::u16string units;
  std::string bytes;  // narrow text collects bytes, converted at the end
  auto put = [&](std::uint32_t value) {
    if (token.wide) {
      units.push_back(static_cast<char16_t>(value));
    } else {
      bytes.push_back(static_cast<char>(value & 0xFF));
    }
  };
  auto putByte = [&](char c) {
    if (token.wide) {
      units.push_back(FromCp1252(static_cast<unsigned char>(c)));
    } else {
      bytes.push_back(c);
    }
  };
  for (std::size_t i = 0; i < raw.size(); ++i) {
    char c = raw[i];
    if (c == '"' && i + 1 < raw.size() && raw[i + 1] == '"') {
      putByte('"');
      ++i;
      continue;
    }
    if (c != '\\' || i + 1 >= raw.size()) {
      putByte(c);
      continue;
    }
    char e = raw[i + 1];
    switch (e) {
      case 'n': put('\n'); ++i; continue;
      case 't': put('\t'); ++i; continue;
      case 'r': put('\r'); ++i; continue;
      case 'a': put(0x08); ++i; continue;
      case 'b': put(0x08); ++i; continue;
      case 'f': put(0x0C); ++i; continue;
      case 'v': put(0x0B); ++i; continue;
      case '\\': put('\\'); ++i; continue;
      case '"': put('"'); ++i; continue;
      default: break;
    }
    if (IsOctal(e)) {
      std::uint32_t value = 0;
      std::size_t j = i + 1;
      for (int n = 0; n < 3 && j < raw.size() && IsOctal(raw[j]); ++n, ++j) value = value * 8 + (raw[j] - '0');
      put(value);
      i = j - 1;
      continue;
    }
    if (e == 'x' || e == 'X') {
      std::uint32_t value = 0;
      std::size_t j = i + 2;
      int maxDigits = token.wide ? 4 : 2;
      for (int n = 0; n < maxDigits && j < raw.size() && HexValue(raw[j]) >= 0; ++n, ++j) {
        value = value * 16 + static_cast<std::uint32_t>(HexValue(raw[j]));
      }
      put(value);
      i = j - 1;
      continue;
    }
    putByte(c);  // an unknown escape keeps its backslash
  }
  if (!token.wide) return Cp1252ToUtf16(bytes);
  return units;
}

void PutWord(std::vector<std::uint8_t>& out, std::uint32_t value) {
  out.push_back(static_cast<std::uint8_t>(value & 0xFF));
  out.push_back(static_cast<std::uint8_t>((value >> 8) & 0xFF));
}

void PutDword(std::vector<std::uint8_t>& out, std::uint32_t value) {
  PutWord(out, value & 0xFFFF);
  PutWord(out, value >> 16);
}

void PutText(std::vector<std::uint8_t>& out, const std::u16string& text) {
  for (char16_t unit : text) PutWord(out, unit);
  PutWord(out, 0);
}

void AlignToDword(std::vector<std::uint8_t>& out) {
  while (out.size() % 4 != 0) out.push_back(0);
}

struct MenuItem {
  std::u16string text;
  bool popup = false;
  std::uint32_t id = 0;
  std::uint32_t flags = 0;  // MENU options, or the MENUEX type
  std::uint32_t state = 0;
  std::uint32_t helpId = 0;
  std::vector<MenuItem> children;
};

void WriteMenuItems(std::vector<std::uint8_t>& out, const std::vector<MenuItem>& items) {
  for (std::size_t i = 0; i < items.size(); ++i) {
    const MenuItem& item = items[i];
    // A popup without items is written as a plain item (as the resource
    // compilers do); the template has no way to say "empty submenu".
    bool popup = item.popup && !item.children.empty();
    std::uint16_t flags = static_cast<std::uint16_t>(item.flags);
    if (popup) flags |= kMfPopup;
    if (i + 1 == items.size()) flags |= kMfEnd;
    PutWord(out, flags);
    if (!popup) PutWord(out, item.id);
    PutText(out, item.text);
    if (popup) WriteMenuItems(out, item.children);
  }
}

void WriteMenuExItems(std::vector<std::uint8_t>& out, const std::vector<MenuItem>& items) {
  for (std::size_t i = 0; i < items.size(); ++i) {
    const MenuItem& item = items[i];
    bool popup = item.popup && !item.children.empty();
    AlignToDword(out);
    PutDword(out, item.flags);
    PutDword(out, item.state);
    PutDword(out, item.id);
    std::uint16_t bits = 0;
    if (popup) bits |= kExPopup;
    if (i + 1 == items.size()) bits |= kMfEnd;
    PutWord(out, bits);
    PutText(out, item.text);
    if (popup) {
      AlignToDword(out);
      PutDword(out, item.helpId);
      WriteMenuExItems(out, item.children);
    }
  }
}

class ScriptReader {
 public:
  ScriptReader(const ScriptTokens& tokens, ScriptError& error) : tokens_(tokens.tokens), error_(error) {}

  bool Read(std::vector<ScriptResource>& out) {
    while (pos_ < tokens_.size()) {
      if (!Statement()) return false;
    }
    for (const auto& [key, block] : stringBlocks_) {
      ScriptResource resource;
      resource.type.number = kRtString;
      resource.name.number = key.second;
      resource.language = key.first;
      for (const StringEntry& entry : block) {
        PutWord(resource.data, static_cast<std::uint32_t>(entry.text.size()));
        for (char16_t unit : entry.text) PutWord(resource.data, unit);
      }
      resources_.push_back(std::move(resource));
    }
    out = std::move(resources_);
    return true;
  }

 private:
  struct StringEntry {
    std::u16string text;
    bool defined = false;
    int line = 0;
    const std::string* file = nullptr;
  };
  using StringBlock = std::array<StringEntry, 16>;

  // --- tokens -------------------------------------------------------------

  bool AtEnd() const { return pos_ >= tokens_.size(); }
  const ScriptToken* Peek(std::size_t ahead = 0) const {
    return pos_ + ahead < tokens_.size() ? &tokens_[pos_ + ahead] : nullptr;
  }
  bool PeekKeyword(std::string_view keyword, std::size_t ahead = 0) const {
    const ScriptToken* token = Peek(ahead);
    return token && token->kind == ScriptToken::Kind::Identifier && SameKeyword(token->text, keyword);
  }
  bool PeekPunctuator(std::string_view text) const {
    const ScriptToken* token = Peek();
    return token && token->kind == ScriptToken::Kind::Punctuator && token->text == text;
  }
  bool PeekString() const {
    const ScriptToken* token = Peek();
    return token && token->kind == ScriptToken::Kind::String;
  }

  bool Fail(std::string message) {
    const ScriptToken* at = AtEnd() ? (tokens_.empty() ? nullptr : &tokens_.back()) : &tokens_[pos_];
    if (at) {
      if (at->file) error_.file = *at->file;
      error_.line = at->line;
    }
    if (AtEnd()) message += " (the script ends here)";
    error_.message = std::move(message);
    return false;
  }

  static std::string Describe(const ScriptToken& token) {
    if (token.kind == ScriptToken::Kind::String) return "a string";
    return "'" + token.text + "'";
  }

  bool Expected(std::string_view what) {
    if (AtEnd()) return Fail(std::string(what) + " expected");
    return Fail(std::string(what) + " expected, not " + Describe(tokens_[pos_]));
  }

  bool Begin() {
    if (PeekKeyword("BEGIN") || PeekPunctuator("{")) {
      ++pos_;
      return true;
    }
    return Expected("BEGIN or '{'");
  }

  bool AtBlockEnd() const { return PeekKeyword("END") || PeekPunctuator("}"); }

  bool Number(std::int64_t& value) {
    if (AtEnd()) return Expected("a number");
    return EvaluateScriptExpression(tokens_, pos_, false, value, error_);
  }

  bool Text(std::u16string& text) {
    if (!PeekString()) return Expected("a text in quotes");
    text.clear();
    while (PeekString()) text += DecodeString(tokens_[pos_++]);
    if (text.size() > kMaxStringUnits) return Fail("the text is longer than 65535 characters");
    return true;
  }

  bool SkipComma() {
    if (!PeekPunctuator(",")) return false;
    ++pos_;
    return true;
  }

  // --- statements ---------------------------------------------------------

  bool Statement() {
    if (PeekKeyword("LANGUAGE")) return Language(language_);
    if (PeekKeyword("VERSION") || PeekKeyword("CHARACTERISTICS")) {
      ++pos_;
      std::int64_t ignored = 0;
      return Number(ignored);
    }
    if (PeekKeyword("STRINGTABLE")) {
      ++pos_;
      return StringTable();
    }
    const ScriptToken& nameToken = tokens_[pos_];
    if (PeekKeyword("BEGIN") || PeekKeyword("END") || PeekPunctuator("{") || PeekPunctuator("}")) {
      return Fail(Describe(nameToken) + " outside a resource statement");
    }
    ResourceKey name;
    if (nameToken.kind == ScriptToken::Kind::Number) {
      if (nameToken.number > 0xFFFF) return Fail("resource number " + nameToken.text + " is larger than 65535");
      name.number = static_cast<std::uint16_t>(nameToken.number);
    } else if (nameToken.kind == ScriptToken::Kind::Identifier) {
      name.name = AsciiUpper(nameToken.text);
    } else if (nameToken.kind == ScriptToken::Kind::String) {
      std::string narrow = Utf16ToCp1252(DecodeString(nameToken));
      if (narrow.empty()) return Fail("a resource name must not be empty");
      name.name = AsciiUpper(narrow);
    } else {
      return Fail("a resource statement expected, not " + Describe(nameToken));
    }
    ++pos_;
    const ScriptToken* type = Peek();
    if (!type) return Expected("a resource type");
    if (PeekKeyword("MENU") || PeekKeyword("MENUEX")) {
      bool extended = PeekKeyword("MENUEX");
      ++pos_;
      return Menu(name, extended);
    }
    if (type->kind == ScriptToken::Kind::Identifier || type->kind == ScriptToken::Kind::Number) {
      return Fail("resource type " + Describe(*type) +
                  " is not supported: only STRINGTABLE, MENU and MENUEX are read");
    }
    return Expected("a resource type");
  }

  bool Language(std::uint16_t& language) {
    ++pos_;  // LANGUAGE
    std::int64_t primary = 0;
    std::int64_t sub = 0;
    if (!Number(primary)) return false;
    if (!SkipComma()) return Expected("',' between the language and the sublanguage");
    if (!Number(sub)) return false;
    if (primary < 0 || primary > 0x3FF || sub < 0 || sub > 0x3F) return Fail("language or sublanguage out of range");
    language = static_cast<std::uint16_t>((sub << 10) | primary);
    return true;
  }

  // Memory options and the optional statements before BEGIN.
  bool Options(std::uint16_t& language) {
    for (;;) {
      bool memory = false;
      for (std::string_view option : kMemoryOptions) memory = memory || PeekKeyword(option);
      if (memory) {
        ++pos_;
      } else if (PeekKeyword("LANGUAGE")) {
        if (!Language(language)) return false;
      } else if (PeekKeyword("VERSION") || PeekKeyword("CHARACTERISTICS")) {
        ++pos_;
        std::int64_t ignored = 0;
        if (!Number(ignored)) return false;
      } else {
        return true;
      }
    }
  }

  bool StringTable() {
    std::uint16_t language = language_;
    if (!Options(language) || !Begin()) return false;
    while (!AtBlockEnd()) {
      if (AtEnd()) return Expected("END of the STRINGTABLE");
      const ScriptToken& idToken = tokens_[pos_];
      std::int64_t id = 0;
      if (!Number(id)) return false;
      if (id < 0 || id > 0xFFFF) return Fail("string id " + std::to_string(id) + " is outside 0 to 65535");
      SkipComma();
      std::u16string text;
      if (!Text(text)) return false;
      StringBlock& block = stringBlocks_[{language, static_cast<std::uint16_t>(id / 16 + 1)}];
      StringEntry& entry = block[static_cast<std::size_t>(id % 16)];
      if (entry.defined) {
        pos_ = static_cast<std::size_t>(&idToken - tokens_.data());
        return Fail("string " + std::to_string(id) + " is defined twice (first in " + *entry.file + " line " +
                    std::to_string(entry.line) + ")");
      }
      entry.text = std::move(text);
      entry.defined = true;
      entry.line = idToken.line;
      entry.file = idToken.file;
    }
    ++pos_;  // END
    return true;
  }

  bool Menu(const ResourceKey& name, bool extended) {
    std::uint16_t language = language_;
    if (!Options(language) || !Begin()) return false;
    std::vector<MenuItem> items;
    if (!(extended ? MenuExItems(items, 0) : MenuItems(items, 0))) return false;
    for (const ScriptResource& resource : resources_) {
      if (resource.type.number == kRtMenu && resource.name == name && resource.language == language) {
        return Fail("menu " + (name.name.empty() ? std::to_string(name.number) : name.name) + " is defined twice");
      }
    }
    ScriptResource resource;
    resource.type.number = kRtMenu;
    resource.name = name;
    resource.language = language;
    if (extended) {
      PutWord(resource.data, 1);  // version
      PutWord(resource.data, 4);  // offset of the items after this word
      PutDword(resource.data, 0);  // the menu's help id
      WriteMenuExItems(resource.data, items);
    } else {
      PutWord(resource.data, 0);
      PutWord(resource.data, 0);
      WriteMenuItems(resource.data, items);
    }
    resources_.push_back(std::move(resource));
    return true;
  }

  static constexpr int kMaxMenuDepth = 64;

  // MENU items up to and including the END of their level.
  bool MenuItems(std::vector<MenuItem>& items, int depth) {
    if (depth > kMaxMenuDepth) return Fail("menus nest too deeply");
    while (!AtBlockEnd()) {
      if (AtEnd()) return Expected("END of the menu");
      MenuItem item;
      if (PeekKeyword("MENUITEM")) {
        ++pos_;
        if (PeekKeyword("SEPARATOR")) {
          ++pos_;
        } else {
          if (!Text(item.text)) return false;
          SkipComma();
          std::int64_t id = 0;
          if (!Number(id)) return false;
          item.id = static_cast<std::uint32_t>(id) & 0xFFFF;
          if (!MenuOptions(item.flags)) return false;
        }
      } else if (PeekKeyword("POPUP")) {
        ++pos_;
        item.popup = true;
        if (!Text(item.text) || !MenuOptions(item.flags) || !Begin() || !MenuItems(item.children, depth + 1)) {
          return false;
        }
      } else {
        return Expected("MENUITEM, POPUP or END");
      }
      items.push_back(std::move(item));
    }
    ++pos_;  // END
    return true;
  }

  bool MenuOptions(std::uint32_t& flags) {
    for (;;) {
      std::size_t before = pos_;
      bool comma = SkipComma();
      bool found = false;
      for (const MenuOption& option : kMenuOptions) {
        if (PeekKeyword(option.keyword)) {
          flags |= option.flag;
          found = true;
          ++pos_;
          break;
        }
      }
      if (!found) {
        if (comma) return Expected("a menu option (CHECKED, GRAYED, HELP, INACTIVE, MENUBARBREAK, MENUBREAK)");
        pos_ = before;
        return true;
      }
    }
  }

  // Up to `count` optional numbers after a MENUEX item's text, each after a
  // comma and each of which may be left out ("POPUP "x", , , , 5").
  bool MenuExArguments(std::uint32_t* values[], int count) {
    for (int i = 0; i < count; ++i) {
      if (!SkipComma()) return true;
      if (PeekPunctuator(",") || AtBlockEnd() || PeekKeyword("BEGIN") || PeekPunctuator("{") ||
          PeekKeyword("MENUITEM") || PeekKeyword("POPUP")) {
        continue;
      }
      std::int64_t value = 0;
      if (!Number(value)) return false;
      *values[i] = static_cast<std::uint32_t>(value);
    }
    if (PeekPunctuator(",")) return Fail("too many numbers after the menu text");
    return true;
  }

  bool MenuExItems(std::vector<MenuItem>& items, int depth) {
    if (depth > kMaxMenuDepth) return Fail("menus nest too deeply");
    while (!AtBlockEnd()) {
      if (AtEnd()) return Expected("END of the menu");
      MenuItem item;
      if (PeekKeyword("MENUITEM")) {
        ++pos_;
        if (PeekKeyword("SEPARATOR")) {
          ++pos_;
        } else {
          std::uint32_t* values[] = {&item.id, &item.flags, &item.state};
          if (!Text(item.text) || !MenuExArguments(values, 3)) return false;
        }
      } else if (PeekKeyword("POPUP")) {
        ++pos_;
        item.popup = true;
        std::uint32_t* values[] = {&item.id, &item.flags, &item.state, &item.helpId};
        if (!Text(item.text) || !MenuExArguments(values, 4) || !Begin() || !MenuExItems(item.children, depth + 1)) {
          return false;
        }
      } else {
        return Expected("MENUITEM, POPUP or END");
      }
      items.push_back(std::move(item));
    }
    ++pos_;  // END
    return true;
  }

  const std::vector<ScriptToken>& tokens_;
  ScriptError& error_;
  std::size_t pos_ = 0;
  std::uint16_t language_ = kDefaultLanguage;
  std::vector<ScriptResource> resources_;
  std::map<std::pair<std::uint16_t, std::uint16_t>, StringBlock> stringBlocks_;  // (language, block id)
};

std::optional<std::vector<ScriptResource>> ReadTokens(const ScriptTokens& tokens, ScriptError& error) {
  std::vector<ScriptResource> resources;
  ScriptReader reader(tokens, error);
  if (!reader.Read(resources)) return std::nullopt;
  return resources;
}

}  // namespace

std::optional<std::vector<ScriptResource>> ReadResourceScriptFile(const std::string& path, ScriptError& error) {
  ScriptTokens tokens;
  if (!PreprocessScriptFile(path, tokens, error)) return std::nullopt;
  return ReadTokens(tokens, error);
}

std::optional<std::vector<ScriptResource>> ReadResourceScriptText(std::string_view text, const std::string& fileName,
                                                                  ScriptError& error) {
  ScriptTokens tokens;
  if (!PreprocessScriptText(text, fileName, tokens, error)) return std::nullopt;
  return ReadTokens(tokens, error);
}

std::u16string Cp1252ToUtf16(std::string_view text) {
  std::u16string result;
  result.reserve(text.size());
  for (char c : text) result.push_back(FromCp1252(static_cast<unsigned char>(c)));
  return result;
}

std::string Utf16ToCp1252(std::u16string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char16_t unit = text[i];
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) {
      result.push_back(static_cast<char>(unit));
      continue;
    }
    char byte = '?';
    for (std::size_t k = 0; k < kCp1252High.size(); ++k) {
      if (kCp1252High[k] == unit) {
        byte = static_cast<char>(0x80 + k);
        break;
      }
    }
    // A surrogate pair is one character and becomes one '?'.
    if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) ++i;
    result.push_back(byte);
  }
  return result;
}

}  // namespace tbx::win32
