# What CPack makes Debian packages of: the library, what is needed to build with it, and the manual.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zpa)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "zpa developers <zpa-developers@example.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each has its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
# Whoever builds may have a umask of his own.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_COMPONENTS_ALL runtime development documentation)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(library libzpa${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${library})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
# The loader learns of the library by a trigger, as Debian wants it; CPack's own scripts tell it again.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "image processing for X-ray acquisition
zpa copies, converts, filters, measures and labels greyscale radiographs,
and keeps parameters and results in bags of values.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzpa-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${library} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS libzpa-doc)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "image processing for X-ray acquisition - development files
Headers for C++ and C, a CMake package and a pkg-config file. Programs find
the headers through either.")

set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME libzpa-doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
set(CPACK_COMPONENT_DOCUMENTATION_DESCRIPTION "image processing for X-ray acquisition - manual
The reference manual and the pages that go with it, as HTML.")

# Every Debian package tells of its versions, and under which terms it may be used.
find_program(ZPA_GZIP gzip REQUIRED)
string(TIMESTAMP zpa_package_date "%a, %d %b %Y %H:%M:%S +0000" UTC) # which SOURCE_DATE_EPOCH sets
configure_file(cmake/debian/changelog.in debian/changelog @ONLY)
set(zpa_changelogs "")
foreach(changelog ${PROJECT_BINARY_DIR}/debian/changelog ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
    cmake_path(GET changelog FILENAME name)
    add_custom_command(OUTPUT debian/${name}.gz
        COMMAND ${ZPA_GZIP} -9nc ${changelog} > ${PROJECT_BINARY_DIR}/debian/${name}.gz
        DEPENDS ${changelog} VERBATIM)
    list(APPEND zpa_changelogs ${PROJECT_BINARY_DIR}/debian/${name}.gz)
endforeach()
add_custom_target(zpa_changelogs ALL DEPENDS ${zpa_changelogs})
foreach(part RUNTIME DEVELOPMENT DOCUMENTATION)
    string(TOLOWER ${part} component)
    install(FILES ${zpa_changelogs} ${PROJECT_SOURCE_DIR}/cmake/debian/copyright COMPONENT ${component}
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${CPACK_DEBIAN_${part}_PACKAGE_NAME})
endforeach()

include(CPack)
