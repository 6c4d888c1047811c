#pragma once
// The preprocessing stage of the resource-script reader: files and
// #include, comments, #define / #undef and the conditional directives,
// #pragma code_page and #line. Its result is the token list that the
// statement reader (resource_script.h) works on, with every macro expanded.

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "tbxutl/export.h"

namespace tbx::win32 {

// Where a script went wrong: the file and line, and what is wrong there.
struct TBXUTL_API ScriptError {
  std::string file;
  int line = 0;
  std::string message;

  // "file(line): message", the form compilers use.
  std::string Describe() const;
};

struct ScriptToken {
  enum class Kind { Identifier, Number, String, Punctuator };
  Kind kind = Kind::Punctuator;
  // Identifier and punctuator spelling; for a string, its raw text between
  // the quotes (escapes are decoded by the statement reader).
  std::string text;
  bool wide = false;         // an L"..." string
  std::int64_t number = 0;   // value of a number
  const std::string* file = nullptr;  // owned by ScriptTokens::files
  int line = 0;
};

struct ScriptTokens {
  std::vector<ScriptToken> tokens;
  std::deque<std::string> files;  // names the tokens point to
};

// Reads the script file `path` (#include "x" resolves beside the including
// file). False with `error` set on any fault; `out` is then unspecified.
TBXUTL_API bool PreprocessScriptFile(const std::string& path, ScriptTokens& out, ScriptError& error);

// The same for a script held in memory; `fileName` names it in messages and
// its folder is where its quoted #include files are looked for.
TBXUTL_API bool PreprocessScriptText(std::string_view text, const std::string& fileName, ScriptTokens& out,
                                     ScriptError& error);

// Evaluates the integer expression that starts at tokens[pos] (C operators
// and precedence), leaving `pos` after it. With `undefinedIsZero` an
// identifier counts as 0 (as in #if); otherwise it is an error.
TBXUTL_API bool EvaluateScriptExpression(const std::vector<ScriptToken>& tokens, std::size_t& pos, bool undefinedIsZero,
                                         std::int64_t& value, ScriptError& error);

}  // namespace tbx::win32
