#include "tbxutl/platform/afx/afx_message_box.h"

#include "tbxutl/platform/afx/cstring.h"
#include "tbxutl/platform/afx/module_state.h"
#include "tbxutl/platform/afx/winapp.h"
#include "tbxutl/platform/message_box.h"

int AfxMessageBox(const char* lpszText, UINT nType, UINT) {
  CWinApp* app = AfxGetApp();
  CWnd* mainWindow = app != nullptr ? app->GetMainWnd() : nullptr;
  HWND owner = mainWindow != nullptr ? mainWindow->GetSafeHwnd() : nullptr;
  const char* caption = AfxGetAppName();
  return MessageBoxA(owner, lpszText ? lpszText : "", caption ? caption : "", nType);
}

int AfxMessageBox(UINT nIDPrompt, UINT nType, UINT nIDHelp) {
  CString text;
  text.LoadString(nIDPrompt);
  return AfxMessageBox(text, nType, nIDHelp == static_cast<UINT>(-1) ? nIDPrompt : nIDHelp);
}
