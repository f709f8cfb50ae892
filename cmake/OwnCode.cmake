# How this project compiles its own code, tests and examples included.

# Leaves out of a list of sources those of another platform, which end in its name.
macro(zpa_of_this_platform sources)
    if(WIN32)
        list(FILTER ${sources} EXCLUDE REGEX "_posix\\.cpp$")
    else()
        list(FILTER ${sources} EXCLUDE REGEX "_windows\\.cpp$")
    endif()
endmacro()

# Warnings, exact arithmetic and the chosen sanitizers for `target`.
function(zpa_own_code target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wconversion
        $<$<BOOL:${ZPA_WARNINGS_AS_ERRORS}>:-Werror>
        # A product and a sum stay two roundings, so that every machine gives the same bits.
        -ffp-contract=off
        # What the library says of itself does not tell where it was built.
        -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
    if(ZPA_SANITIZE)
        target_compile_options(${target} PRIVATE
            -fsanitize=${ZPA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_link_options(${target} PUBLIC -fsanitize=${ZPA_SANITIZE})
        # The run-time for C alone lacks what the library's checks need.
        set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX)
    endif()
endfunction()
