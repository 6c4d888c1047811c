#include "tbxutl/platform/afx/winapp.h"

#include <cstdlib>
#include <cstring>

#include "tbxutl/platform/afx/module_state.h"

IMPLEMENT_DYNAMIC(CWnd, CObject)
IMPLEMENT_DYNAMIC(CWinApp, CObject)

namespace {

// The program's file name without folder and extension.
char* ProgramTitle() {
  char path[MAX_PATH] = {};
  DWORD n = GetModuleFileNameA(nullptr, path, MAX_PATH);
  if (n == 0 || n >= MAX_PATH) return nullptr;
  const char* name = path;
  for (const char* p = path; *p != '\0'; ++p) {
    if (*p == '\\' || *p == '/') name = p + 1;
  }
  std::size_t length = std::strlen(name);
  const char* dot = std::strrchr(name, '.');
  if (dot != nullptr) length = static_cast<std::size_t>(dot - name);
  char* title = static_cast<char*>(std::malloc(length + 1));
  if (title == nullptr) return nullptr;
  std::memcpy(title, name, length);
  title[length] = '\0';
  return title;
}

}  // namespace

CWinApp::CWinApp(const char* lpszAppName)
    : m_pszAppName(lpszAppName),
      m_pszHelpFilePath(nullptr),
      m_pszExeName(nullptr),
      m_pMainWnd(nullptr),
      m_pszOwnedAppName(nullptr) {
  if (m_pszAppName == nullptr) {
    m_pszOwnedAppName = ProgramTitle();
    m_pszAppName = m_pszOwnedAppName;
  }
  AFX_MODULE_STATE* state = AfxGetModuleState();
  state->m_pCurrentWinApp = this;
  state->m_lpszCurrentAppName = m_pszAppName;
}

CWinApp::~CWinApp() {
  AFX_MODULE_STATE* state = AfxGetModuleState();
  if (state->m_pCurrentWinApp == this) {
    state->m_pCurrentWinApp = nullptr;
    state->m_lpszCurrentAppName = nullptr;
  }
  std::free(m_pszOwnedAppName);
}

BOOL CWinApp::OnIdle(LONG) { return FALSE; }
