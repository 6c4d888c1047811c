// Resource scripts are text files that anyone may edit: the reader must
// answer every input with resources or with an error, and never crash.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tbxutl/platform/windows.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view text(reinterpret_cast<const char*>(data), size);
  tbx::win32::ScriptError error;
  // Quoted #include files are looked for beside this name, where there are none.
  auto resources = tbx::win32::ReadResourceScriptText(text, "/nonexistent/fuzz.rc", error);
  if (!resources && error.message.empty()) __builtin_trap();  // a fault must say what it is
  return 0;
}
