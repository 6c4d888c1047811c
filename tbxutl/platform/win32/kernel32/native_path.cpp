#include "tbxutl/platform/win32/kernel32/native_path.h"

#include <cstdlib>

namespace tbx::win32 {

namespace {

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

char UpperLetter(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

// The folder that drive `letter` (upper case) maps to, without a trailing
// separator ("" for the root).
std::string DriveRoot(char letter) {
  const char* table = std::getenv("TBXUTL_DRIVES");
  std::string_view rest = table ? table : "";
  while (!rest.empty()) {
    std::size_t end = rest.find(';');
    std::string_view entry = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    if (entry.size() >= 2 && entry[1] == '=' && UpperLetter(entry[0]) == letter) {
      std::string root(entry.substr(2));
      while (!root.empty() && root.back() == '/') root.pop_back();
      return root;
    }
  }
  return std::string();
}

}  // namespace

std::optional<std::string> ToNativePath(std::string_view windowsPath) {
  if (windowsPath.size() >= 2 && IsSeparator(windowsPath[0]) && IsSeparator(windowsPath[1])) return std::nullopt;
  std::string result;
  std::string_view rest = windowsPath;
  char first = windowsPath.empty() ? '\0' : UpperLetter(windowsPath[0]);
  if (windowsPath.size() >= 2 && windowsPath[1] == ':' && first >= 'A' && first <= 'Z') {
    result = DriveRoot(first) + "/";
    rest.remove_prefix(2);
    while (!rest.empty() && IsSeparator(rest.front())) rest.remove_prefix(1);
  }
  for (char c : rest) result.push_back(c == '\\' ? '/' : c);
  return result;
}

}  // namespace tbx::win32
