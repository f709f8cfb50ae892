# Compiles each public header alone, in every language version that callers may use, and holds ZPA.h and zpa.h to their
# promises. What fails, fails while it is built.
set(zpa_header_warnings -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wundef -Werror)

# Compiles `sources`, which include public headers, in a version of a language. Nothing uses the result.
function(zpa_compile_headers target language standard sources)
    add_library(${target} OBJECT ${sources})
    target_link_libraries(${target} PRIVATE zpa)
    target_compile_options(${target} PRIVATE ${zpa_header_warnings})
    set_target_properties(${target} PROPERTIES ${language}_STANDARD ${standard})
endfunction()

file(GLOB public_headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}/header
    ${PROJECT_SOURCE_DIR}/header/Basics/*.h)
list(APPEND public_headers Basics/Export.h)

set(public_header_sources "")
set(umbrella_source "#include <Basics/ZPA.h>\n")
foreach(header ${public_headers})
    cmake_path(GET header STEM name)
    set(source ${PROJECT_BINARY_DIR}/public_headers/${name}.cpp)
    file(CONFIGURE OUTPUT ${source} CONTENT "#include <${header}>\n")
    list(APPEND public_header_sources ${source})

    string(TOUPPER ${name} guard)
    string(APPEND umbrella_source "#ifndef ZPA_BASICS_${guard}_H\n#error \"ZPA.h leaves out ${header}\"\n#endif\n")
endforeach()
set(source ${PROJECT_BINARY_DIR}/public_headers/umbrella_is_complete.cpp)
file(CONFIGURE OUTPUT ${source} CONTENT "${umbrella_source}")
list(APPEND public_header_sources ${source})
set(source ${PROJECT_BINARY_DIR}/public_headers/c_header_alone.cpp)
file(CONFIGURE OUTPUT ${source} CONTENT "#include <zpa.h>\n")
list(APPEND public_header_sources ${source})

if(NOT ZPA_SANITIZE) # which changes nothing here
    foreach(standard 14 17 20)
        zpa_compile_headers(zpa_public_headers_${standard} CXX ${standard} "${public_header_sources}")
    endforeach()
endif()

set(source ${PROJECT_BINARY_DIR}/public_headers/c_header_alone.c)
file(CONFIGURE OUTPUT ${source} CONTENT "#include <zpa.h>\nextern int zpa_no_empty_unit;\n")
foreach(standard 99 11)
    zpa_compile_headers(zpa_c_header_${standard} C ${standard} "${source}")
endforeach()

# Both ways: what the library is to show under a bare name is in zpa.h, with the types that it has in C++ ...
set(exports ${PROJECT_SOURCE_DIR}/tests/exports.txt)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${exports})
file(STRINGS ${exports} exported_c_names REGEX "^[A-Za-z0-9_]+$")
list(APPEND exported_c_names ${zpa_c_names})
list(REMOVE_DUPLICATES exported_c_names)
foreach(name ${exported_c_names})
    string(APPEND renamed "#define ${name} zpa_h_${name}\n")
    string(APPEND restored "#undef ${name}\n")
    string(APPEND compared "ZPA_SAME_FUNCTION(${name})\n")
endforeach()
set(source ${PROJECT_BINARY_DIR}/public_headers/CHeader.cpp)
configure_file(tests/interface/CHeader.cpp.in ${source} @ONLY)
zpa_compile_headers(zpa_c_header_matches CXX 17 "${source}")

# ... and what is in zpa.h is in the library.
list(TRANSFORM zpa_c_names REPLACE "(.+)" "    (Function)\\1,\n" OUTPUT_VARIABLE functions)
string(JOIN "" functions ${functions})
set(source ${PROJECT_BINARY_DIR}/public_headers/CHeader.c)
configure_file(tests/interface/CHeader.c.in ${source} @ONLY)
add_executable(zpa_c_header ${source})
zpa_own_code(zpa_c_header)
target_link_libraries(zpa_c_header PRIVATE zpa)
add_test(NAME c_header COMMAND zpa_c_header)
set_tests_properties(c_header PROPERTIES ENVIRONMENT "${zpa_test_environment}")
