#pragma once
// Modules: the program, the library itself and resource libraries.
//
// A resource library "X.dll" is on this system the resource script "X.rc"
// in the same folder (read by resources/resource_script.h); only such
// libraries load. Paths take "\" and "/" and drive letters (native_path.h).
// A name without a folder is looked for beside the program, then in the
// current folder; a name without an extension gets ".dll", a trailing "."
// means no extension. The library itself answers to "tbxutl.dll" (so
// GetModuleHandleA("tbxutl.dll") gives its handle on both systems), and its
// own texts are built in. The program has no resources.
//
// Loading the same file again gives the same handle and counts a
// reference; the last FreeLibrary unloads it. LOAD_LIBRARY_AS_DATAFILE and
// LOAD_LIBRARY_AS_IMAGE_RESOURCE give a private copy each time (the handle
// has its low bit 1, or 2, set, as Windows marks them) that neither
// GetModuleHandleA nor GetModuleFileNameA know; a file that is already
// loaded gives its ordinary handle instead.

#include <vector>

#include "tbxutl/export.h"
#include "tbxutl/platform/win32/kernel32/resources/resource_script.h"
#include "tbxutl/platform/win32/win32_types.h"

#ifndef DONT_RESOLVE_DLL_REFERENCES
#  define DONT_RESOLVE_DLL_REFERENCES 0x00000001
#  define LOAD_LIBRARY_AS_DATAFILE 0x00000002
#  define LOAD_WITH_ALTERED_SEARCH_PATH 0x00000008
#  define LOAD_LIBRARY_AS_IMAGE_RESOURCE 0x00000020
#  define LOAD_LIBRARY_AS_DATAFILE_EXCLUSIVE 0x00000040
#endif

extern "C" TBXUTL_FUNC HMODULE WINAPI LoadLibraryA(LPCSTR fileName);
extern "C" TBXUTL_FUNC HMODULE WINAPI LoadLibraryExA(LPCSTR fileName, HANDLE file, DWORD flags);
extern "C" TBXUTL_FUNC BOOL WINAPI FreeLibrary(HMODULE module);
// Null gives the program.
extern "C" TBXUTL_FUNC HMODULE WINAPI GetModuleHandleA(LPCSTR moduleName);
// A name that does not fit is cut to size - 1 characters and a terminator;
// the result is then `size`, with ERROR_INSUFFICIENT_BUFFER.
extern "C" TBXUTL_FUNC DWORD WINAPI GetModuleFileNameA(HMODULE module, LPSTR fileName, DWORD size);

#ifndef LoadLibrary
#  define LoadLibrary LoadLibraryA
#  define LoadLibraryEx LoadLibraryExA
#  define GetModuleHandle GetModuleHandleA
#  define GetModuleFileName GetModuleFileNameA
#endif

namespace tbx::win32 {

// The resources of a loaded module (null is the program), or null with the
// error a resource lookup reports (ERROR_RESOURCE_DATA_NOT_FOUND). They stay
// valid until the module is freed.
TBXUTL_API const std::vector<ScriptResource>* ModuleResources(HMODULE module, DWORD& error);

// Whether `resource` is one of the resources of a loaded module.
bool IsLoadedResource(const void* resource);

}  // namespace tbx::win32
