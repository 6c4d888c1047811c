#pragma once
#include "tbxutl/export.h"
#include "tbxutl/version.h"

namespace tbx {

// The version of the library that is loaded, which may be newer than the
// TBXUTL_VERSION_STRING a caller was compiled against.
TBXUTL_API const char* LibraryVersion();

}  // namespace tbx
