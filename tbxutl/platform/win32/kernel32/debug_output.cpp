#include "tbxutl/platform/win32/kernel32/debug_output.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" void WINAPI OutputDebugStringA(LPCSTR text) {
  if (text == nullptr) return;
  const char* enabled = std::getenv("TBXUTL_DEBUG_OUTPUT");
  if (enabled == nullptr || std::strcmp(enabled, "1") != 0) return;
  std::fwrite(text, 1, std::strlen(text), stderr);
}
