#pragma once
// Export markers of the library.
//
// TBXUTL_API marks exported classes and C++ functions. TBXUTL_FUNC marks the
// plain functions that applications call by name: on Windows the .def file
// exports those under their undecorated names, so the library itself does
// not mark them for export (that would also export the decorated i686 name).

#if defined(_WIN32)
#  if defined(TBXUTL_BUILDING)
#    define TBXUTL_API __declspec(dllexport)
#    define TBXUTL_FUNC
#  else
#    define TBXUTL_API __declspec(dllimport)
#    define TBXUTL_FUNC __declspec(dllimport)
#  endif
#else
#  define TBXUTL_API __attribute__((visibility("default")))
#  define TBXUTL_FUNC __attribute__((visibility("default")))
#endif
