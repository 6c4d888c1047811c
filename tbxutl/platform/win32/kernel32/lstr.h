#pragma once
// The kernel's ANSI string functions. A null pointer does not fault: lstrlenA
// counts 0, the copies answer null with ERROR_INVALID_PARAMETER, and the
// comparisons put a null string before every other.
//
// lstrcmpA and lstrcmpiA compare as CompareStringA does for the user's
// locale (word sort): letters by their base letter first, then accents, then
// case (small before capital); hyphens and apostrophes count only when all
// else is equal; control characters likewise, and the soft hyphen not at all.
// The weights are those of the default sorting table for the characters of
// the ANSI code page (Windows-1252), which is all these functions can meet;
// no locale has sorting exceptions here.

#include "tbxutl/export.h"
#include "tbxutl/platform/win32/win32_types.h"

extern "C" TBXUTL_FUNC int WINAPI lstrlenA(LPCSTR lpString);
extern "C" TBXUTL_FUNC LPSTR WINAPI lstrcpyA(LPSTR lpString1, LPCSTR lpString2);
// Copies at most iMaxLength - 1 bytes and always terminates (for iMaxLength > 0).
extern "C" TBXUTL_FUNC LPSTR WINAPI lstrcpynA(LPSTR lpString1, LPCSTR lpString2, int iMaxLength);
extern "C" TBXUTL_FUNC LPSTR WINAPI lstrcatA(LPSTR lpString1, LPCSTR lpString2);
// Negative, zero or positive as lpString1 sorts before, with or after lpString2.
extern "C" TBXUTL_FUNC int WINAPI lstrcmpA(LPCSTR lpString1, LPCSTR lpString2);
extern "C" TBXUTL_FUNC int WINAPI lstrcmpiA(LPCSTR lpString1, LPCSTR lpString2);

// The plain names, as <windows.h> spells them for ANSI builds.
#define lstrlen lstrlenA
#define lstrcpy lstrcpyA
#define lstrcpyn lstrcpynA
#define lstrcat lstrcatA
#define lstrcmp lstrcmpA
#define lstrcmpi lstrcmpiA
