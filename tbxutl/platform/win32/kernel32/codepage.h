#pragma once
// Conversion between the ANSI code page (Windows-1252) and UTF-16.

#include "tbxutl/export.h"
#include "tbxutl/platform/win32/win32_types.h"

#define CP_ACP 0
#define CP_OEMCP 1
#define CP_THREAD_ACP 3
#define CP_UTF8 65001

#define MB_PRECOMPOSED 0x00000001
#define MB_ERR_INVALID_CHARS 0x00000008
#define WC_NO_BEST_FIT_CHARS 0x00000400

extern "C" {
TBXUTL_FUNC UINT WINAPI GetACP();
TBXUTL_FUNC int WINAPI MultiByteToWideChar(UINT CodePage, DWORD dwFlags, LPCSTR lpMultiByteStr, int cbMultiByte,
                                           LPWSTR lpWideCharStr, int cchWideChar);
TBXUTL_FUNC int WINAPI WideCharToMultiByte(UINT CodePage, DWORD dwFlags, LPCWSTR lpWideCharStr, int cchWideChar,
                                           LPSTR lpMultiByteStr, int cbMultiByte, LPCSTR lpDefaultChar,
                                           LPBOOL lpUsedDefaultChar);
}
