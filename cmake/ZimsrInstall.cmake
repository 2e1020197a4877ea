# Headers, libraries of all levels, pkg-config file and CMake package.
include(CMakePackageConfigHelpers)

install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/" DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(TARGETS zimsr EXPORT zimsr_targets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(level IN LISTS ZIMSR_BUILT_LEVELS)
  install(TARGETS zimsr-${level} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/glibc-hwcaps/${level} NAMELINK_SKIP)
endforeach()
if(ZIMSR_STATIC)
  install(TARGETS zimsr_static EXPORT zimsr_targets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/zimsr")
install(EXPORT zimsr_targets NAMESPACE zimsr:: DESTINATION ${package_dir})
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/zimsr-config.cmake.in"
                              "${PROJECT_BINARY_DIR}/zimsr-config.cmake" INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file("${PROJECT_BINARY_DIR}/zimsr-config-version.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/zimsr-config.cmake" "${PROJECT_BINARY_DIR}/zimsr-config-version.cmake"
        DESTINATION ${package_dir})

set(AT "@")
configure_file("${PROJECT_SOURCE_DIR}/cmake/zimsr.pc.in" "${PROJECT_BINARY_DIR}/zimsr.pc.in" @ONLY)
# The prefix may be given as late as `cmake --install --prefix`.
install(CODE "
  get_filename_component(prefix \"\${CMAKE_INSTALL_PREFIX}\" ABSOLUTE)
  configure_file(\"${PROJECT_BINARY_DIR}/zimsr.pc.in\" \"${PROJECT_BINARY_DIR}/zimsr.pc\" @ONLY)")
install(FILES "${PROJECT_BINARY_DIR}/zimsr.pc" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
