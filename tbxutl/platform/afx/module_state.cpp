#include "tbxutl/platform/afx/module_state.h"

#include "tbxutl/platform/afx/winapp.h"

IMPLEMENT_DYNAMIC(CDynLinkLibrary, CObject)

AFX_MODULE_STATE* AfxGetModuleState() {
  static AFX_MODULE_STATE* state = new AFX_MODULE_STATE{};  // outlives static destructors
  return state;
}

HINSTANCE AfxGetInstanceHandle() {
  AFX_MODULE_STATE* state = AfxGetModuleState();
  return state->m_hCurrentInstanceHandle ? state->m_hCurrentInstanceHandle : GetModuleHandleA(nullptr);
}

void AfxSetInstanceHandle(HINSTANCE hInstance) { AfxGetModuleState()->m_hCurrentInstanceHandle = hInstance; }

HINSTANCE AfxGetResourceHandle() {
  AFX_MODULE_STATE* state = AfxGetModuleState();
  return state->m_hCurrentResourceHandle ? state->m_hCurrentResourceHandle : AfxGetInstanceHandle();
}

void AfxSetResourceHandle(HINSTANCE hResource) { AfxGetModuleState()->m_hCurrentResourceHandle = hResource; }

HINSTANCE AfxFindResourceHandle(LPCSTR lpszName, LPCSTR lpszType) {
  HINSTANCE current = AfxGetResourceHandle();
  if (current != nullptr && FindResourceA(current, lpszName, lpszType) != nullptr) return current;
  AFX_MODULE_STATE* state = AfxGetModuleState();
  std::lock_guard lock(state->m_mutexLibraries);
  for (CDynLinkLibrary* dll = state->m_pFirstDLL; dll != nullptr; dll = dll->m_pNextDLL) {
    if (dll->m_hResource != nullptr && FindResourceA(dll->m_hResource, lpszName, lpszType) != nullptr) {
      return dll->m_hResource;
    }
  }
  return current;
}

CWinApp* AfxGetApp() { return AfxGetModuleState()->m_pCurrentWinApp; }

const char* AfxGetAppName() { return AfxGetModuleState()->m_lpszCurrentAppName; }

BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule) {
  if (state.bInitialized) return TRUE;
  state.hModule = hModule;
  state.hResource = hModule;
  state.pFirstSharedClass = nullptr;
  state.pFirstSharedFactory = nullptr;
  state.bInitialized = TRUE;
  return TRUE;
}

void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL) {
  if (!state.bInitialized) return;
  AFX_MODULE_STATE* module = AfxGetModuleState();
  std::lock_guard lock(module->m_mutexLibraries);
  // Deleting an entry unlinks it, so restart after each deletion.
  for (bool found = true; found;) {
    found = false;
    for (CDynLinkLibrary* dll = module->m_pFirstDLL; dll != nullptr; dll = dll->m_pNextDLL) {
      if (dll->m_hModule == state.hModule) {
        delete dll;
        found = true;
        break;
      }
    }
  }
}

CDynLinkLibrary::CDynLinkLibrary(AFX_EXTENSION_MODULE& state, BOOL bSystem)
    : m_hModule(state.hModule),
      m_hResource(state.hResource),
      m_pFirstSharedClass(state.pFirstSharedClass),
      m_pFirstSharedFactory(state.pFirstSharedFactory),
      m_bSystem(bSystem),
      m_pNextDLL(nullptr) {
  Link();
}

CDynLinkLibrary::CDynLinkLibrary(HINSTANCE hModule, HINSTANCE hResource)
    : m_hModule(hModule),
      m_hResource(hResource),
      m_pFirstSharedClass(nullptr),
      m_pFirstSharedFactory(nullptr),
      m_bSystem(FALSE),
      m_pNextDLL(nullptr) {
  Link();
}

void CDynLinkLibrary::Link() {
  AFX_MODULE_STATE* state = AfxGetModuleState();
  std::lock_guard lock(state->m_mutexLibraries);
  m_pNextDLL = state->m_pFirstDLL;
  state->m_pFirstDLL = this;
}

CDynLinkLibrary::~CDynLinkLibrary() {
  AFX_MODULE_STATE* state = AfxGetModuleState();
  std::lock_guard lock(state->m_mutexLibraries);
  for (CDynLinkLibrary** link = &state->m_pFirstDLL; *link != nullptr; link = &(*link)->m_pNextDLL) {
    if (*link == this) {
      *link = m_pNextDLL;
      break;
    }
  }
}
