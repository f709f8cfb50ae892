# What `cmake --install` gives, in three parts: the library (runtime), what is needed to build with it (development),
# and the manual (documentation), if it is made.
include(CMakePackageConfigHelpers)

install(TARGETS zpa EXPORT zpa-targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(DIRECTORY header/Basics ${PROJECT_BINARY_DIR}/header/
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development FILES_MATCHING PATTERN "*.h")

set(zpa_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zpa)
install(EXPORT zpa-targets NAMESPACE zpa:: DESTINATION ${zpa_package_dir} COMPONENT development)
configure_package_config_file(cmake/zpa-config.cmake.in zpa-config.cmake INSTALL_DESTINATION ${zpa_package_dir})
write_basic_package_version_file(zpa-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zpa-config.cmake ${PROJECT_BINARY_DIR}/zpa-config-version.cmake
    DESTINATION ${zpa_package_dir} COMPONENT development)

# Found from the file's own place, so that the tree can be moved. The place is known when CMake installs.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
    OUTPUT_VARIABLE zpa_pc_to_lib)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_INCLUDEDIR BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
    OUTPUT_VARIABLE zpa_pc_to_include)
configure_file(cmake/zpa.pc.in zpa.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zpa.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

if(ZPA_BUILD_DOCS)
    install(DIRECTORY ${PROJECT_BINARY_DIR}/manual/html DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation)
endif()
