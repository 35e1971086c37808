# cmake --install: headers, libraries, the CMake package, corv.pc, the program.

set(CORV_LIBRARIES)
foreach(library corv corv_static)
  if(TARGET ${library})
    list(APPEND CORV_LIBRARIES ${library})
  endif()
endforeach()
install(TARGETS ${CORV_LIBRARIES} EXPORT corvTargets
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
# What an archive needs besides; a shared library brings it along.
set(CORV_PC_PRIVATE_LIBS "")
foreach(library ${CMAKE_DL_LIBS})
  string(APPEND CORV_PC_PRIVATE_LIBS " -l${library}")
endforeach()
set(CORV_PC_LIBS "")
set(CORV_PC_CFLAGS "")
if(NOT CORV_BUILD_SHARED)
  set(CORV_PC_LIBS "${CORV_PC_PRIVATE_LIBS}")
  set(CORV_PC_CFLAGS " -DCORV_STATIC")
endif()
configure_file(cmake/corv.pc.in corv.pc @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/corv.pc" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
install(FILES LICENSE README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
