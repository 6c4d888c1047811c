#pragma once
// Characters of ANSI strings: stepping (a double-byte character is one
// step), case mapping and classification. Each works as Windows does, through
// UTF-16: the bytes decode with the ANSI code page, the character's Unicode
// properties decide, and the result encodes back (best fit included, so a
// capital that the code page lacks turns back into the small letter).

#include "tbxutl/export.h"
#include "tbxutl/platform/win32/win32_types.h"

extern "C" TBXUTL_FUNC LPSTR WINAPI CharNextA(LPCSTR lpsz);
extern "C" TBXUTL_FUNC LPSTR WINAPI CharPrevA(LPCSTR lpszStart, LPCSTR lpszCurrent);

// A pointer whose high-order word is zero stands for the one character in its
// low byte: the result is then that character converted, not a pointer.
extern "C" TBXUTL_FUNC LPSTR WINAPI CharUpperA(LPSTR lpsz);
extern "C" TBXUTL_FUNC LPSTR WINAPI CharLowerA(LPSTR lpsz);
// Convert `cchLength` bytes in place (terminators included) and return the count.
extern "C" TBXUTL_FUNC DWORD WINAPI CharUpperBuffA(LPSTR lpsz, DWORD cchLength);
extern "C" TBXUTL_FUNC DWORD WINAPI CharLowerBuffA(LPSTR lpsz, DWORD cchLength);

extern "C" TBXUTL_FUNC BOOL WINAPI IsCharAlphaA(CHAR ch);
extern "C" TBXUTL_FUNC BOOL WINAPI IsCharAlphaNumericA(CHAR ch);
extern "C" TBXUTL_FUNC BOOL WINAPI IsCharUpperA(CHAR ch);
extern "C" TBXUTL_FUNC BOOL WINAPI IsCharLowerA(CHAR ch);

// The plain names, as <windows.h> spells them for ANSI builds.
#define CharNext CharNextA
#define CharPrev CharPrevA
#define CharUpper CharUpperA
#define CharLower CharLowerA
#define CharUpperBuff CharUpperBuffA
#define CharLowerBuff CharLowerBuffA
#define IsCharAlpha IsCharAlphaA
#define IsCharAlphaNumeric IsCharAlphaNumericA
#define IsCharUpper IsCharUpperA
#define IsCharLower IsCharLowerA
