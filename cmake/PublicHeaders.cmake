# Builds nothing that is used: compiles each public header alone, in every language version that callers
# may use, and holds ZPA.h to its promise.
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

foreach(standard 14 17 20)
    set(target zpa_public_headers_${standard})
    add_library(${target} OBJECT ${public_header_sources})
    target_link_libraries(${target} PRIVATE zpa)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Werror)
    set_target_properties(${target} PROPERTIES CXX_STANDARD ${standard})
endforeach()
