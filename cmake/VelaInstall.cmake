# find_package(vela), vela.pc, headers.
include(CMakePackageConfigHelpers)

install(TARGETS vela EXPORT velaTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vela)
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vela FILES_MATCHING PATTERN "*.h")
install(EXPORT velaTargets NAMESPACE vela:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/vela)

configure_package_config_file(cmake/velaConfig.cmake.in velaConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/vela)
write_basic_package_version_file(velaConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/velaConfig.cmake" "${CMAKE_CURRENT_BINARY_DIR}/velaConfigVersion.cmake"
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/vela)

# The way from the folder of vela.pc up to the prefix, whatever the depth of the library folder.
file(RELATIVE_PATH vela_pc_to_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(cmake/vela.pc.in vela.pc @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/vela.pc" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
