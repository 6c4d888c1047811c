#pragma once
// Windows paths to native Linux paths: both "\" and "/" separate; a drive
// prefix "X:" maps through TBXUTL_DRIVES ("C=/srv/c;D=/mnt/d"), an unmapped
// letter to the root "/". UNC paths ("\\server\share") reach no file.

#include <optional>
#include <string>

namespace tbx::detail {

// The native path, or nothing (ERROR_BAD_NETPATH) for a UNC path.
std::optional<std::string> NativePath(const char* path);

// The root that drive letter maps to ("/" when unmapped), without a
// trailing slash except for "/" itself.
std::string DriveRoot(char letter);

// The Win32 error code for an errno value of a file operation on path.
unsigned long Win32ErrorFromErrno(int error, const std::string& nativePath);

}  // namespace tbx::detail
