#pragma once
// Umbrella header: every public header of the library.

#include "tbxutl/export.h"
#include "tbxutl/version.h"
#include "tbxutl/platform/windows.h"
#include "tbxutl/platform/mbstring.h"
#include "tbxutl/platform/com_error.h"

#include "tbxutl/platform/afx/afx_message_box.h"
#include "tbxutl/platform/afx/carchive.h"
#include "tbxutl/platform/afx/cfile.h"
#include "tbxutl/platform/afx/cobject.h"
#include "tbxutl/platform/afx/cstring.h"
#include "tbxutl/platform/afx/exceptions.h"
#include "tbxutl/platform/afx/module_state.h"
#include "tbxutl/platform/afx/winapp.h"

#include "tbxutl/platform/config.h"
#include "tbxutl/platform/fatal_error.h"
#include "tbxutl/platform/message_box.h"

#include "tbxutl/frame/app_callbacks.h"
#include "tbxutl/frame/fixed_strings.h"
#include "tbxutl/frame/library_version.h"
#include "tbxutl/frame/string_ids.h"

#include "tbxutl/config/media_iter.h"
#include "tbxutl/config/registry.h"
