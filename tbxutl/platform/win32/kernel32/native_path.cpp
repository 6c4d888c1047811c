#include <sys/stat.h>

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <string_view>

#include "tbxutl/platform/win32/kernel32/native_path_internal.h"
#include "tbxutl/platform/windows.h"

namespace tbx::detail {

std::string DriveRoot(char letter) {
  letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  const char* table = std::getenv("TBXUTL_DRIVES");
  std::string_view rest = table ? table : "";
  while (!rest.empty()) {
    std::size_t end = rest.find(';');
    std::string_view entry = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    if (entry.size() >= 3 && entry[1] == '=' &&
        std::toupper(static_cast<unsigned char>(entry[0])) == letter) {
      std::string root(entry.substr(2));
      while (root.size() > 1 && root.back() == '/') root.pop_back();
      return root;
    }
  }
  return "/";
}

std::optional<std::string> NativePath(const char* path) {
  std::string p(path ? path : "");
  for (char& c : p) {
    if (c == '\\') c = '/';
  }
  if (p.size() >= 2 && p[0] == '/' && p[1] == '/') return std::nullopt;
  if (p.size() >= 2 && std::isalpha(static_cast<unsigned char>(p[0])) && p[1] == ':') {
    std::string root = DriveRoot(p[0]);
    std::string tail = p.substr(2);
    if (!tail.empty() && tail[0] != '/') tail.insert(tail.begin(), '/');
    if (root == "/") return tail.empty() ? root : tail;
    return root + tail;
  }
  return p;
}

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
