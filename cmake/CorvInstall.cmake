# cmake --install: headers, both libraries, the CMake package, corv.pc, the program.

install(TARGETS corv corv_static EXPORT corvTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/corv DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(EXPORT corvTargets NAMESPACE corv:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/corv)

configure_package_config_file(cmake/corvConfig.cmake.in corvConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/corv)
write_basic_package_version_file(corvConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/corvConfig.cmake"
              "${CMAKE_CURRENT_BINARY_DIR}/corvConfigVersion.cmake"
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/corv)

# corv.pc finds the prefix from its own place, so that the installed tree can be moved.
file(RELATIVE_PATH CORV_PC_TO_PREFIX
  "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
configure_file(cmake/corv.pc.in corv.pc @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/corv.pc" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
install(FILES LICENSE README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
