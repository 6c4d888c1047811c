#pragma once
// The multibyte string functions of the C run-time library: the platform's
// own on Windows, ours on Linux.
#if defined(_WIN32)
#  include <mbstring.h>
#else
#  include "tbxutl/platform/win32/msvcrt/mbstring.h"
#endif
