#pragma once
// The framework's message box: owned by the application's main window and
// captioned with the application's name (empty when there is no
// application). The style is passed on as given; no icon is added.

#include "tbxutl/export.h"
#include "tbxutl/platform/windows.h"

TBXUTL_API int AfxMessageBox(const char* lpszText, UINT nType = MB_OK, UINT nIDHelp = 0);
// The text is the string resource nIDPrompt, found through the resource chain.
TBXUTL_API int AfxMessageBox(UINT nIDPrompt, UINT nType = MB_OK, UINT nIDHelp = static_cast<UINT>(-1));
