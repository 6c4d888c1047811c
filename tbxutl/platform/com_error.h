#pragma once
// _com_error: the platform's own on Windows, ours on Linux.
#if defined(_WIN32)
#  include <comdef.h>
#else
#  include "tbxutl/platform/win32/comsupp/com_error.h"
#endif
