# Windows x86, 32-bit, by MinGW on Linux.
set(ZPA_PLATFORM windows-x86)
set(ZPA_TOOLCHAIN i686-w64-mingw32)
set(CMAKE_SYSTEM_PROCESSOR i686)
include(${CMAKE_CURRENT_LIST_DIR}/x86.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
