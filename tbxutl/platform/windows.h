#pragma once
// The Win32 interface as the library sees it: the platform's own header on
// Windows, our declarations of the subset we implement on Linux.

#if defined(_WIN32)
#  ifndef WIN32_LEAN_AND_MEAN
#    define WIN32_LEAN_AND_MEAN
#  endif
#  ifndef NOMINMAX
#    define NOMINMAX
#  endif
#  include <windows.h>
#else
#  include "tbxutl/platform/win32/win32_types.h"
#endif
