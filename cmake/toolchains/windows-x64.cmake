# Windows x86-64, by MinGW on Linux. Programs run under Wine.
set(ZPA_PLATFORM windows-x64)
set(ZPA_TOOLCHAIN x86_64-w64-mingw32)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
# The calling convention of Windows aligns the stack to 16 bytes, and GCC spills vectors of 32 and 64 as if it were
# aligned for them. The assembler turns every move that insists on alignment into one that does not.
set(CMAKE_CXX_FLAGS_INIT -Wa,-muse-unaligned-vector-move)
set(CMAKE_C_FLAGS_INIT -Wa,-muse-unaligned-vector-move)
set(CMAKE_CROSSCOMPILING_EMULATOR wine)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
