# What zpa.dll asks for beside what Windows has: MinGW's run-times and Highway. Both the library's programs here and an
# installed library find them in their own folder. They are shared ones, as exceptions, and types that are told apart at
# run-time, pass between library and program.
set(zpa_runtime "")
set(exceptions seh)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    set(exceptions dw2)
endif()
foreach(name libgcc_s_${exceptions}-1 libstdc++-6 libgomp-1 libwinpthread-1)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}.dll
        OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(EXISTS ${file}) # else this compiler has none, or it is installed elsewhere
        list(APPEND zpa_runtime ${file})
    endif()
endforeach()
get_target_property(type hwy::hwy TYPE)
if(type STREQUAL "SHARED_LIBRARY")
    list(APPEND zpa_runtime $<TARGET_FILE:hwy::hwy>)
endif()
add_custom_command(TARGET zpa POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${zpa_runtime} ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
install(FILES ${zpa_runtime} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
