# Headers, the library, a CMake package (find_package(qv) gives qv::qv) and qv.pc.
include(CMakePackageConfigHelpers)

install(TARGETS qv EXPORT qvTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY qv/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qv
  FILES_MATCHING PATTERN "*.h")
install(FILES ${PROJECT_BINARY_DIR}/generated/qv/core/Version.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qv/core)
install(EXPORT qvTargets NAMESPACE qv:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qv)

configure_package_config_file(cmake/qvConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/qvConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qv)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/qvConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/qvConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/qvConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qv)

# qv.pc finds its prefix from its own place, so an install with --prefix works.
file(RELATIVE_PATH QV_PC_TO_PREFIX "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
configure_file(cmake/qv.pc.in ${CMAKE_CURRENT_BINARY_DIR}/qv.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/qv.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
