#pragma once
// The registry functions of the ANSI interface. Keys live in the SQLite
// store described in registry_store_internal.h; results are Win32 status
// codes and the functions leave the thread's last error alone, as Windows
// does.
//
// Names: key name components are separated by "\" (doubled and trailing
// separators are skipped; a leading one is ERROR_BAD_PATHNAME), at most 255
// characters each; value names are at most 16,383 characters; both compare
// case-blind and keep the case they were created with. Data is stored as
// the bytes and size given; strings stored without their terminator come
// back terminated when the caller's buffer has room for it, with the stored
// size reported.
//
// Access: a handle can do what it was opened for (KEY_QUERY_VALUE to read
// and list values and to query the key, KEY_SET_VALUE to write and delete
// values, KEY_ENUMERATE_SUB_KEYS to list subkeys); creating a subkey and
// deleting a key need no right on the handle, as on Windows. Generic rights
// map to the key rights; the KEY_WOW64_* flags are accepted and ignored. The
// predefined roots have every right.

#include "tbxutl/export.h"
#include "tbxutl/platform/win32/kernel32/files.h"
#include "tbxutl/platform/win32/win32_types.h"

typedef LONG LSTATUS;
typedef HKEY* PHKEY;
typedef DWORD ACCESS_MASK;
typedef ACCESS_MASK REGSAM;

#define HKEY_CLASSES_ROOT (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000000))))
#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000001))))
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000002))))
#define HKEY_USERS (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000003))))
#define HKEY_PERFORMANCE_DATA (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000004))))
#define HKEY_CURRENT_CONFIG (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000005))))

#define REG_NONE 0
#define REG_SZ 1
#define REG_EXPAND_SZ 2
#define REG_BINARY 3
#define REG_DWORD 4
#define REG_DWORD_LITTLE_ENDIAN 4
#define REG_DWORD_BIG_ENDIAN 5
#define REG_LINK 6
#define REG_MULTI_SZ 7
#define REG_QWORD 11
#define REG_QWORD_LITTLE_ENDIAN 11

// Standard rights (also used by other object types).
#ifndef READ_CONTROL
#  define READ_CONTROL 0x00020000UL
#endif
#ifndef WRITE_DAC
#  define WRITE_DAC 0x00040000UL
#endif
#ifndef WRITE_OWNER
#  define WRITE_OWNER 0x00080000UL
#endif
#ifndef SYNCHRONIZE
#  define SYNCHRONIZE 0x00100000UL
#endif
#ifndef STANDARD_RIGHTS_READ
#  define STANDARD_RIGHTS_READ READ_CONTROL
#endif
#ifndef STANDARD_RIGHTS_WRITE
#  define STANDARD_RIGHTS_WRITE READ_CONTROL
#endif
#ifndef STANDARD_RIGHTS_EXECUTE
#  define STANDARD_RIGHTS_EXECUTE READ_CONTROL
#endif
#ifndef STANDARD_RIGHTS_ALL
#  define STANDARD_RIGHTS_ALL 0x001F0000UL
#endif
#ifndef MAXIMUM_ALLOWED
#  define MAXIMUM_ALLOWED 0x02000000UL
#endif

#define KEY_QUERY_VALUE 0x0001UL
#define KEY_SET_VALUE 0x0002UL
#define KEY_CREATE_SUB_KEY 0x0004UL
#define KEY_ENUMERATE_SUB_KEYS 0x0008UL
#define KEY_NOTIFY 0x0010UL
#define KEY_CREATE_LINK 0x0020UL
#define KEY_WOW64_64KEY 0x0100UL
#define KEY_WOW64_32KEY 0x0200UL
#define KEY_WOW64_RES 0x0300UL
#define KEY_READ 0x00020019UL
#define KEY_WRITE 0x00020006UL
#define KEY_EXECUTE 0x00020019UL
#define KEY_ALL_ACCESS 0x000F003FUL

#define REG_OPTION_RESERVED 0x00000000UL
#define REG_OPTION_NON_VOLATILE 0x00000000UL
#define REG_OPTION_VOLATILE 0x00000001UL
#define REG_OPTION_CREATE_LINK 0x00000002UL
#define REG_OPTION_BACKUP_RESTORE 0x00000004UL
#define REG_OPTION_OPEN_LINK 0x00000008UL

#define REG_CREATED_NEW_KEY 0x00000001UL
#define REG_OPENED_EXISTING_KEY 0x00000002UL

extern "C" {
TBXUTL_FUNC LSTATUS WINAPI RegOpenKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD ulOptions, REGSAM samDesired,
                                         PHKEY phkResult);
TBXUTL_FUNC LSTATUS WINAPI RegOpenKeyA(HKEY hKey, LPCSTR lpSubKey, PHKEY phkResult);
TBXUTL_FUNC LSTATUS WINAPI RegCreateKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD Reserved, LPSTR lpClass,
                                           DWORD dwOptions, REGSAM samDesired,
                                           const LPSECURITY_ATTRIBUTES lpSecurityAttributes, PHKEY phkResult,
                                           LPDWORD lpdwDisposition);
TBXUTL_FUNC LSTATUS WINAPI RegCreateKeyA(HKEY hKey, LPCSTR lpSubKey, PHKEY phkResult);
TBXUTL_FUNC LSTATUS WINAPI RegCloseKey(HKEY hKey);
TBXUTL_FUNC LSTATUS WINAPI RegQueryValueExA(HKEY hKey, LPCSTR lpValueName, LPDWORD lpReserved, LPDWORD lpType,
                                            LPBYTE lpData, LPDWORD lpcbData);
TBXUTL_FUNC LSTATUS WINAPI RegSetValueExA(HKEY hKey, LPCSTR lpValueName, DWORD Reserved, DWORD dwType,
                                          const BYTE* lpData, DWORD cbData);
TBXUTL_FUNC LSTATUS WINAPI RegEnumKeyExA(HKEY hKey, DWORD dwIndex, LPSTR lpName, LPDWORD lpcchName,
                                         LPDWORD lpReserved, LPSTR lpClass, LPDWORD lpcchClass,
                                         PFILETIME lpftLastWriteTime);
TBXUTL_FUNC LSTATUS WINAPI RegEnumKeyA(HKEY hKey, DWORD dwIndex, LPSTR lpName, DWORD cchName);
TBXUTL_FUNC LSTATUS WINAPI RegEnumValueA(HKEY hKey, DWORD dwIndex, LPSTR lpValueName, LPDWORD lpcchValueName,
                                         LPDWORD lpReserved, LPDWORD lpType, LPBYTE lpData, LPDWORD lpcbData);
TBXUTL_FUNC LSTATUS WINAPI RegQueryInfoKeyA(HKEY hKey, LPSTR lpClass, LPDWORD lpcchClass, LPDWORD lpReserved,
                                            LPDWORD lpcSubKeys, LPDWORD lpcbMaxSubKeyLen, LPDWORD lpcbMaxClassLen,
                                            LPDWORD lpcValues, LPDWORD lpcbMaxValueNameLen,
                                            LPDWORD lpcbMaxValueLen, LPDWORD lpcbSecurityDescriptor,
                                            PFILETIME lpftLastWriteTime);
TBXUTL_FUNC LSTATUS WINAPI RegDeleteValueA(HKEY hKey, LPCSTR lpValueName);
TBXUTL_FUNC LSTATUS WINAPI RegDeleteKeyA(HKEY hKey, LPCSTR lpSubKey);
TBXUTL_FUNC LSTATUS WINAPI RegFlushKey(HKEY hKey);
}

#define RegOpenKeyEx RegOpenKeyExA
#define RegOpenKey RegOpenKeyA
#define RegCreateKeyEx RegCreateKeyExA
#define RegCreateKey RegCreateKeyA
#define RegQueryValueEx RegQueryValueExA
#define RegSetValueEx RegSetValueExA
#define RegEnumKeyEx RegEnumKeyExA
#define RegEnumKey RegEnumKeyA
#define RegEnumValue RegEnumValueA
#define RegQueryInfoKey RegQueryInfoKeyA
#define RegDeleteValue RegDeleteValueA
#define RegDeleteKey RegDeleteKeyA
