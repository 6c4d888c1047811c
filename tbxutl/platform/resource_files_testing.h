#pragma once
// Where the platform tests find the resource libraries that the build puts
// beside them (cmake/ResourceScripts.cmake), on both systems.

#include <string>

#include "tbxutl/platform/windows.h"

namespace tbx::testing {

// The folder of the running test program, with a trailing separator.
inline std::string ProgramFolder() {
  char path[MAX_PATH] = {};
  DWORD length = GetModuleFileNameA(nullptr, path, MAX_PATH);
  std::string folder(path, length);
  return folder.substr(0, folder.find_last_of("\\/") + 1);
}

// The test library TbxResTest.dll (testdata/TbxResTest.rc).
inline std::string TestLibraryPath() { return ProgramFolder() + "testdata\\TbxResTest.dll"; }

// The language resource library TbxUtlIntl.dll of `language` ("EN", "DE").
inline std::string LanguageLibraryPath(const std::string& language) {
  return ProgramFolder() + "lang\\" + language + "\\TbxUtlIntl.dll";
}

// Wine stands in for Windows in the Windows test runs; where it differs from
// Windows's documented behaviour, a test says so through this.
inline bool RunningUnderWine() {
#if defined(_WIN32)
  HMODULE ntdll = GetModuleHandleA("ntdll.dll");
  return ntdll && GetProcAddress(ntdll, "wine_get_version") != nullptr;
#else
  return false;
#endif
}

}  // namespace tbx::testing
