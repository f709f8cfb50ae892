# The reference manual, from the public headers and the pages of docs/. A warning is an error.
find_package(Doxygen REQUIRED)
configure_file(docs/Doxyfile.in Doxyfile @ONLY)
add_custom_target(docs ALL
    COMMAND Doxygen::doxygen ${PROJECT_BINARY_DIR}/Doxyfile
    COMMENT "Making the reference manual"
    VERBATIM)
