#pragma once
// Helpers of the tests that run on both platforms (under Wine on Windows).

#include <string>

#include "tbxutl/platform/windows.h"

namespace tbx::testing {

// True when the Windows build runs under Wine. Where Wine departs from the
// behaviour that Windows documents, the tests check the documented behaviour
// and skip that check under Wine.
inline bool RunningUnderWine() {
#if defined(_WIN32)
  HMODULE ntdll = GetModuleHandleA("ntdll.dll");
  return ntdll != nullptr && GetProcAddress(ntdll, "wine_get_version") != nullptr;
#else
  return false;
#endif
}

// UTF-16 text as WCHAR (wchar_t on Windows, char16_t on Linux).
using WideString = std::basic_string<WCHAR>;

inline const WCHAR* Wide(const char16_t* text) { return reinterpret_cast<const WCHAR*>(text); }

inline WideString WideOf(std::u16string_view text) { return WideString(Wide(text.data()), text.size()); }

}  // namespace tbx::testing
