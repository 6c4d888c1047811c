#pragma once
// The run-time library's multibyte string functions (_mbschr, _mbsicmp,
// _mbsinc, ...): the platform's <mbstring.h> on Windows, our declarations on
// Linux.

#if defined(_WIN32)
// Not <mbctype.h>: its _M1 and _M2 macros break the C++20 <type_traits>.
#  include <mbstring.h>
#else
#  include "tbxutl/platform/win32/msvcrt/mbstring.h"
#endif
