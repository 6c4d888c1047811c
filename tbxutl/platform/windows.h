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
#  if defined(TBXUTL_BUILDING)
// Inside the library, MessageBoxA reaches the host's presenter.
#    include "tbxutl/platform/message_box.h"
#  endif
#else
// Grouped by the DLL that owns each function on Windows.
#  include "tbxutl/platform/win32/win32_types.h"
#  include "tbxutl/platform/win32/winerror.h"
#  include "tbxutl/platform/win32/kernel32/last_error.h"
#  include "tbxutl/platform/win32/kernel32/handles.h"
#  include "tbxutl/platform/win32/kernel32/files.h"
#  include "tbxutl/platform/win32/kernel32/debug_output.h"
#  include "tbxutl/platform/win32/kernel32/locale.h"
#  include "tbxutl/platform/win32/user32/message_box.h"
#  include "tbxutl/platform/win32/kernel32/modules.h"
#  include "tbxutl/platform/win32/kernel32/native_path.h"
#  include "tbxutl/platform/win32/kernel32/resources.h"
#  include "tbxutl/platform/win32/kernel32/resources/resource_script.h"
#  include "tbxutl/platform/win32/kernel32/resources/script_preprocessor.h"
#  include "tbxutl/platform/win32/kernel32/code_page.h"
#  include "tbxutl/platform/win32/kernel32/char_conversion.h"
#  include "tbxutl/platform/win32/kernel32/lstr.h"
#  include "tbxutl/platform/win32/user32/char_string.h"
#  include "tbxutl/platform/win32/msvcrt/mbstring.h"
#  include "tbxutl/platform/win32/advapi32/registry.h"
#endif
