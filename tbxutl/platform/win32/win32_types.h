#pragma once
// Win32 base types, handles and constants for the Linux build, with the
// sizes that the 32- and 64-bit Windows ABIs give them (LONG and DWORD are
// 32 bits on both; handles and *_PTR types are pointer-sized).

#include <cstddef>
#include <cstdint>

#define WINAPI
#define CALLBACK
#define APIENTRY

typedef int BOOL;
typedef unsigned char BYTE;
typedef unsigned short WORD;
typedef std::uint32_t DWORD;
typedef std::int32_t LONG;
typedef std::uint32_t ULONG;
typedef std::int64_t LONGLONG;
typedef std::uint64_t ULONGLONG;
typedef unsigned int UINT;
typedef int INT;
typedef char CHAR;
typedef char16_t WCHAR;
typedef std::intptr_t INT_PTR;
typedef std::uintptr_t UINT_PTR;
typedef std::intptr_t LONG_PTR;
typedef std::uintptr_t ULONG_PTR;
typedef ULONG_PTR DWORD_PTR;
typedef ULONG_PTR SIZE_T;
typedef LONG HRESULT;
typedef void* LPVOID;
typedef const void* LPCVOID;
typedef char* LPSTR;
typedef const char* LPCSTR;
typedef WCHAR* LPWSTR;
typedef const WCHAR* LPCWSTR;
typedef BYTE* LPBYTE;
typedef DWORD* LPDWORD;
typedef BOOL* LPBOOL;

typedef void* HANDLE;
#define TBXUTL_DECLARE_HANDLE(name) struct name##__ { int unused; }; typedef struct name##__* name
TBXUTL_DECLARE_HANDLE(HWND);
TBXUTL_DECLARE_HANDLE(HINSTANCE);
TBXUTL_DECLARE_HANDLE(HKEY);
TBXUTL_DECLARE_HANDLE(HMENU);
TBXUTL_DECLARE_HANDLE(HRSRC);
TBXUTL_DECLARE_HANDLE(HBITMAP);
#undef TBXUTL_DECLARE_HANDLE
typedef HINSTANCE HMODULE;
typedef HANDLE HGLOBAL;

typedef struct _FILETIME {
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
} FILETIME, *PFILETIME, *LPFILETIME;

typedef DWORD LCID;
typedef DWORD LCTYPE;
typedef WORD LANGID;

typedef struct _GUID {
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];
} GUID;
typedef GUID IID;
typedef GUID CLSID;

#define TRUE 1
#define FALSE 0
#define MAX_PATH 260
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)))
