#pragma once
// The Win32 error code for an errno value of a file operation.

#include <string>

namespace tbx::detail {

// nativePath tells a missing file (ERROR_FILE_NOT_FOUND) from a missing
// folder on its way (ERROR_PATH_NOT_FOUND), as Windows does.
unsigned long Win32ErrorFromErrno(int error, const std::string& nativePath);

}  // namespace tbx::detail
