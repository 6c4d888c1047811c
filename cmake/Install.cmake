# cmake --install: headers, the library, the tool, a CMake package
# (find_package(tbxutl CONFIG) gives tbxutl::tbxutl) and tbxutl.pc.
include(CMakePackageConfigHelpers)

set(TBXUTL_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/tbxutl)

install(TARGETS tbxutl EXPORT tbxutlTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS tbxutl_cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

foreach(header IN LISTS TBXUTL_PUBLIC_HEADERS)
  get_filename_component(dir ${header} DIRECTORY)
  install(FILES tbxutl/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tbxutl/${dir})
endforeach()
install(FILES ${PROJECT_BINARY_DIR}/generated/tbxutl/version.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tbxutl)

install(EXPORT tbxutlTargets NAMESPACE tbxutl:: DESTINATION ${TBXUTL_CMAKE_DIR})
configure_package_config_file(cmake/tbxutlConfig.cmake.in
  ${PROJECT_BINARY_DIR}/tbxutlConfig.cmake INSTALL_DESTINATION ${TBXUTL_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/tbxutlConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tbxutlConfig.cmake ${PROJECT_BINARY_DIR}/tbxutlConfigVersion.cmake
  DESTINATION ${TBXUTL_CMAKE_DIR})

# The .pc file finds the prefix relative to itself, so the installed tree
# can be moved.
file(RELATIVE_PATH TBXUTL_PC_TO_PREFIX /root/${CMAKE_INSTALL_LIBDIR}/pkgconfig /root)
configure_file(cmake/tbxutl.pc.in ${PROJECT_BINARY_DIR}/tbxutl.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tbxutl.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
