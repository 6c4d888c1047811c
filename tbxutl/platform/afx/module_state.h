#pragma once
// The framework's module state: the program's instance and current resource
// handles, the application object, and the chain of extension libraries
// whose resources the framework searches. The library is an extension of
// its host, so there is one state for the whole process.

#include <mutex>

#include "tbxutl/export.h"
#include "tbxutl/platform/afx/cobject.h"
#include "tbxutl/platform/windows.h"

class CWinApp;
class CDynLinkLibrary;
class COleObjectFactory;

// An extension library's record, filled by AfxInitExtensionModule.
struct AFX_EXTENSION_MODULE {
  BOOL bInitialized;
  HMODULE hModule;
  HMODULE hResource;
  CRuntimeClass* pFirstSharedClass;
  COleObjectFactory* pFirstSharedFactory;
};

struct TBXUTL_API AFX_MODULE_STATE {
  HINSTANCE m_hCurrentInstanceHandle;  // null: the main program's module
  HINSTANCE m_hCurrentResourceHandle;  // null: the instance handle
  const char* m_lpszCurrentAppName;
  CWinApp* m_pCurrentWinApp;
  CDynLinkLibrary* m_pFirstDLL;  // the chain, newest first
  std::recursive_mutex m_mutexLibraries;
};

TBXUTL_API AFX_MODULE_STATE* AfxGetModuleState();

TBXUTL_API HINSTANCE AfxGetInstanceHandle();
TBXUTL_API void AfxSetInstanceHandle(HINSTANCE hInstance);
TBXUTL_API HINSTANCE AfxGetResourceHandle();
TBXUTL_API void AfxSetResourceHandle(HINSTANCE hResource);
// The module that holds the resource: the current resource handle first,
// then every chained library in order; the current resource handle when
// none holds it.
TBXUTL_API HINSTANCE AfxFindResourceHandle(LPCSTR lpszName, LPCSTR lpszType);

TBXUTL_API CWinApp* AfxGetApp();
TBXUTL_API const char* AfxGetAppName();

// Fills the record from the module (resource handle = module handle).
// Answers TRUE; a second call for an initialised record changes nothing.
TBXUTL_API BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule);
// Removes the record's library entries from the chain.
TBXUTL_API void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL bAll = FALSE);

// An entry of the resource chain. Constructing one links it in; deleting
// it unlinks it.
class TBXUTL_API CDynLinkLibrary : public CObject {
  DECLARE_DYNAMIC(CDynLinkLibrary)
 public:
  explicit CDynLinkLibrary(AFX_EXTENSION_MODULE& state, BOOL bSystem = FALSE);
  CDynLinkLibrary(HINSTANCE hModule, HINSTANCE hResource);
  ~CDynLinkLibrary() override;

  HMODULE m_hModule;
  HMODULE m_hResource;
  CRuntimeClass* m_pFirstSharedClass;
  COleObjectFactory* m_pFirstSharedFactory;
  BOOL m_bSystem;
  CDynLinkLibrary* m_pNextDLL;

 private:
  void Link();
};
