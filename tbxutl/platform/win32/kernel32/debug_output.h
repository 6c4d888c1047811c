#pragma once
#include "tbxutl/export.h"
#include "tbxutl/platform/win32/win32_types.h"

#define OutputDebugString OutputDebugStringA

// The debugger output. Linux has no debugger to listen, so the text is
// dropped, unless the environment variable TBXUTL_DEBUG_OUTPUT is "1": then
// it goes to standard error unchanged (no line break is added).
extern "C" TBXUTL_FUNC void WINAPI OutputDebugStringA(LPCSTR text);
