# The -posix compilers: the default win32 thread model of Debian's mingw-w64
# has no std::thread or std::mutex. The runtime (libgcc, libstdc++,
# winpthread) is linked statically so the DLL and the programs need no DLLs
# beyond the system's.
set(CMAKE_C_COMPILER ${TBXUTL_MINGW_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${TBXUTL_MINGW_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER ${TBXUTL_MINGW_TRIPLET}-windres)
set(CMAKE_NM ${TBXUTL_MINGW_TRIPLET}-nm)
set(CMAKE_DLLTOOL ${TBXUTL_MINGW_TRIPLET}-dlltool)

set(CMAKE_FIND_ROOT_PATH /usr/${TBXUTL_MINGW_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")

# Test programs run under Wine in a private prefix inside the build folder.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../wine-run.sh)
