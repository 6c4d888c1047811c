#pragma once
// Resources of modules (modules.h): lookup by type, name and language, and
// the string tables behind LoadStringA (a user32 function on Windows; it
// lives here beside the resources it reads).

#include "tbxutl/export.h"
#include "tbxutl/platform/win32/win32_types.h"

#ifndef MAKEINTRESOURCEA
#  define MAKEINTRESOURCEA(i) (reinterpret_cast<LPSTR>(static_cast<ULONG_PTR>(static_cast<WORD>(i))))
#  define MAKEINTRESOURCE MAKEINTRESOURCEA
#  define IS_INTRESOURCE(r) ((reinterpret_cast<ULONG_PTR>(r) >> 16) == 0)
#endif

#ifndef RT_STRING
#  define RT_CURSOR MAKEINTRESOURCEA(1)
#  define RT_BITMAP MAKEINTRESOURCEA(2)
#  define RT_ICON MAKEINTRESOURCEA(3)
#  define RT_MENU MAKEINTRESOURCEA(4)
#  define RT_DIALOG MAKEINTRESOURCEA(5)
#  define RT_STRING MAKEINTRESOURCEA(6)
#  define RT_ACCELERATOR MAKEINTRESOURCEA(9)
#  define RT_RCDATA MAKEINTRESOURCEA(10)
#  define RT_VERSION MAKEINTRESOURCEA(16)
#endif

#ifndef MAKELANGID
#  define MAKELANGID(primary, sub) static_cast<WORD>((static_cast<WORD>(sub) << 10) | static_cast<WORD>(primary))
#  define PRIMARYLANGID(lang) static_cast<WORD>(static_cast<WORD>(lang) & 0x3FF)
#  define SUBLANGID(lang) static_cast<WORD>(static_cast<WORD>(lang) >> 10)
#endif

// Names are numbers (MAKEINTRESOURCEA, or "#123") or texts compared without
// regard to case. FindResourceA looks for the neutral language and falls
// back to the best one present; FindResourceExA with a language that is not
// neutral wants that language exactly. The handle, LoadResource and
// LockResource give the same bytes as Windows (a string block: 16 strings,
// each a 16-bit length and UTF-16 units; a menu: its menu template).
extern "C" TBXUTL_FUNC HRSRC WINAPI FindResourceA(HMODULE module, LPCSTR name, LPCSTR type);
extern "C" TBXUTL_FUNC HRSRC WINAPI FindResourceExA(HMODULE module, LPCSTR type, LPCSTR name, WORD language);
extern "C" TBXUTL_FUNC HGLOBAL WINAPI LoadResource(HMODULE module, HRSRC resource);
extern "C" TBXUTL_FUNC LPVOID WINAPI LockResource(HGLOBAL data);
extern "C" TBXUTL_FUNC DWORD WINAPI SizeofResource(HMODULE module, HRSRC resource);
// Resources live as long as their module: this does nothing and answers FALSE.
extern "C" TBXUTL_FUNC BOOL WINAPI FreeResource(HGLOBAL data);

// Copies string `id` (its low 16 bits) into `buffer` in code page 1252, cut
// to bufferMax - 1 characters, and returns the characters copied. A missing
// string gives 0 and an empty buffer (the last error says why when its
// block is missing); bufferMax 0 gives -1 and leaves the buffer alone.
extern "C" TBXUTL_FUNC int WINAPI LoadStringA(HINSTANCE instance, UINT id, LPSTR buffer, int bufferMax);

#ifndef LoadString
#  define LoadString LoadStringA
#  define FindResource FindResourceA
#  define FindResourceEx FindResourceExA
#endif
