#include "tbxutl/platform/win32/user32/message_box.h"

#include "tbxutl/platform/message_box.h"

extern "C" int WINAPI MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type) {
  return tbx::detail::ShowMessageBox(owner, text, caption, type);
}

extern "C" BOOL WINAPI MessageBeep(UINT) { return TRUE; }
