#pragma once
// Locale information for the Linux build.
//
// The user default locale is the LC_NUMERIC locale that the environment
// chooses for the process (LC_ALL, then LC_NUMERIC, then LANG: what
// setlocale(LC_ALL, "") would take), read through a private locale object so
// that no call races with a thread that calls setlocale. The process's own
// setlocale state does not matter, just as Windows answers the user's
// settings whatever the C runtime's locale is. Its LCID comes from the
// language of LC_ALL, LC_NUMERIC, LC_MESSAGES or LANG (the first one set):
// en_US gives 0x0409, de_DE 0x0407, fr_FR 0x040C ...; "C", "POSIX", an unset
// environment and a language we do not know give 0x0409 (en-US). The system
// default locale is the user default locale.
//
// The decimal and thousands separators of the user default locale come from
// the LC_NUMERIC locale (in its own character set, UTF-8 in UTF-8 locales);
// for "C" and "POSIX" they are en-US's; when the system lacks the named
// locale they are Windows's values for its language and country. The other
// items come from a table of the common languages, with Windows's values.
// Any other LCID of that table (and LOCALE_INVARIANT) is answered from the
// table alone.
//
// tbx::SetUserLocaleInfo overrides single items of the user default locale,
// like a user's own settings on Windows: LOCALE_NOUSEROVERRIDE ignores them.

#include "tbxutl/export.h"
#include "tbxutl/platform/win32/win32_types.h"

#ifndef MAKELANGID
#  define MAKELANGID(p, s) ((static_cast<WORD>(s) << 10) | static_cast<WORD>(p))
#  define PRIMARYLANGID(lgid) (static_cast<WORD>(lgid) & 0x3ff)
#  define SUBLANGID(lgid) (static_cast<WORD>(lgid) >> 10)
#  define MAKELCID(lgid, srtid) \
    ((static_cast<DWORD>(static_cast<WORD>(srtid)) << 16) | static_cast<DWORD>(static_cast<WORD>(lgid)))
#  define LANGIDFROMLCID(lcid) (static_cast<WORD>(lcid))
#  define SORTIDFROMLCID(lcid) (static_cast<WORD>((static_cast<DWORD>(lcid) >> 16) & 0xf))
#  define LANG_NEUTRAL 0x00
#  define LANG_INVARIANT 0x7f
#  define SUBLANG_NEUTRAL 0x00
#  define SUBLANG_DEFAULT 0x01
#  define SUBLANG_SYS_DEFAULT 0x02
#  define SORT_DEFAULT 0x0
#  define LANG_SYSTEM_DEFAULT MAKELANGID(LANG_NEUTRAL, SUBLANG_SYS_DEFAULT)
#  define LANG_USER_DEFAULT MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT)
#endif

#define LOCALE_USER_DEFAULT 0x0400
#define LOCALE_SYSTEM_DEFAULT 0x0800
#define LOCALE_NEUTRAL 0x0000
#define LOCALE_INVARIANT 0x007F
#define LOCALE_CUSTOM_DEFAULT 0x0C00
#define LOCALE_CUSTOM_UNSPECIFIED 0x1000
#define LOCALE_CUSTOM_UI_DEFAULT 0x1400

// Flags combined with an item.
#define LOCALE_NOUSEROVERRIDE 0x80000000
#define LOCALE_USE_CP_ACP 0x40000000
#define LOCALE_RETURN_NUMBER 0x20000000

// Items. The LOCALE_I... items are numbers; with LOCALE_RETURN_NUMBER they are
// answered as a DWORD (4 characters of the buffer) instead of as text.
#define LOCALE_ILANGUAGE 0x0001  // the LANGID in 4 hexadecimal digits
#define LOCALE_SLANGUAGE 0x0002
#define LOCALE_SENGLANGUAGE 0x1001
#define LOCALE_SLIST 0x000C
#define LOCALE_IMEASURE 0x000D  // 0 metric, 1 U.S.
#define LOCALE_SDECIMAL 0x000E
#define LOCALE_STHOUSAND 0x000F
#define LOCALE_ILZERO 0x0012
#define LOCALE_SNEGATIVESIGN 0x0051
#define LOCALE_SISO639LANGNAME 0x0059
#define LOCALE_SISO3166CTRYNAME 0x005A
#define LOCALE_IDEFAULTANSICODEPAGE 0x1004

#define GetLocaleInfo GetLocaleInfoA

// Copies one item of a locale into buffer and answers the characters written,
// the terminator included. size 0 only answers the size needed (buffer may be
// null). Failure answers 0 with the last error: ERROR_INSUFFICIENT_BUFFER for
// a short buffer (whose contents are then unspecified), ERROR_INVALID_FLAGS
// for an unknown item or LOCALE_RETURN_NUMBER on a text item,
// ERROR_INVALID_PARAMETER for an unknown LCID, a negative size or a null
// buffer with a size.
extern "C" TBXUTL_FUNC int WINAPI GetLocaleInfoA(LCID locale, LCTYPE type, LPSTR buffer, int size);
extern "C" TBXUTL_FUNC LCID WINAPI GetUserDefaultLCID();
extern "C" TBXUTL_FUNC LCID WINAPI GetSystemDefaultLCID();
extern "C" TBXUTL_FUNC LANGID WINAPI GetUserDefaultLangID();
// Threads start in the user default locale; nothing changes it.
extern "C" TBXUTL_FUNC LCID WINAPI GetThreadLocale();

namespace tbx {

// Overrides one item of the user default locale with value (text in the form
// GetLocaleInfoA answers; a decimal number for the LOCALE_I... items,
// hexadecimal for LOCALE_ILANGUAGE); a null value removes the override.
// Answers false, with the last error, for an unknown item or a flag in type
// (ERROR_INVALID_FLAGS) and for a numeric item whose value is no number
// (ERROR_INVALID_PARAMETER). Safe to call from any thread.
TBXUTL_API bool SetUserLocaleInfo(LCTYPE type, const char* value);

}  // namespace tbx
