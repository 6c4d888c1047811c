#pragma once
// Code pages and the conversions between them and UTF-16. The ANSI code page
// is Windows-1252 and the OEM code page 437; CP_UTF8 converts UTF-8. Other
// code page numbers (CP_MACCP, CP_SYMBOL, CP_UTF7, the double-byte pages) are
// not installed here and fail with ERROR_INVALID_PARAMETER.

#include "tbxutl/export.h"
#include "tbxutl/platform/win32/win32_types.h"

#define CP_ACP 0
#define CP_OEMCP 1
#define CP_MACCP 2
#define CP_THREAD_ACP 3
#define CP_SYMBOL 42
#define CP_UTF7 65000
#define CP_UTF8 65001

#define MB_PRECOMPOSED 0x00000001
#define MB_COMPOSITE 0x00000002
#define MB_USEGLYPHCHARS 0x00000004
#define MB_ERR_INVALID_CHARS 0x00000008

#define WC_DISCARDNS 0x00000010
#define WC_SEPCHARS 0x00000020
#define WC_DEFAULTCHAR 0x00000040
#define WC_ERR_INVALID_CHARS 0x00000080
#define WC_COMPOSITECHECK 0x00000200
#define WC_NO_BEST_FIT_CHARS 0x00000400

extern "C" TBXUTL_FUNC UINT WINAPI GetACP();
extern "C" TBXUTL_FUNC UINT WINAPI GetOEMCP();
extern "C" TBXUTL_FUNC BOOL WINAPI IsDBCSLeadByte(BYTE TestChar);
extern "C" TBXUTL_FUNC BOOL WINAPI IsDBCSLeadByteEx(UINT CodePage, BYTE TestChar);

extern "C" TBXUTL_FUNC int WINAPI MultiByteToWideChar(UINT CodePage, DWORD dwFlags, LPCSTR lpMultiByteStr,
                                                      int cbMultiByte, LPWSTR lpWideCharStr, int cchWideChar);
extern "C" TBXUTL_FUNC int WINAPI WideCharToMultiByte(UINT CodePage, DWORD dwFlags, LPCWSTR lpWideCharStr,
                                                      int cchWideChar, LPSTR lpMultiByteStr, int cbMultiByte,
                                                      LPCSTR lpDefaultChar, LPBOOL lpUsedDefaultChar);
