#include "tbxutl/platform/win32/kernel32/win32_error_internal.h"

#include <sys/stat.h>

#include <cerrno>

#include "tbxutl/platform/windows.h"

namespace tbx::detail {

unsigned long Win32ErrorFromErrno(int error, const std::string& nativePath) {
  switch (error) {
    case 0: return ERROR_SUCCESS;
    case ENOENT: {
      // Windows tells a missing file from a missing folder on its way.
      std::size_t slash = nativePath.find_last_of('/');
      if (slash == std::string::npos || slash == 0) return ERROR_FILE_NOT_FOUND;
      struct stat st {};
      std::string parent = nativePath.substr(0, slash);
      return stat(parent.c_str(), &st) == 0 && S_ISDIR(st.st_mode) ? ERROR_FILE_NOT_FOUND
                                                                   : ERROR_PATH_NOT_FOUND;
    }
    case ENOTDIR: return ERROR_PATH_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EISDIR: return ERROR_ACCESS_DENIED;
    case EROFS: return ERROR_WRITE_PROTECT;
    case EEXIST: return ERROR_FILE_EXISTS;
    case ENOTEMPTY: return ERROR_DIR_NOT_EMPTY;
    case ENOSPC:
    case EDQUOT: return ERROR_DISK_FULL;
    case EMFILE:
    case ENFILE: return ERROR_TOO_MANY_OPEN_FILES;
    case ENAMETOOLONG: return ERROR_FILENAME_EXCED_RANGE;
    case EBADF: return ERROR_INVALID_HANDLE;
    case EINVAL: return ERROR_INVALID_PARAMETER;
    case ENOMEM: return ERROR_NOT_ENOUGH_MEMORY;
    case EBUSY: return ERROR_BUSY;
    case EXDEV: return ERROR_NOT_SAME_DEVICE;
    case EIO: return ERROR_GEN_FAILURE;
    default: return ERROR_GEN_FAILURE;
  }
}

}  // namespace tbx::detail
