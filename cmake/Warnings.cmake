# Warnings as errors for our own targets only (not for GoogleTest built
# from source on the Windows targets).
add_library(tbxutl_warnings INTERFACE)
target_compile_options(tbxutl_warnings INTERFACE -Wall -Wextra -Werror)

# GCC 12 reports a false -Wrestrict in libstdc++'s string concatenation
# ("x" + std::string) at -O2 and above (GCC bug 105329).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12
   AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(tbxutl_warnings INTERFACE -Wno-restrict)
endif()
