#pragma once
// Umbrella header: every public header of the library.

#include "tbxutl/export.h"
#include "tbxutl/version.h"
#include "tbxutl/platform/windows.h"
#include "tbxutl/platform/mbstring.h"

#include "tbxutl/frame/app_callbacks.h"
#include "tbxutl/frame/fixed_strings.h"
#include "tbxutl/frame/library_version.h"
