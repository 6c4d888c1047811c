#include "tbxutl/platform/win32/kernel32/last_error.h"

namespace {
thread_local DWORD t_lastError = 0;
}

extern "C" DWORD WINAPI GetLastError() { return t_lastError; }

extern "C" void WINAPI SetLastError(DWORD code) { t_lastError = code; }
