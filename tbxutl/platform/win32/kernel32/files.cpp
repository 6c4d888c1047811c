#include "tbxutl/platform/win32/kernel32/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <mutex>
#include <string>
#include <vector>

#include "tbxutl/platform/win32/kernel32/handles_internal.h"
#include "tbxutl/platform/win32/kernel32/native_path.h"
#include "tbxutl/platform/win32/kernel32/win32_error_internal.h"

namespace tbx::detail {
namespace {

constexpr DWORD kReadRights = GENERIC_READ | GENERIC_ALL;
constexpr DWORD kWriteRights = GENERIC_WRITE | GENERIC_ALL;

class FileObject;

// Every open file handle of the process, for the sharing checks and the
// byte-range locks that Windows applies between handles.
struct OpenFiles {
  std::mutex mutex;
  std::vector<FileObject*> files;
  struct Lock {
    dev_t dev;
    ino_t ino;
    const FileObject* owner;
    ULONGLONG offset;
    ULONGLONG length;
  };
  std::vector<Lock> locks;
};

OpenFiles& Registry() {
  static OpenFiles* registry = new OpenFiles;
  return *registry;
}

class FileObject : public KernelObject {
 public:
  FileObject(int fd, DWORD access, DWORD share, const struct stat& st, std::string path, bool deleteOnClose)
      : fd(fd), access(access), share(share), dev(st.st_dev), ino(st.st_ino), path(std::move(path)),
        deleteOnClose(deleteOnClose) {}

  ~FileObject() override {
    {
      OpenFiles& registry = Registry();
      std::lock_guard lock(registry.mutex);
      std::erase(registry.files, this);
      std::erase_if(registry.locks, [this](const OpenFiles::Lock& l) { return l.owner == this; });
    }
    if (deleteOnClose) unlink(path.c_str());
    close(fd);
  }

  bool CanRead() const { return (access & kReadRights) != 0; }
  bool CanWrite() const { return (access & kWriteRights) != 0; }

  const int fd;
  const DWORD access;
  const DWORD share;
  const dev_t dev;
  const ino_t ino;
  const std::string path;
  const bool deleteOnClose;
};

// Whether a new handle with access and share may join the open handles of
// the file; the caller holds the registry's lock.
bool SharingAllows(const OpenFiles& registry, const struct stat& st, DWORD access, DWORD share) {
  bool wantsRead = (access & kReadRights) != 0;
  bool wantsWrite = (access & kWriteRights) != 0;
  bool wantsDelete = (access & (DELETE | GENERIC_ALL)) != 0;
  for (const FileObject* other : registry.files) {
    if (other->dev != st.st_dev || other->ino != st.st_ino) continue;
    bool otherReads = other->CanRead();
    bool otherWrites = other->CanWrite();
    bool otherDeletes = (other->access & (DELETE | GENERIC_ALL)) != 0;
    if ((wantsRead && !(other->share & FILE_SHARE_READ)) ||
        (wantsWrite && !(other->share & FILE_SHARE_WRITE)) ||
        (wantsDelete && !(other->share & FILE_SHARE_DELETE)) ||
        (otherReads && !(share & FILE_SHARE_READ)) || (otherWrites && !(share & FILE_SHARE_WRITE)) ||
        (otherDeletes && !(share & FILE_SHARE_DELETE))) {
      return false;
    }
  }
  return true;
}

ULONGLONG MakeQword(DWORD low, DWORD high) { return (static_cast<ULONGLONG>(high) << 32) | low; }

BOOL Fail(DWORD error) {
  SetLastError(error);
  return FALSE;
}

HANDLE OpenFile(const char* fileName, DWORD access, DWORD share, DWORD disposition, DWORD flags) {
  if (fileName == nullptr || *fileName == '\0') {
    SetLastError(fileName ? ERROR_PATH_NOT_FOUND : ERROR_INVALID_PARAMETER);
    return INVALID_HANDLE_VALUE;
  }
  if (disposition < CREATE_NEW || disposition > TRUNCATE_EXISTING) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return INVALID_HANDLE_VALUE;
  }
  std::optional<std::string> native = tbx::win32::ToNativePath(fileName);
  if (!native) {
    SetLastError(ERROR_BAD_NETPATH);
    return INVALID_HANDLE_VALUE;
  }
  const std::string& path = *native;
  bool write = (access & kWriteRights) != 0 || disposition == TRUNCATE_EXISTING;
  bool read = (access & kReadRights) != 0;

  struct stat existing {};
  bool exists = stat(path.c_str(), &existing) == 0;
  if (exists && S_ISDIR(existing.st_mode)) {
    SetLastError(ERROR_ACCESS_DENIED);  // folders open only with backup semantics, unsupported here
    return INVALID_HANDLE_VALUE;
  }
  if (exists && disposition == CREATE_NEW) {
    SetLastError(ERROR_FILE_EXISTS);
    return INVALID_HANDLE_VALUE;
  }
  if (!exists && (disposition == OPEN_EXISTING || disposition == TRUNCATE_EXISTING)) {
    SetLastError(Win32ErrorFromErrno(ENOENT, path));
    return INVALID_HANDLE_VALUE;
  }
  // The read-only attribute is the owner's write bit; root is no exception.
  if (exists && (existing.st_mode & S_IWUSR) == 0 && (write || disposition == CREATE_ALWAYS)) {
    SetLastError(ERROR_ACCESS_DENIED);
    return INVALID_HANDLE_VALUE;
  }

  int mode = read && write ? O_RDWR : write ? O_WRONLY : O_RDONLY;
  if (!read && !write) mode = O_RDONLY;  // attribute-only handles still need a descriptor
  int oflags = mode | O_CLOEXEC;
  if (disposition == CREATE_NEW) oflags |= O_CREAT | O_EXCL;
  if (disposition == CREATE_ALWAYS || disposition == OPEN_ALWAYS) oflags |= O_CREAT;
  if (disposition == CREATE_ALWAYS && mode == O_RDONLY) oflags = (oflags & ~O_ACCMODE) | O_RDWR;
  mode_t permissions = (flags & FILE_ATTRIBUTE_READONLY) ? 0444 : 0666;

  OpenFiles& registry = Registry();
  std::lock_guard lock(registry.mutex);
  int fd = open(path.c_str(), oflags, permissions);
  if (fd < 0) {
    SetLastError(Win32ErrorFromErrno(errno, path));
    return INVALID_HANDLE_VALUE;
  }
  struct stat st {};
  fstat(fd, &st);
  if (!SharingAllows(registry, st, access, share)) {
    close(fd);
    SetLastError(ERROR_SHARING_VIOLATION);
    return INVALID_HANDLE_VALUE;
  }
  // Truncate only once sharing has allowed the open: a refused open
  // leaves the file as it was.
  if (exists && (disposition == CREATE_ALWAYS || disposition == TRUNCATE_EXISTING)) {
    if (ftruncate(fd, 0) != 0) {
      int error = errno;
      close(fd);
      SetLastError(Win32ErrorFromErrno(error, path));
      return INVALID_HANDLE_VALUE;
    }
  }
  auto file = std::make_shared<FileObject>(fd, access, share, st, path,
                                           (flags & FILE_FLAG_DELETE_ON_CLOSE) != 0);
  registry.files.push_back(file.get());
  HANDLE handle = AddHandle(std::move(file));
  bool existedBefore = exists && (disposition == CREATE_ALWAYS || disposition == OPEN_ALWAYS);
  SetLastError(existedBefore ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
  return handle;
}

}  // namespace
}  // namespace tbx::detail

using tbx::detail::FileObject;
using tbx::detail::Fail;
using tbx::detail::GetHandleObject;
using tbx::detail::MakeQword;

extern "C" HANDLE WINAPI CreateFileA(LPCSTR lpFileName, DWORD dwDesiredAccess, DWORD dwShareMode,
                                     LPSECURITY_ATTRIBUTES, DWORD dwCreationDisposition,
                                     DWORD dwFlagsAndAttributes, HANDLE) {
  return tbx::detail::OpenFile(lpFileName, dwDesiredAccess, dwShareMode, dwCreationDisposition,
                               dwFlagsAndAttributes);
}

extern "C" BOOL WINAPI ReadFile(HANDLE hFile, LPVOID lpBuffer, DWORD nNumberOfBytesToRead,
                                LPDWORD lpNumberOfBytesRead, LPOVERLAPPED) {
  if (lpNumberOfBytesRead) *lpNumberOfBytesRead = 0;
  auto file = GetHandleObject<FileObject>(hFile);
  if (!file) return FALSE;
  if (!file->CanRead()) return Fail(ERROR_ACCESS_DENIED);
  if (lpBuffer == nullptr && nNumberOfBytesToRead > 0) return Fail(ERROR_NOACCESS);
  DWORD total = 0;
  while (total < nNumberOfBytesToRead) {
    ssize_t n = read(file->fd, static_cast<char*>(lpBuffer) + total, nNumberOfBytesToRead - total);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      if (lpNumberOfBytesRead) *lpNumberOfBytesRead = total;
      return Fail(tbx::detail::Win32ErrorFromErrno(errno, file->path));
    }
    if (n == 0) break;  // end of file: success with fewer bytes
    total += static_cast<DWORD>(n);
  }
  if (lpNumberOfBytesRead) *lpNumberOfBytesRead = total;
  return TRUE;
}

extern "C" BOOL WINAPI WriteFile(HANDLE hFile, LPCVOID lpBuffer, DWORD nNumberOfBytesToWrite,
                                 LPDWORD lpNumberOfBytesWritten, LPOVERLAPPED) {
  if (lpNumberOfBytesWritten) *lpNumberOfBytesWritten = 0;
  auto file = GetHandleObject<FileObject>(hFile);
  if (!file) return FALSE;
  if (!file->CanWrite()) return Fail(ERROR_ACCESS_DENIED);
  if (lpBuffer == nullptr && nNumberOfBytesToWrite > 0) return Fail(ERROR_NOACCESS);
  DWORD total = 0;
  while (total < nNumberOfBytesToWrite) {
    ssize_t n = write(file->fd, static_cast<const char*>(lpBuffer) + total, nNumberOfBytesToWrite - total);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      if (lpNumberOfBytesWritten) *lpNumberOfBytesWritten = total;
      return Fail(n == 0 ? ERROR_DISK_FULL : tbx::detail::Win32ErrorFromErrno(errno, file->path));
    }
    total += static_cast<DWORD>(n);
  }
  if (lpNumberOfBytesWritten) *lpNumberOfBytesWritten = total;
  return TRUE;
}

extern "C" BOOL WINAPI SetFilePointerEx(HANDLE hFile, LARGE_INTEGER liDistanceToMove,
                                        PLARGE_INTEGER lpNewFilePointer, DWORD dwMoveMethod) {
  auto file = GetHandleObject<FileObject>(hFile);
  if (!file) return FALSE;
  if (dwMoveMethod > FILE_END) return Fail(ERROR_INVALID_PARAMETER);
  off_t base = 0;
  if (dwMoveMethod == FILE_CURRENT) base = lseek(file->fd, 0, SEEK_CUR);
  if (dwMoveMethod == FILE_END) {
    struct stat st {};
    if (fstat(file->fd, &st) != 0) return Fail(tbx::detail::Win32ErrorFromErrno(errno, file->path));
    base = st.st_size;
  }
  LONGLONG target;
  if (__builtin_add_overflow(static_cast<LONGLONG>(base), liDistanceToMove.QuadPart, &target) || target < 0) {
    return Fail(ERROR_NEGATIVE_SEEK);
  }
  if (lseek(file->fd, static_cast<off_t>(target), SEEK_SET) < 0) {
    return Fail(tbx::detail::Win32ErrorFromErrno(errno, file->path));
  }
  if (lpNewFilePointer) lpNewFilePointer->QuadPart = target;
  return TRUE;
}

extern "C" DWORD WINAPI SetFilePointer(HANDLE hFile, LONG lDistanceToMove, LONG* lpDistanceToMoveHigh,
                                       DWORD dwMoveMethod) {
  LARGE_INTEGER distance;
  if (lpDistanceToMoveHigh) {
    distance.u.LowPart = static_cast<DWORD>(lDistanceToMove);
    distance.u.HighPart = *lpDistanceToMoveHigh;
  } else {
    distance.QuadPart = lDistanceToMove;
  }
  LARGE_INTEGER position;
  if (!SetFilePointerEx(hFile, distance, &position, dwMoveMethod)) return INVALID_SET_FILE_POINTER;
  if (lpDistanceToMoveHigh) *lpDistanceToMoveHigh = position.u.HighPart;
  SetLastError(ERROR_SUCCESS);  // tells a low part of 0xFFFFFFFF from a failure
  return position.u.LowPart;
}

extern "C" BOOL WINAPI GetFileSizeEx(HANDLE hFile, PLARGE_INTEGER lpFileSize) {
  auto file = GetHandleObject<FileObject>(hFile);
  if (!file) return FALSE;
  struct stat st {};
  if (fstat(file->fd, &st) != 0) return Fail(tbx::detail::Win32ErrorFromErrno(errno, file->path));
  if (lpFileSize) lpFileSize->QuadPart = st.st_size;
  return TRUE;
}

extern "C" DWORD WINAPI GetFileSize(HANDLE hFile, LPDWORD lpFileSizeHigh) {
  LARGE_INTEGER size;
  if (!GetFileSizeEx(hFile, &size)) return INVALID_FILE_SIZE;
  if (lpFileSizeHigh) *lpFileSizeHigh = static_cast<DWORD>(size.u.HighPart);
  SetLastError(ERROR_SUCCESS);
  return size.u.LowPart;
}

extern "C" BOOL WINAPI SetEndOfFile(HANDLE hFile) {
  auto file = GetHandleObject<FileObject>(hFile);
  if (!file) return FALSE;
  if (!file->CanWrite()) return Fail(ERROR_ACCESS_DENIED);
  off_t position = lseek(file->fd, 0, SEEK_CUR);
  if (position < 0 || ftruncate(file->fd, position) != 0) {
    return Fail(tbx::detail::Win32ErrorFromErrno(errno, file->path));
  }
  return TRUE;
}

extern "C" BOOL WINAPI FlushFileBuffers(HANDLE hFile) {
  auto file = GetHandleObject<FileObject>(hFile);
  if (!file) return FALSE;
  if (!file->CanWrite()) return Fail(ERROR_ACCESS_DENIED);
  if (fsync(file->fd) != 0 && errno != EINVAL) return Fail(tbx::detail::Win32ErrorFromErrno(errno, file->path));
  return TRUE;
}

extern "C" BOOL WINAPI LockFile(HANDLE hFile, DWORD dwFileOffsetLow, DWORD dwFileOffsetHigh,
                                DWORD nNumberOfBytesToLockLow, DWORD nNumberOfBytesToLockHigh) {
  auto file = GetHandleObject<FileObject>(hFile);
  if (!file) return FALSE;
  ULONGLONG offset = MakeQword(dwFileOffsetLow, dwFileOffsetHigh);
  ULONGLONG length = MakeQword(nNumberOfBytesToLockLow, nNumberOfBytesToLockHigh);
  if (length == 0) return Fail(ERROR_INVALID_PARAMETER);
  auto& registry = tbx::detail::Registry();
  std::lock_guard lock(registry.mutex);
  for (const auto& l : registry.locks) {
    bool sameFile = l.dev == file->dev && l.ino == file->ino;
    bool overlaps = offset < l.offset + l.length && l.offset < offset + length;
    if (sameFile && overlaps) return Fail(ERROR_LOCK_VIOLATION);
  }
  registry.locks.push_back({file->dev, file->ino, file.get(), offset, length});
  return TRUE;
}

extern "C" BOOL WINAPI UnlockFile(HANDLE hFile, DWORD dwFileOffsetLow, DWORD dwFileOffsetHigh,
                                  DWORD nNumberOfBytesToUnlockLow, DWORD nNumberOfBytesToUnlockHigh) {
  auto file = GetHandleObject<FileObject>(hFile);
  if (!file) return FALSE;
  ULONGLONG offset = MakeQword(dwFileOffsetLow, dwFileOffsetHigh);
  ULONGLONG length = MakeQword(nNumberOfBytesToUnlockLow, nNumberOfBytesToUnlockHigh);
  auto& registry = tbx::detail::Registry();
  std::lock_guard lock(registry.mutex);
  // Only the exact range this handle locked can be unlocked.
  auto it = std::find_if(registry.locks.begin(), registry.locks.end(), [&](const auto& l) {
    return l.owner == file.get() && l.offset == offset && l.length == length;
  });
  if (it == registry.locks.end()) return Fail(ERROR_NOT_LOCKED);
  registry.locks.erase(it);
  return TRUE;
}
