# Holds the names that the built library shows against the list of those it means to show. Where a name is meant to
# come or go, `ZPA_RENEW_EXPORTS=1 ctest -R exports` writes the list anew; what changed is then seen in review.
cmake_minimum_required(VERSION 3.20)
# Of a DLL the names in its table, which are those that others ask for.
if(LIBRARY MATCHES "\\.dll$")
    execute_process(COMMAND ${OBJDUMP} --private-headers ${LIBRARY} COMMAND ${CXXFILT} --no-strip-underscore
        RESULTS_VARIABLE results OUTPUT_VARIABLE symbols)
    string(REGEX REPLACE ".*\\[Ordinal/Name Pointer\\] Table\n" "" symbols "${symbols}")
    string(REGEX REPLACE "\n\n.*" "" symbols "${symbols}")
    string(REGEX REPLACE "\t\\[ *[0-9]+\\] " "" symbols "${symbols}")
else()
    execute_process(COMMAND ${NM} --dynamic --defined-only --demangle ${LIBRARY}
        RESULTS_VARIABLE results OUTPUT_VARIABLE symbols)
endif()
if(NOT results MATCHES "^0(;0)?$")
    message(FATAL_ERROR "${LIBRARY} cannot be read: ${results}")
endif()

string(REGEX REPLACE "\n$" "" symbols "${symbols}")
string(REPLACE "\n" ";" symbols "${symbols}")
set(names)
foreach(symbol IN LISTS symbols)
    string(REGEX REPLACE "^[0-9a-f]* *[A-Za-z] " "" name "${symbol}")
    # LLVM's nm does not read this one.
    string(REPLACE "_ZNK3ZPA9AnyHandlecvNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEEEv"
        "ZPA::AnyHandle::operator std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >() const"
        name "${name}")
    # Tables of classes follow from their members; which functions of inline templates remain is up to the compiler.
    if(name MATCHES "^(typeinfo|typeinfo name|vtable|VTT) for ZPA::" OR name MATCHES "^ZPA::(ZPA_Ptr|counter)<")
        continue()
    endif()
    # Of the templates that are instantiated whole, one line for each instance.
    string(REGEX REPLACE "^(ZPA::I?ZPA_(Image|Buffer)<[^>]*>)::.*" "\\1" name "${name}")
    list(APPEND names "${name}")
endforeach()
list(REMOVE_DUPLICATES names)
list(SORT names)

if(DEFINED ENV{ZPA_RENEW_EXPORTS})
    string(REPLACE ";" "\n" text "${names}")
    file(WRITE ${LIST} "${text}\n")
    message("${LIST} is written anew.")
    return()
endif()

file(STRINGS ${LIST} listed)
foreach(name IN LISTS names)
    if(NOT name IN_LIST listed)
        message(SEND_ERROR "The library shows what is not listed: ${name}")
    endif()
endforeach()
foreach(name IN LISTS listed)
    if(NOT name IN_LIST names)
        message(SEND_ERROR "The library does not show what is listed: ${name}")
    endif()
endforeach()
