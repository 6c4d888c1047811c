#include "tbxutl/platform/win32/kernel32/resources/script_preprocessor.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <map>
#include <set>
#include <system_error>
#include <utility>

namespace tbx::win32 {

std::string ScriptError::Describe() const {
  return file + "(" + std::to_string(line) + "): " + message;
}

namespace {

namespace fs = std::filesystem;

constexpr int kMaxIncludeDepth = 32;
constexpr int kMaxExpansionDepth = 256;
constexpr int kMaxExpressionDepth = 256;
// Macros that expand into each other can multiply tokens exponentially; a
// script that needs this many tokens is not one we are meant to read.
constexpr std::size_t kMaxTokens = 250'000;

bool IsAsciiLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsIdentifierStart(char c) { return IsAsciiLetter(c) || c == '_'; }
bool IsIdentifierPart(char c) { return IsIdentifierStart(c) || IsDigit(c); }

int DigitValue(char c) {
  if (IsDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return 99;
}

// Parses a number as C spells it (decimal, 0x hex, 0 octal) with optional
// U/L suffixes. Values must fit 32 bits, as everything a script numbers does.
bool ParseNumber(std::string_view spelling, std::int64_t& value) {
  std::size_t end = spelling.size();
  while (end > 0 && (spelling[end - 1] == 'u' || spelling[end - 1] == 'U' || spelling[end - 1] == 'l' ||
                     spelling[end - 1] == 'L')) {
    --end;
  }
  std::string_view digits = spelling.substr(0, end);
  int base = 10;
  if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) {
    base = 16;
    digits.remove_prefix(2);
  } else if (digits.size() > 1 && digits[0] == '0') {
    base = 8;
    digits.remove_prefix(1);
  }
  if (digits.empty()) return false;
  std::uint64_t result = 0;
  for (char c : digits) {
    int d = DigitValue(c);
    if (d >= base) return false;
    result = result * static_cast<std::uint64_t>(base) + static_cast<std::uint64_t>(d);
    if (result > 0xFFFFFFFFu) return false;
  }
  value = static_cast<std::int64_t>(result);
  return true;
}

// One item of the raw text: a token, a whole directive line, the end, or a
// lexical fault (which matters only in text that is not skipped).
struct LexItem {
  enum class Kind { Token, Directive, End, Invalid };
  Kind kind = Kind::End;
  ScriptToken token;
  std::string text;  // the directive after '#', or the fault's message
  int line = 0;
};

class Lexer {
 public:
  explicit Lexer(std::string_view text, int firstLine = 1) : text_(text), line_(firstLine) {}

  LexItem Next() {
    LexItem item;
    if (!SkipBlanks(item)) return item;
    item.line = line_;
    if (pos_ >= text_.size()) {
      item.kind = LexItem::Kind::End;
      return item;
    }
    char c = text_[pos_];
    if (c == '#' && atLineStart_ && directivesAllowed_) {
      ++pos_;
      item.kind = LexItem::Kind::Directive;
      ReadDirective(item);
      return item;
    }
    atLineStart_ = false;
    item.kind = LexItem::Kind::Token;
    item.token.line = line_;
    if (c == 'L' && pos_ + 1 < text_.size() && text_[pos_ + 1] == '"') {
      ++pos_;
      item.token.wide = true;
      ReadString(item);
    } else if (c == '"') {
      ReadString(item);
    } else if (IsIdentifierStart(c)) {
      std::size_t start = pos_;
      while (pos_ < text_.size() && IsIdentifierPart(text_[pos_])) ++pos_;
      item.token.kind = ScriptToken::Kind::Identifier;
      item.token.text = std::string(text_.substr(start, pos_ - start));
    } else if (IsDigit(c)) {
      std::size_t start = pos_;
      while (pos_ < text_.size() && IsIdentifierPart(text_[pos_])) ++pos_;
      item.token.kind = ScriptToken::Kind::Number;
      item.token.text = std::string(text_.substr(start, pos_ - start));
      if (!ParseNumber(item.token.text, item.token.number)) {
        item.kind = LexItem::Kind::Invalid;
        item.text = "'" + item.token.text + "' is not a valid 32-bit number";
      }
    } else {
      ReadPunctuator(item);
    }
    return item;
  }

  // Used by #line: the line after the directive gets number `line`.
  void SetNextLine(int line) { line_ = line - 1; }
  std::size_t Position() const { return pos_; }
  void DisallowDirectives() { directivesAllowed_ = false; }

 private:
  bool AtSplice() const {
    if (pos_ >= text_.size() || text_[pos_] != '\\') return false;
    return (pos_ + 1 < text_.size() && text_[pos_ + 1] == '\n') ||
           (pos_ + 2 < text_.size() && text_[pos_ + 1] == '\r' && text_[pos_ + 2] == '\n');
  }

  void SkipSplice() {
    pos_ += text_[pos_ + 1] == '\r' ? 3 : 2;
    ++line_;
  }

  // Skips white space, line splices and comments. False (with `item` set to
  // the fault) for a comment that never ends.
  bool SkipBlanks(LexItem& item) {
    while (pos_ < text_.size()) {
      char c = text_[pos_];
      if (c == '\n') {
        ++line_;
        ++pos_;
        atLineStart_ = true;
      } else if (c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v') {
        ++pos_;
      } else if (AtSplice()) {
        SkipSplice();
      } else if (c == '/' && pos_ + 1 < text_.size() && text_[pos_ + 1] == '/') {
        while (pos_ < text_.size() && text_[pos_] != '\n') ++pos_;
      } else if (c == '/' && pos_ + 1 < text_.size() && text_[pos_ + 1] == '*') {
        if (!SkipBlockComment(item)) return false;
      } else {
        break;
      }
    }
    return true;
  }

  bool SkipBlockComment(LexItem& item) {
    int startLine = line_;
    pos_ += 2;
    while (pos_ + 1 < text_.size() && !(text_[pos_] == '*' && text_[pos_ + 1] == '/')) {
      if (text_[pos_] == '\n') ++line_;
      ++pos_;
    }
    if (pos_ + 1 >= text_.size()) {
      pos_ = text_.size();
      item.kind = LexItem::Kind::Invalid;
      item.line = startLine;
      item.text = "comment is not closed (missing */)";
      return false;
    }
    pos_ += 2;
    return true;
  }

  // The rest of the logical line, with comments replaced by a blank and
  // splices joined; the newline itself is left for SkipBlanks.
  void ReadDirective(LexItem& item) {
    std::string& out = item.text;
    while (pos_ < text_.size() && text_[pos_] != '\n') {
      char c = text_[pos_];
      if (AtSplice()) {
        SkipSplice();
        out += ' ';
      } else if (c == '/' && pos_ + 1 < text_.size() && text_[pos_ + 1] == '/') {
        while (pos_ < text_.size() && text_[pos_] != '\n') ++pos_;
      } else if (c == '/' && pos_ + 1 < text_.size() && text_[pos_ + 1] == '*') {
        LexItem fault;
        if (!SkipBlockComment(fault)) {
          item = fault;
          return;
        }
        out += ' ';
      } else if (c == '"') {
        // Copy a string whole, so that "//" inside it is no comment.
        out += c;
        ++pos_;
        while (pos_ < text_.size() && text_[pos_] != '\n' && text_[pos_] != '"') {
          if (text_[pos_] == '\\' && pos_ + 1 < text_.size() && text_[pos_ + 1] != '\n') out += text_[pos_++];
          out += text_[pos_++];
        }
        if (pos_ < text_.size() && text_[pos_] == '"') out += text_[pos_++];
      } else {
        out += c;
        ++pos_;
      }
    }
  }

  void ReadString(LexItem& item) {
    item.token.kind = ScriptToken::Kind::String;
    ++pos_;  // the opening quote
    std::size_t start = pos_;
    while (pos_ < text_.size()) {
      char c = text_[pos_];
      if (c == '\n' || (c == '\r' && pos_ + 1 < text_.size() && text_[pos_ + 1] == '\n')) break;
      if (c == '\\' && pos_ + 1 < text_.size() && text_[pos_ + 1] != '\n' && text_[pos_ + 1] != '\r') {
        pos_ += 2;
      } else if (c == '"') {
        if (pos_ + 1 < text_.size() && text_[pos_ + 1] == '"') {
          pos_ += 2;  // a doubled quote stands for one quote
        } else {
          item.token.text = std::string(text_.substr(start, pos_ - start));
          ++pos_;
          return;
        }
      } else {
        ++pos_;
      }
    }
    item.kind = LexItem::Kind::Invalid;
    item.text = "string is not closed on its line (missing \")";
  }

  void ReadPunctuator(LexItem& item) {
    static constexpr std::string_view kTwoCharacter[] = {"<<", ">>", "<=", ">=", "==", "!=", "&&", "||"};
    item.token.kind = ScriptToken::Kind::Punctuator;
    if (pos_ + 1 < text_.size()) {
      std::string_view two = text_.substr(pos_, 2);
      for (std::string_view p : kTwoCharacter) {
        if (two == p) {
          item.token.text = std::string(p);
          pos_ += 2;
          return;
        }
      }
    }
    item.token.text = std::string(1, text_[pos_]);
    ++pos_;
  }

  std::string_view text_;
  std::size_t pos_ = 0;
  int line_;
  bool atLineStart_ = true;
  bool directivesAllowed_ = true;
};

// Names that <windows.h> and the other platform headers give a script:
// languages and the menu flags. A script that includes one of those headers
// gets these instead.
struct PlatformName {
  const char* name;
  std::int64_t value;
};
constexpr PlatformName kPlatformNames[] = {
    {"LANG_NEUTRAL", 0x00}, {"LANG_CHINESE", 0x04}, {"LANG_CZECH", 0x05}, {"LANG_DANISH", 0x06},
    {"LANG_GERMAN", 0x07}, {"LANG_GREEK", 0x08}, {"LANG_ENGLISH", 0x09}, {"LANG_SPANISH", 0x0a},
    {"LANG_FINNISH", 0x0b}, {"LANG_FRENCH", 0x0c}, {"LANG_HUNGARIAN", 0x0e}, {"LANG_ITALIAN", 0x10},
    {"LANG_JAPANESE", 0x11}, {"LANG_KOREAN", 0x12}, {"LANG_DUTCH", 0x13}, {"LANG_NORWEGIAN", 0x14},
    {"LANG_POLISH", 0x15}, {"LANG_PORTUGUESE", 0x16}, {"LANG_RUSSIAN", 0x19}, {"LANG_SWEDISH", 0x1d},
    {"LANG_TURKISH", 0x1f}, {"SUBLANG_NEUTRAL", 0x00}, {"SUBLANG_DEFAULT", 0x01}, {"SUBLANG_SYS_DEFAULT", 0x02},
    {"SUBLANG_ENGLISH_US", 0x01}, {"SUBLANG_ENGLISH_UK", 0x02}, {"SUBLANG_GERMAN", 0x01},
    {"SUBLANG_GERMAN_SWISS", 0x02}, {"SUBLANG_GERMAN_AUSTRIAN", 0x03}, {"SUBLANG_FRENCH", 0x01},
    {"SUBLANG_ITALIAN", 0x01}, {"SUBLANG_SPANISH", 0x01}, {"SUBLANG_DUTCH", 0x01},
    {"SUBLANG_PORTUGUESE", 0x02}, {"SUBLANG_PORTUGUESE_BRAZILIAN", 0x01}, {"SUBLANG_CHINESE_TRADITIONAL", 0x01},
    {"SUBLANG_CHINESE_SIMPLIFIED", 0x02}, {"MF_GRAYED", 0x1}, {"MF_DISABLED", 0x2}, {"MF_CHECKED", 0x8},
    {"MF_POPUP", 0x10}, {"MF_MENUBARBREAK", 0x20}, {"MF_MENUBREAK", 0x40}, {"MF_OWNERDRAW", 0x100},
    {"MF_SEPARATOR", 0x800}, {"MF_HELP", 0x4000}, {"MF_RIGHTJUSTIFY", 0x4000}, {"MFT_STRING", 0x0},
    {"MFT_BITMAP", 0x4}, {"MFT_MENUBARBREAK", 0x20}, {"MFT_MENUBREAK", 0x40}, {"MFT_OWNERDRAW", 0x100},
    {"MFT_RADIOCHECK", 0x200}, {"MFT_SEPARATOR", 0x800}, {"MFT_RIGHTORDER", 0x2000}, {"MFT_RIGHTJUSTIFY", 0x4000},
    {"MFS_ENABLED", 0x0}, {"MFS_UNCHECKED", 0x0}, {"MFS_UNHILITE", 0x0}, {"MFS_GRAYED", 0x3},
    {"MFS_DISABLED", 0x3}, {"MFS_CHECKED", 0x8}, {"MFS_HILITE", 0x80}, {"MFS_DEFAULT", 0x1000},
    {"IDC_STATIC", -1},
};

constexpr std::string_view kPlatformHeaders[] = {"windows.h", "winresrc.h", "winres.h", "winuser.h", "winuser.rh",
                                                 "winnt.h",   "winnt.rh",   "windef.h", "winver.h",  "afxres.h",
                                                 "commctrl.h"};

std::string AsciiLower(std::string_view text) {
  std::string result(text);
  for (char& c : result) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return result;
}

class Preprocessor {
 public:
  Preprocessor(ScriptTokens& out, ScriptError& error) : out_(out), error_(error) {
    DefineNumber("RC_INVOKED", 1);
  }

  bool RunFile(const std::string& path) {
    std::string text;
    if (!ReadFile(path, text)) return Fail(nullptr, 0, "cannot open the script file '" + path + "'");
    error_.file = path;
    return ProcessFile(text, path, fs::path(path).parent_path(), 0);
  }

  bool RunText(std::string_view text, const std::string& name) {
    return ProcessFile(text, name, fs::path(name).parent_path(), 0);
  }

 private:
  struct Macro {
    std::vector<ScriptToken> body;
    bool functionLike = false;
  };

  struct Conditional {
    bool parentActive = true;
    bool active = true;
    bool taken = false;  // a branch of this #if has been chosen
    bool sawElse = false;
    int line = 0;
  };

  struct FileState {
    const std::string* name;
    fs::path folder;
    Lexer* lexer;
    std::vector<Conditional> conditionals;
    int depth;

    bool Active() const { return conditionals.empty() || conditionals.back().active; }
  };

  static bool ReadFile(const std::string& path, std::string& text) {
    std::error_code ec;
    if (!fs::is_regular_file(path, ec)) return false;
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    text.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return !in.bad();
  }

  const std::string* Intern(const std::string& name) {
    out_.files.push_back(name);
    return &out_.files.back();
  }

  bool Fail(const std::string* file, int line, std::string message) {
    if (file) error_.file = *file;
    error_.line = line;
    error_.message = std::move(message);
    return false;
  }

  void DefineNumber(const std::string& name, std::int64_t value) {
    ScriptToken token;
    token.kind = ScriptToken::Kind::Number;
    token.number = value;
    token.text = std::to_string(value);
    Macro macro;
    if (value < 0) {  // a negative value is the expression -N
      ScriptToken minus;
      minus.kind = ScriptToken::Kind::Punctuator;
      minus.text = "-";
      macro.body.push_back(minus);
      token.number = -value;
      token.text = std::to_string(-value);
    }
    macro.body.push_back(token);
    macros_[name] = std::move(macro);
  }

  bool ProcessFile(std::string_view text, const std::string& displayName, const fs::path& folder, int depth) {
    FileState file{Intern(displayName), folder, nullptr, {}, depth};
    if (text.size() >= 3 && static_cast<unsigned char>(text[0]) == 0xEF &&
        static_cast<unsigned char>(text[1]) == 0xBB && static_cast<unsigned char>(text[2]) == 0xBF) {
      return Fail(file.name, 1, "the script is in UTF-8 (it starts with a byte-order mark); scripts are read in code page 1252");
    }
    if (text.size() >= 2 && ((static_cast<unsigned char>(text[0]) == 0xFF && static_cast<unsigned char>(text[1]) == 0xFE) ||
                             (static_cast<unsigned char>(text[0]) == 0xFE && static_cast<unsigned char>(text[1]) == 0xFF))) {
      return Fail(file.name, 1, "the script is in UTF-16; scripts are read in code page 1252");
    }
    Lexer lexer(text);
    file.lexer = &lexer;
    for (;;) {
      LexItem item = lexer.Next();
      switch (item.kind) {
        case LexItem::Kind::End:
          if (!file.conditionals.empty()) {
            return Fail(file.name, file.conditionals.back().line, "#if, #ifdef or #ifndef without #endif");
          }
          return true;
        case LexItem::Kind::Invalid:
          if (file.Active()) return Fail(file.name, item.line, item.text);
          break;
        case LexItem::Kind::Token:
          if (file.Active()) {
            item.token.file = file.name;
            std::vector<const Macro*> expanding;
            if (!Emit(item.token, file.name, item.line, expanding, 0, out_.tokens)) return false;
          }
          break;
        case LexItem::Kind::Directive:
          if (!Directive(item.text, item.line, file)) return false;
          break;
      }
    }
  }

  // Appends `token` to `out`, expanding it when it names a macro. The
  // tokens of an expansion carry the place where the macro was used.
  // `expanding` holds the macros being expanded, which a body may not
  // expand again (that ends self-reference, as in C).
  bool Emit(const ScriptToken& token, const std::string* file, int line, std::vector<const Macro*>& expanding,
            int depth, std::vector<ScriptToken>& out) {
    if (out.size() >= kMaxTokens) return Fail(file, line, "the script expands into too many tokens");
    if (token.kind == ScriptToken::Kind::Identifier) {
      auto it = macros_.find(token.text);
      if (it != macros_.end() &&
          std::find(expanding.begin(), expanding.end(), &it->second) == expanding.end()) {
        const Macro& macro = it->second;  // the table does not change while we expand
        if (macro.functionLike) {
          return Fail(file, line, "macro '" + token.text + "' takes arguments; such macros are not supported");
        }
        if (depth >= kMaxExpansionDepth) return Fail(file, line, "macros nest too deeply");
        expanding.push_back(&macro);
        for (const ScriptToken& part : macro.body) {
          if (!Emit(part, file, line, expanding, depth + 1, out)) return false;
        }
        expanding.pop_back();
        return true;
      }
    }
    ScriptToken copy = token;
    copy.file = file;
    copy.line = line;
    out.push_back(std::move(copy));
    return true;
  }

  bool Tokenize(std::string_view text, int line, const std::string* file, std::vector<ScriptToken>& tokens,
                std::vector<std::size_t>* ends = nullptr) {
    Lexer lexer(text, line);
    lexer.DisallowDirectives();
    for (;;) {
      LexItem item = lexer.Next();
      if (item.kind == LexItem::Kind::End) return true;
      if (item.kind == LexItem::Kind::Invalid) return Fail(file, line, item.text);
      item.token.file = file;
      item.token.line = line;
      tokens.push_back(std::move(item.token));
      if (ends) ends->push_back(lexer.Position());
    }
  }

  bool Directive(const std::string& text, int line, FileState& file) {
    std::vector<ScriptToken> tokens;
    std::vector<std::size_t> ends;
    // A skipped group may hold text that does not tokenize; only the
    // directive's name matters there.
    std::size_t nameStart = text.find_first_not_of(" \t\r\f\v");
    if (nameStart == std::string::npos) return true;  // "#" alone
    std::size_t nameEnd = nameStart;
    while (nameEnd < text.size() && IsIdentifierPart(text[nameEnd])) ++nameEnd;
    std::string name = text.substr(nameStart, nameEnd - nameStart);
    std::string rest = text.substr(nameEnd);

    if (name == "if" || name == "ifdef" || name == "ifndef") {
      Conditional conditional;
      conditional.line = line;
      conditional.parentActive = file.Active();
      if (conditional.parentActive) {
        bool value = false;
        if (!ConditionValue(name, rest, line, file, value)) return false;
        conditional.active = value;
        conditional.taken = value;
      } else {
        conditional.active = false;
        conditional.taken = true;
      }
      file.conditionals.push_back(conditional);
      return true;
    }
    if (name == "elif" || name == "else" || name == "endif") {
      if (file.conditionals.empty()) return Fail(file.name, line, "#" + name + " without #if");
      Conditional& conditional = file.conditionals.back();
      if (name == "endif") {
        file.conditionals.pop_back();
        return true;
      }
      if (conditional.sawElse) return Fail(file.name, line, "#" + name + " after #else");
      if (name == "else") {
        conditional.sawElse = true;
        conditional.active = conditional.parentActive && !conditional.taken;
        conditional.taken = true;
        return true;
      }
      conditional.active = false;
      if (conditional.parentActive && !conditional.taken) {
        bool value = false;
        if (!ConditionValue("if", rest, line, file, value)) return false;
        conditional.active = value;
        conditional.taken = value;
      }
      return true;
    }
    if (!file.Active()) return true;

    if (name == "include") return Include(rest, line, file);
    if (name == "define" || name == "undef") {
      if (!Tokenize(rest, line, file.name, tokens, &ends)) return false;
      if (tokens.empty() || tokens[0].kind != ScriptToken::Kind::Identifier) {
        return Fail(file.name, line, "#" + name + " needs a name");
      }
      if (name == "undef") {
        macros_.erase(tokens[0].text);
        return true;
      }
      Macro macro;
      macro.functionLike = ends[0] < rest.size() && rest[ends[0]] == '(';
      macro.body.assign(tokens.begin() + 1, tokens.end());
      macros_[tokens[0].text] = std::move(macro);
      return true;
    }
    if (name == "pragma") return Pragma(rest, line, file);
    if (name == "line") {
      if (!Tokenize(rest, line, file.name, tokens)) return false;
      if (tokens.empty() || tokens[0].kind != ScriptToken::Kind::Number ||
          (tokens.size() > 1 && tokens[1].kind != ScriptToken::Kind::String) || tokens.size() > 2) {
        return Fail(file.name, line, "#line needs a line number and may name a file");
      }
      file.lexer->SetNextLine(static_cast<int>(std::min<std::int64_t>(tokens[0].number, 1'000'000'000)));
      if (tokens.size() == 2) file.name = Intern(tokens[1].text);
      return true;
    }
    if (name == "error") {
      std::size_t start = rest.find_first_not_of(" \t");
      return Fail(file.name, line, "#error " + (start == std::string::npos ? std::string() : rest.substr(start)));
    }
    if (name == "warning") return true;
    return Fail(file.name, line, "unknown directive #" + name);
  }

  bool ConditionValue(const std::string& kind, const std::string& rest, int line, FileState& file, bool& value) {
    std::vector<ScriptToken> tokens;
    if (!Tokenize(rest, line, file.name, tokens)) return false;
    if (kind != "if") {
      if (tokens.size() != 1 || tokens[0].kind != ScriptToken::Kind::Identifier) {
        return Fail(file.name, line, "#" + kind + " needs one name");
      }
      value = macros_.contains(tokens[0].text) == (kind == "ifdef");
      return true;
    }
    // "defined NAME" and "defined(NAME)" are answered before expansion.
    std::vector<ScriptToken> expanded;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
      const ScriptToken& token = tokens[i];
      if (token.kind == ScriptToken::Kind::Identifier && token.text == "defined") {
        bool parenthesised = i + 1 < tokens.size() && tokens[i + 1].text == "(";
        std::size_t nameAt = i + (parenthesised ? 2 : 1);
        if (nameAt >= tokens.size() || tokens[nameAt].kind != ScriptToken::Kind::Identifier ||
            (parenthesised && (nameAt + 1 >= tokens.size() || tokens[nameAt + 1].text != ")"))) {
          return Fail(file.name, line, "'defined' needs a name");
        }
        ScriptToken result;
        result.kind = ScriptToken::Kind::Number;
        result.number = macros_.contains(tokens[nameAt].text) ? 1 : 0;
        result.file = file.name;
        result.line = line;
        expanded.push_back(result);
        i = nameAt + (parenthesised ? 1 : 0);
        continue;
      }
      std::vector<const Macro*> expanding;
      if (!Emit(token, file.name, line, expanding, 0, expanded)) return false;
    }
    if (expanded.empty()) return Fail(file.name, line, "#if needs an expression");
    std::size_t pos = 0;
    std::int64_t number = 0;
    if (!EvaluateScriptExpression(expanded, pos, true, number, error_)) return false;
    if (pos != expanded.size()) {
      return Fail(file.name, line, "unexpected '" + expanded[pos].text + "' in the #if expression");
    }
    value = number != 0;
    return true;
  }

  bool Include(const std::string& rest, int line, FileState& file) {
    std::size_t open = rest.find_first_not_of(" \t");
    if (open == std::string::npos || (rest[open] != '"' && rest[open] != '<')) {
      return Fail(file.name, line, "#include needs a file name in quotes or angle brackets");
    }
    char closing = rest[open] == '"' ? '"' : '>';
    std::size_t close = rest.find(closing, open + 1);
    if (close == std::string::npos || close == open + 1) return Fail(file.name, line, "#include file name is not closed");
    std::string target = rest.substr(open + 1, close - open - 1);
    if (closing == '>') {
      std::string lower = AsciiLower(target);
      for (std::string_view header : kPlatformHeaders) {
        if (lower == header) {
          for (const PlatformName& platformName : kPlatformNames) {
            if (!macros_.contains(platformName.name)) DefineNumber(platformName.name, platformName.value);
          }
          return true;
        }
      }
      return Fail(file.name, line, "cannot include <" + target + ">: of the platform headers only the names of "
                                   "languages and menu flags are known");
    }
    if (file.depth + 1 >= kMaxIncludeDepth) return Fail(file.name, line, "#include files nest too deeply");
    std::string normalized = target;
    std::replace(normalized.begin(), normalized.end(), '\\', '/');
    fs::path path = fs::path(normalized).is_absolute() ? fs::path(normalized) : file.folder / normalized;
    std::error_code ec;
    std::string key = fs::weakly_canonical(path, ec).string();
    if (ec) key = path.lexically_normal().string();
    if (onceFiles_.contains(key)) return true;
    std::string text;
    if (!ReadFile(path.string(), text)) return Fail(file.name, line, "cannot open the include file '" + target + "'");
    onceKeyStack_.push_back(key);
    bool ok = ProcessFile(text, path.string(), path.parent_path(), file.depth + 1);
    onceKeyStack_.pop_back();
    return ok;
  }

  bool Pragma(const std::string& rest, int line, FileState& file) {
    std::vector<ScriptToken> tokens;
    if (!Tokenize(rest, line, file.name, tokens)) return false;
    if (tokens.empty()) return true;
    if (tokens[0].text == "once") {
      if (!onceKeyStack_.empty()) onceFiles_.insert(onceKeyStack_.back());
      return true;
    }
    if (tokens[0].text != "code_page") return true;  // other pragmas mean nothing here
    if (tokens.size() != 4 || tokens[1].text != "(" || tokens[3].text != ")") {
      return Fail(file.name, line, "#pragma code_page needs a code page in brackets");
    }
    if (tokens[2].kind == ScriptToken::Kind::Identifier && AsciiLower(tokens[2].text) == "default") return true;
    if (tokens[2].kind == ScriptToken::Kind::Number && tokens[2].number == 1252) return true;
    return Fail(file.name, line, "code page " + tokens[2].text + " is not supported; scripts are read in code page 1252");
  }

  ScriptTokens& out_;
  ScriptError& error_;
  std::map<std::string, Macro> macros_;
  std::set<std::string> onceFiles_;
  std::vector<std::string> onceKeyStack_;  // the included file being read
};

// Recursive descent over the C operators, lowest precedence first.
class ExpressionEvaluator {
 public:
  ExpressionEvaluator(const std::vector<ScriptToken>& tokens, std::size_t& pos, bool undefinedIsZero,
                      ScriptError& error)
      : tokens_(tokens), pos_(pos), undefinedIsZero_(undefinedIsZero), error_(error) {}

  bool Evaluate(std::int64_t& value) { return Conditional(value, 0); }

 private:
  using Value = std::int64_t;

  static Value Wrap(std::uint64_t bits) { return static_cast<Value>(bits); }

  bool Peek(std::string_view punctuator) const {
    return pos_ < tokens_.size() && tokens_[pos_].kind == ScriptToken::Kind::Punctuator &&
           tokens_[pos_].text == punctuator;
  }

  bool Fail(std::string message) {
    const ScriptToken& at = tokens_[std::min(pos_, tokens_.size() - 1)];
    if (at.file) error_.file = *at.file;
    error_.line = at.line;
    error_.message = std::move(message);
    return false;
  }

  bool Conditional(Value& value, int depth) {
    if (depth > kMaxExpressionDepth) return Fail("the expression nests too deeply");
    if (!Binary(value, 0, depth)) return false;
    if (!Peek("?")) return true;
    ++pos_;
    Value whenTrue = 0;
    Value whenFalse = 0;
    if (!Conditional(whenTrue, depth + 1)) return false;
    if (!Peek(":")) return Fail("':' expected in the conditional expression");
    ++pos_;
    if (!Conditional(whenFalse, depth + 1)) return false;
    value = value != 0 ? whenTrue : whenFalse;
    return true;
  }

  // Binary operators by level, lowest first.
  static int Level(std::string_view op) {
    static constexpr std::pair<std::string_view, int> kLevels[] = {
        {"||", 0}, {"&&", 1}, {"|", 2},  {"^", 3},  {"&", 4},  {"==", 5}, {"!=", 5}, {"<", 6},  {">", 6},
        {"<=", 6}, {">=", 6}, {"<<", 7}, {">>", 7}, {"+", 8},  {"-", 8},  {"*", 9},  {"/", 9},  {"%", 9}};
    for (const auto& [name, level] : kLevels) {
      if (name == op) return level;
    }
    return -1;
  }

  bool Binary(Value& value, int level, int depth) {
    if (level > 9) return Unary(value, depth);
    if (!Binary(value, level + 1, depth)) return false;
    while (pos_ < tokens_.size() && tokens_[pos_].kind == ScriptToken::Kind::Punctuator &&
           Level(tokens_[pos_].text) == level) {
      std::string op = tokens_[pos_].text;
      ++pos_;
      Value right = 0;
      if (!Binary(right, level + 1, depth)) return false;
      std::uint64_t a = static_cast<std::uint64_t>(value);
      std::uint64_t b = static_cast<std::uint64_t>(right);
      if (op == "||") value = (value != 0 || right != 0) ? 1 : 0;
      else if (op == "&&") value = (value != 0 && right != 0) ? 1 : 0;
      else if (op == "|") value = Wrap(a | b);
      else if (op == "^") value = Wrap(a ^ b);
      else if (op == "&") value = Wrap(a & b);
      else if (op == "==") value = value == right ? 1 : 0;
      else if (op == "!=") value = value != right ? 1 : 0;
      else if (op == "<") value = value < right ? 1 : 0;
      else if (op == ">") value = value > right ? 1 : 0;
      else if (op == "<=") value = value <= right ? 1 : 0;
      else if (op == ">=") value = value >= right ? 1 : 0;
      else if (op == "<<") value = Wrap(a << (b & 63));
      else if (op == ">>") value = value >> (b & 63);
      else if (op == "+") value = Wrap(a + b);
      else if (op == "-") value = Wrap(a - b);
      else if (op == "*") value = Wrap(a * b);
      else {
        if (right == 0) return Fail("division by zero");
        if (right == -1) value = op == "/" ? Wrap(0 - a) : 0;
        else value = op == "/" ? value / right : value % right;
      }
    }
    return true;
  }

  bool Unary(Value& value, int depth) {
    if (depth > kMaxExpressionDepth) return Fail("the expression nests too deeply");
    if (pos_ >= tokens_.size()) return Fail("the expression ends too soon");
    const ScriptToken& token = tokens_[pos_];
    if (token.kind == ScriptToken::Kind::Punctuator &&
        (token.text == "-" || token.text == "+" || token.text == "~" || token.text == "!")) {
      std::string op = token.text;
      ++pos_;
      if (!Unary(value, depth + 1)) return false;
      std::uint64_t bits = static_cast<std::uint64_t>(value);
      if (op == "-") value = Wrap(0 - bits);
      else if (op == "~") value = Wrap(~bits);
      else if (op == "!") value = value == 0 ? 1 : 0;
      return true;
    }
    if (token.kind == ScriptToken::Kind::Punctuator && token.text == "(") {
      ++pos_;
      if (!Conditional(value, depth + 1)) return false;
      if (!Peek(")")) return Fail("')' expected");
      ++pos_;
      return true;
    }
    if (token.kind == ScriptToken::Kind::Number) {
      value = token.number;
      ++pos_;
      return true;
    }
    if (token.kind == ScriptToken::Kind::Identifier) {
      if (undefinedIsZero_) {
        value = 0;
        ++pos_;
        return true;
      }
      return Fail("'" + token.text + "' is not defined (a number or a #define'd name is expected)");
    }
    if (token.kind == ScriptToken::Kind::String) return Fail("a number is expected, not a string");
    return Fail("a number is expected, not '" + token.text + "'");
  }

  const std::vector<ScriptToken>& tokens_;
  std::size_t& pos_;
  bool undefinedIsZero_;
  ScriptError& error_;
};

}  // namespace

bool PreprocessScriptFile(const std::string& path, ScriptTokens& out, ScriptError& error) {
  Preprocessor preprocessor(out, error);
  return preprocessor.RunFile(path);
}

bool PreprocessScriptText(std::string_view text, const std::string& fileName, ScriptTokens& out, ScriptError& error) {
  Preprocessor preprocessor(out, error);
  return preprocessor.RunText(text, fileName);
}

bool EvaluateScriptExpression(const std::vector<ScriptToken>& tokens, std::size_t& pos, bool undefinedIsZero,
                              std::int64_t& value, ScriptError& error) {
  if (tokens.empty()) {
    error.message = "an expression is expected";
    return false;
  }
  ExpressionEvaluator evaluator(tokens, pos, undefinedIsZero, error);
  return evaluator.Evaluate(value);
}

}  // namespace tbx::win32
