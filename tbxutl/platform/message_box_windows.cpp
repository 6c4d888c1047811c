#include "tbxutl/platform/message_box.h"

// The real function, not the library's redirection of its name.
#undef MessageBoxA

namespace tbx::detail {

int DefaultMessageBoxPresenter(HWND owner, const char* text, const char* caption, UINT type) {
  return ::MessageBoxA(owner, text, caption, type);
}

}  // namespace tbx::detail
