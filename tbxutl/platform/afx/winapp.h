#pragma once
// The application object, as far as the library uses it: its name, help
// file, main window and idle processing. Constructing a CWinApp makes it
// the process's application (AfxGetApp); destroying it clears that.

#include "tbxutl/export.h"
#include "tbxutl/platform/afx/cobject.h"
#include "tbxutl/platform/windows.h"

// A window object: the library only needs its handle.
class TBXUTL_API CWnd : public CObject {
  DECLARE_DYNAMIC(CWnd)
 public:
  CWnd() = default;
  explicit CWnd(HWND hWnd) : m_hWnd(hWnd) {}
  HWND GetSafeHwnd() const { return m_hWnd; }

  HWND m_hWnd = nullptr;
};

class TBXUTL_API CWinApp : public CObject {
  DECLARE_DYNAMIC(CWinApp)
 public:
  // The name defaults to the program's file title.
  explicit CWinApp(const char* lpszAppName = nullptr);
  ~CWinApp() override;

  // Called when the message queue is empty; answers whether more idle
  // work is wanted. The base class has none.
  virtual BOOL OnIdle(LONG lCount);
  virtual CWnd* GetMainWnd() { return m_pMainWnd; }

  const char* m_pszAppName;
  const char* m_pszHelpFilePath;
  const char* m_pszExeName;
  CWnd* m_pMainWnd;

 private:
  char* m_pszOwnedAppName;  // the default name, when the caller gave none
};
