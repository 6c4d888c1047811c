#pragma once
// Windows paths to the native paths of this system.

#include <optional>
#include <string>
#include <string_view>

#include "tbxutl/export.h"

namespace tbx::win32 {

// Both "\" and "/" separate; "X:" maps through the drive table in
// TBXUTL_DRIVES ("C=/srv/c;D=/mnt/d", letters in either case), and a drive
// letter that is not in the table is the root "/". A path that starts with
// a separator is taken as a native absolute path. UNC paths ("\\server\x")
// name no native file: nothing is returned for them.
TBXUTL_API std::optional<std::string> ToNativePath(std::string_view windowsPath);

}  // namespace tbx::win32
