# Writes a resource script with its #include "..." files written out in its
# place, so that the script can be copied anywhere on its own:
#   cmake -DINPUT=in.rc -DOUTPUT=out.rc [-DCPP_OUTPUT=out.cpp] -P FlattenResourceScript.cmake
# A file that says "#pragma once" is written out once. With CPP_OUTPUT the
# result is also written as a C++ source that holds it as
# tbx::win32::kLibraryResourceScript (the library's built-in texts).
cmake_minimum_required(VERSION 3.25)

set(include_regex "(^|\n)[ \t]*#[ \t]*include[ \t]*\"([^\"\n]+)\"[^\n]*")
set(once_regex "(^|\n)[ \t]*#[ \t]*pragma[ \t]+once[^\n]*")
set_property(GLOBAL PROPERTY flatten_once_files "")

function(flatten_file path depth out_var)
  if(depth GREATER 32)
    message(FATAL_ERROR "#include files nest too deeply at ${path}")
  endif()
  get_filename_component(path "${path}" ABSOLUTE)
  get_property(once_files GLOBAL PROPERTY flatten_once_files)
  if(path IN_LIST once_files)
    set(${out_var} "" PARENT_SCOPE)
    return()
  endif()
  if(NOT EXISTS "${path}")
    message(FATAL_ERROR "cannot open the include file ${path}")
  endif()
  file(READ "${path}" text)
  if(text MATCHES "${once_regex}")
    set_property(GLOBAL APPEND PROPERTY flatten_once_files "${path}")
    string(REGEX REPLACE "${once_regex}" "\\1" text "${text}")
  endif()
  get_filename_component(folder "${path}" DIRECTORY)
  set(result "")
  while(TRUE)
    string(REGEX MATCH "${include_regex}" match "${text}")
    if(match STREQUAL "")
      break()
    endif()
    set(name "${CMAKE_MATCH_2}")
    set(lead "${CMAKE_MATCH_1}")
    string(FIND "${text}" "${match}" at)
    string(LENGTH "${match}" match_length)
    string(SUBSTRING "${text}" 0 ${at} before)
    math(EXPR after_at "${at} + ${match_length}")
    string(SUBSTRING "${text}" ${after_at} -1 text)
    math(EXPR next_depth "${depth} + 1")
    flatten_file("${folder}/${name}" ${next_depth} included)
    string(APPEND result "${before}${lead}${included}")
  endwhile()
  string(APPEND result "${text}")
  set(${out_var} "${result}" PARENT_SCOPE)
endfunction()

flatten_file("${INPUT}" 0 flattened)
file(WRITE "${OUTPUT}" "${flattened}")

if(CPP_OUTPUT)
  file(READ "${OUTPUT}" hex HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
  get_filename_component(name "${INPUT}" NAME)
  file(WRITE "${CPP_OUTPUT}"
    "// Generated from ${name} by FlattenResourceScript.cmake: do not edit.\n"
    "#include <cstddef>\n\n"
    "namespace tbx::win32 {\n\n"
    "extern const char kLibraryResourceScriptName[];\n"
    "extern const unsigned char kLibraryResourceScript[];\n"
    "extern const std::size_t kLibraryResourceScriptSize;\n\n"
    "const char kLibraryResourceScriptName[] = \"${name} (built in)\";\n"
    "const unsigned char kLibraryResourceScript[] = {${bytes}};\n"
    "const std::size_t kLibraryResourceScriptSize = sizeof(kLibraryResourceScript);\n\n"
    "}  // namespace tbx::win32\n")
endif()
