#pragma once
// The system's message texts for Win32 error codes and common HRESULTs, in
// English, as Windows words them (without the trailing CR LF that
// FormatMessage adds).

#include "tbxutl/platform/win32/win32_types.h"

namespace tbx::detail {

// The text, or null when the system has none for the code. An HRESULT of
// the Win32 facility answers the text of its Win32 code.
const char* SystemMessageText(DWORD code);

}  // namespace tbx::detail
