# GoogleTest: Debian's prebuilt libraries on Linux; on the Windows targets the
# sources that Debian's googletest package ships, built with the cross compiler.
if(CMAKE_CROSSCOMPILING)
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  set(BUILD_GMOCK ON CACHE BOOL "" FORCE)
  add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
else()
  find_package(GTest REQUIRED)
endif()

if(WIN32)
  set(TBXUTL_WINEPREFIX ${PROJECT_BINARY_DIR}/wineprefix)
endif()

# Environment every test runs in.
function(tbxutl_test_environment test_name)
  set(env "TBXUTL_DEBUG_OUTPUT=0")
  if(WIN32)
    list(APPEND env "TBXUTL_WINEPREFIX=${TBXUTL_WINEPREFIX}")
  endif()
  set_tests_properties(${test_name} PROPERTIES ENVIRONMENT "${env}")
endfunction()

# A GoogleTest program linked against the shared library, registered with
# CTest as one test named after the program.
function(tbxutl_add_test_program name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE tbxutl::tbxutl tbxutl_warnings GTest::gtest_main GTest::gmock)
  add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
  tbxutl_test_environment(${name})
endfunction()
