# tbxutl.dll: plain functions are exported under their undecorated names by
# the .def file, classes by __declspec(dllexport).
function(tbxutl_windows_dll target def_file)
  set_target_properties(${target} PROPERTIES PREFIX "" IMPORT_PREFIX "lib")
  target_sources(${target} PRIVATE ${def_file})
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${def_file})

  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    # On i686 the compiler names a __stdcall function _Name@N. The DLL must
    # export plain Name (stdcall fix-up matches the two), but callers compiled
    # against our headers reference _Name@N, so the import library is rebuilt
    # from the DLL's decorated symbols after the link.
    set(exports_def ${CMAKE_CURRENT_BINARY_DIR}/${target}-exports.def)
    target_link_options(${target} PRIVATE
      -Wl,--enable-stdcall-fixup -Wl,--output-def,${exports_def})
    add_custom_command(TARGET ${target} POST_BUILD
      COMMAND ${CMAKE_COMMAND}
        -DDLL=$<TARGET_FILE:${target}>
        -DEXPORTS_DEF=${exports_def}
        -DIMPORT_LIB=$<TARGET_LINKER_FILE:${target}>
        -DNM=${CMAKE_NM}
        -DDLLTOOL=${CMAKE_DLLTOOL}
        -P ${PROJECT_SOURCE_DIR}/cmake/StdcallImportLib.cmake
      VERBATIM)
  endif()
endfunction()
