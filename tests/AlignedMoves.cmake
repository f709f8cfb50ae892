# Looks in a built DLL for moves of 32 or 64 bytes between registers and memory that insist on alignment, which the
# stack of Windows does not have.
execute_process(COMMAND ${OBJDUMP} --disassemble --no-show-raw-insn ${LIBRARY}
    COMMAND grep -E "[yz]mm[0-9]"
    COMMAND grep -cE "\\bvmov(aps|apd|dqa(32|64)?) .*\\("
    RESULTS_VARIABLE results OUTPUT_VARIABLE count)
# What counts nothing says so by its status; the first grep finds something, or nothing was looked at.
if(NOT results STREQUAL "0;0;1")
    message(FATAL_ERROR "${LIBRARY}: ${results}, ${count} moves of vectors insist on alignment")
endif()
