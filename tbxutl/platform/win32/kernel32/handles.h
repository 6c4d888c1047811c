#pragma once
#include "tbxutl/export.h"
#include "tbxutl/platform/win32/win32_types.h"

// Closes a handle of any kind of kernel object; FALSE with
// ERROR_INVALID_HANDLE when the handle is not open.
extern "C" TBXUTL_FUNC BOOL WINAPI CloseHandle(HANDLE hObject);
