#pragma once
// Message boxes of the library go through a presenter that the host can
// replace, on both platforms: a host shows them its own way, and a test
// answers them without a dialog.
//
// On Linux MessageBoxA calls the presenter. On Windows the library's own
// code reaches it too: built inside the library (TBXUTL_BUILDING), the name
// MessageBoxA (and so MessageBox) is redirected to the presenter below; code
// that includes the library's headers from outside calls the real function.
//
// The default presenter is the platform's: on Windows the real MessageBoxA;
// on Linux it writes the caption and the text to standard error and answers
// the default button (see DefaultAnswer).

#include <functional>

#include "tbxutl/export.h"
#include "tbxutl/platform/windows.h"

namespace tbx {

// Shows a box and answers the ID... of the button chosen (0 on failure).
using MessageBoxPresenter =
    std::function<int(HWND owner, const char* text, const char* caption, UINT type)>;

// Makes presenter the one that shows message boxes from now on and answers
// the previous one (the default presenter when no other was set), so that a
// host can restore it or pass boxes on to it. An empty presenter restores the
// default. Safe to call from any thread, also from inside a presenter.
TBXUTL_API MessageBoxPresenter SetMessageBoxPresenter(MessageBoxPresenter presenter);

namespace detail {

// Shows a box through the current presenter. The presenter runs without any
// lock held.
TBXUTL_API int ShowMessageBox(HWND owner, const char* text, const char* caption, UINT type);

// The platform's own presenter.
TBXUTL_API int DefaultMessageBoxPresenter(HWND owner, const char* text, const char* caption,
                                          UINT type);

// The answer of a box's default button: the button that MB_DEFBUTTON1..4
// selects among the box's buttons (MB_DEFBUTTON1, the first, unless another
// is asked for): IDOK for MB_OK, IDYES for MB_YESNO, IDNO for
// MB_YESNO | MB_DEFBUTTON2. A default button beyond the box's buttons, or the
// Help button (which does not close a box), gives the first button. Answers
// 0 for a button set that Windows does not have.
TBXUTL_API int DefaultAnswer(UINT type);

}  // namespace detail
}  // namespace tbx

#if defined(_WIN32) && defined(TBXUTL_BUILDING)
inline int WINAPI TbxUtlMessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type) {
  return tbx::detail::ShowMessageBox(owner, text, caption, type);
}
#  define MessageBoxA TbxUtlMessageBoxA
#endif
