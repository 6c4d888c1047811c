#pragma once
#include "tbxutl/export.h"
#include "tbxutl/platform/win32/win32_types.h"

// The calling thread's last-error code.
extern "C" TBXUTL_FUNC DWORD WINAPI GetLastError();
extern "C" TBXUTL_FUNC void WINAPI SetLastError(DWORD code);
