#pragma once
// The run-time library's multibyte string functions (_mbschr, _mbsicmp,
// _mbsinc, ...): the platform's <mbstring.h> on Windows, our declarations on
// Linux.

#if defined(_WIN32)
#  include <mbctype.h>
#  include <mbstring.h>
#else
#  include "tbxutl/platform/win32/msvcrt/mbstring.h"
#endif
