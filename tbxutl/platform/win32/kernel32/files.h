#pragma once
// File handles: create, read, write, position, size, flush, lock
// (CloseHandle is in handles.h).
// Access and sharing follow Windows: a second handle of the same file is
// refused with ERROR_SHARING_VIOLATION when either side does not share
// what the other asks for. A file without the owner's write bit is
// read-only and cannot be opened for writing.

#include "tbxutl/export.h"
#include "tbxutl/platform/win32/win32_types.h"

#define GENERIC_READ 0x80000000UL
#define GENERIC_WRITE 0x40000000UL
#define GENERIC_EXECUTE 0x20000000UL
#define GENERIC_ALL 0x10000000UL
#define DELETE 0x00010000UL

#define FILE_SHARE_READ 0x00000001UL
#define FILE_SHARE_WRITE 0x00000002UL
#define FILE_SHARE_DELETE 0x00000004UL

#define CREATE_NEW 1
#define CREATE_ALWAYS 2
#define OPEN_EXISTING 3
#define OPEN_ALWAYS 4
#define TRUNCATE_EXISTING 5

#define FILE_ATTRIBUTE_READONLY 0x00000001UL
#define FILE_ATTRIBUTE_HIDDEN 0x00000002UL
#define FILE_ATTRIBUTE_SYSTEM 0x00000004UL
#define FILE_ATTRIBUTE_DIRECTORY 0x00000010UL
#define FILE_ATTRIBUTE_ARCHIVE 0x00000020UL
#define FILE_ATTRIBUTE_NORMAL 0x00000080UL
#define FILE_ATTRIBUTE_TEMPORARY 0x00000100UL
#define FILE_FLAG_WRITE_THROUGH 0x80000000UL
#define FILE_FLAG_RANDOM_ACCESS 0x10000000UL
#define FILE_FLAG_SEQUENTIAL_SCAN 0x08000000UL
#define FILE_FLAG_DELETE_ON_CLOSE 0x04000000UL
#define FILE_FLAG_BACKUP_SEMANTICS 0x02000000UL

#define FILE_BEGIN 0
#define FILE_CURRENT 1
#define FILE_END 2
#define INVALID_SET_FILE_POINTER (static_cast<DWORD>(-1))
#define INVALID_FILE_SIZE (static_cast<DWORD>(0xFFFFFFFF))

typedef union _LARGE_INTEGER {
  struct {
    DWORD LowPart;
    LONG HighPart;
  } u;
  LONGLONG QuadPart;
} LARGE_INTEGER, *PLARGE_INTEGER;

typedef struct _SECURITY_ATTRIBUTES {
  DWORD nLength;
  LPVOID lpSecurityDescriptor;
  BOOL bInheritHandle;
} SECURITY_ATTRIBUTES, *LPSECURITY_ATTRIBUTES;

typedef struct _OVERLAPPED OVERLAPPED, *LPOVERLAPPED;

extern "C" {
TBXUTL_FUNC HANDLE WINAPI CreateFileA(LPCSTR lpFileName, DWORD dwDesiredAccess, DWORD dwShareMode,
                                      LPSECURITY_ATTRIBUTES lpSecurityAttributes,
                                      DWORD dwCreationDisposition, DWORD dwFlagsAndAttributes,
                                      HANDLE hTemplateFile);
TBXUTL_FUNC BOOL WINAPI ReadFile(HANDLE hFile, LPVOID lpBuffer, DWORD nNumberOfBytesToRead,
                                 LPDWORD lpNumberOfBytesRead, LPOVERLAPPED lpOverlapped);
TBXUTL_FUNC BOOL WINAPI WriteFile(HANDLE hFile, LPCVOID lpBuffer, DWORD nNumberOfBytesToWrite,
                                  LPDWORD lpNumberOfBytesWritten, LPOVERLAPPED lpOverlapped);
TBXUTL_FUNC BOOL WINAPI SetFilePointerEx(HANDLE hFile, LARGE_INTEGER liDistanceToMove,
                                         PLARGE_INTEGER lpNewFilePointer, DWORD dwMoveMethod);
TBXUTL_FUNC DWORD WINAPI SetFilePointer(HANDLE hFile, LONG lDistanceToMove, LONG* lpDistanceToMoveHigh,
                                        DWORD dwMoveMethod);
TBXUTL_FUNC BOOL WINAPI GetFileSizeEx(HANDLE hFile, PLARGE_INTEGER lpFileSize);
TBXUTL_FUNC DWORD WINAPI GetFileSize(HANDLE hFile, LPDWORD lpFileSizeHigh);
TBXUTL_FUNC BOOL WINAPI SetEndOfFile(HANDLE hFile);
TBXUTL_FUNC BOOL WINAPI FlushFileBuffers(HANDLE hFile);
TBXUTL_FUNC BOOL WINAPI LockFile(HANDLE hFile, DWORD dwFileOffsetLow, DWORD dwFileOffsetHigh,
                                 DWORD nNumberOfBytesToLockLow, DWORD nNumberOfBytesToLockHigh);
TBXUTL_FUNC BOOL WINAPI UnlockFile(HANDLE hFile, DWORD dwFileOffsetLow, DWORD dwFileOffsetHigh,
                                   DWORD nNumberOfBytesToUnlockLow, DWORD nNumberOfBytesToUnlockHigh);
}
