# Resource scripts (.rc): the library's own texts and the resource libraries.
#
# Windows: windres compiles a script into tbxutl.dll, or into a
# resource-only DLL (no code, no entry point).
# Linux: the library reads scripts itself. Its own texts are embedded into
# libtbxutl.so; a resource library "X.dll" is the script "X.rc", copied with
# its #include files written out in place so that it stands alone.
#
# Layout in the build (bin/ is where the programs are):
#   bin/lang/<LANGUAGE>/TbxUtlIntl.dll (Linux: TbxUtlIntl.rc)
#                       the language resource library, LANGUAGE = EN, DE
#   bin/testdata/       resource libraries the tests load
# Installed: <bindir>/lang/<LANGUAGE>/ on Windows,
#            <datadir>/tbxutl/lang/<LANGUAGE>/ on Linux.

set(TBXUTL_FLATTEN_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/FlattenResourceScript.cmake)

# tbxutl_builtin_resources(TARGET SCRIPT [DEPENDS files...])
# Builds the texts of SCRIPT into TARGET.
function(tbxutl_builtin_resources target script)
  cmake_parse_arguments(arg "" "" "DEPENDS" ${ARGN})
  if(WIN32)
    target_sources(${target} PRIVATE ${script})
    set_source_files_properties(${script} PROPERTIES OBJECT_DEPENDS "${arg_DEPENDS}")
  else()
    get_filename_component(name ${script} NAME_WE)
    set(rc ${PROJECT_BINARY_DIR}/generated/${name}.rc)
    set(cpp ${PROJECT_BINARY_DIR}/generated/${name}_builtin.cpp)
    add_custom_command(OUTPUT ${rc} ${cpp}
      COMMAND ${CMAKE_COMMAND} -DINPUT=${script} -DOUTPUT=${rc} -DCPP_OUTPUT=${cpp} -P ${TBXUTL_FLATTEN_SCRIPT}
      DEPENDS ${script} ${arg_DEPENDS} ${TBXUTL_FLATTEN_SCRIPT}
      COMMENT "Building in the texts of ${name}.rc"
      VERBATIM)
    target_sources(${target} PRIVATE ${cpp})
  endif()
endfunction()

# tbxutl_resource_library(TARGET SCRIPT file OUTPUT_DIRECTORY dir
#                         OUTPUT_NAME name [INSTALL_DESTINATION dir]
#                         [DEPENDS files...])
# The resource library dir/name.dll (Linux: dir/name.rc) from SCRIPT.
function(tbxutl_resource_library target)
  cmake_parse_arguments(arg "" "SCRIPT;OUTPUT_DIRECTORY;OUTPUT_NAME;INSTALL_DESTINATION" "DEPENDS" ${ARGN})
  if(WIN32)
    add_library(${target} MODULE ${arg_SCRIPT})
    set_source_files_properties(${arg_SCRIPT} PROPERTIES OBJECT_DEPENDS "${arg_DEPENDS}")
    set_target_properties(${target} PROPERTIES
      PREFIX ""
      OUTPUT_NAME ${arg_OUTPUT_NAME}
      LINKER_LANGUAGE C
      LIBRARY_OUTPUT_DIRECTORY ${arg_OUTPUT_DIRECTORY})
    target_link_options(${target} PRIVATE -nostdlib -Wl,-e,0)
    if(arg_INSTALL_DESTINATION)
      install(TARGETS ${target} LIBRARY DESTINATION ${arg_INSTALL_DESTINATION})
    endif()
  else()
    set(rc ${arg_OUTPUT_DIRECTORY}/${arg_OUTPUT_NAME}.rc)
    add_custom_command(OUTPUT ${rc}
      COMMAND ${CMAKE_COMMAND} -DINPUT=${arg_SCRIPT} -DOUTPUT=${rc} -P ${TBXUTL_FLATTEN_SCRIPT}
      DEPENDS ${arg_SCRIPT} ${arg_DEPENDS} ${TBXUTL_FLATTEN_SCRIPT}
      COMMENT "Writing the resource library ${arg_OUTPUT_NAME}.rc"
      VERBATIM)
    add_custom_target(${target} ALL DEPENDS ${rc})
    if(arg_INSTALL_DESTINATION)
      install(FILES ${rc} DESTINATION ${arg_INSTALL_DESTINATION})
    endif()
  endif()
endfunction()
