# Rebuilds an i686 import library so that _Name@N references bind to the
# undecorated export Name. Run with cmake -P; inputs: DLL, EXPORTS_DEF (the
# linker's --output-def), IMPORT_LIB, NM, DLLTOOL.
execute_process(COMMAND ${NM} -g --defined-only ${DLL}
  OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" symbol_lines "${symbols}")
set(decorated)
foreach(line IN LISTS symbol_lines)
  if(line MATCHES " T _([A-Za-z0-9_]+)@([0-9]+)$")
    set(decorated_${CMAKE_MATCH_1} "${CMAKE_MATCH_1}@${CMAKE_MATCH_2}")
  endif()
endforeach()

file(STRINGS ${EXPORTS_DEF} def_lines)
set(out "EXPORTS\n")
foreach(line IN LISTS def_lines)
  if(line MATCHES "^[ \t]+([A-Za-z0-9_@?$]+)( = [^ ]+)?(.*)$")
    set(name ${CMAKE_MATCH_1})
    set(rest "${CMAKE_MATCH_3}")
    if(DEFINED decorated_${name})
      set(name ${decorated_${name}})
    endif()
    string(APPEND out "    ${name}${rest}\n")
  endif()
endforeach()
set(import_def ${EXPORTS_DEF}.import)
file(WRITE ${import_def} "${out}")
get_filename_component(dll_name ${DLL} NAME)
execute_process(COMMAND ${DLLTOOL} --kill-at --input-def ${import_def}
  --dllname ${dll_name} --output-lib ${IMPORT_LIB} COMMAND_ERROR_IS_FATAL ANY)
