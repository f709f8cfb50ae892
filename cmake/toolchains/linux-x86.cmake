# Linux x86, 32-bit, by the GCC of a 64-bit machine.
set(ZPA_PLATFORM linux-x86)
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER gcc)
set(CMAKE_CXX_COMPILER g++)
include(${CMAKE_CURRENT_LIST_DIR}/x86.cmake)
set(CMAKE_C_FLAGS_INIT "-m32 ${CMAKE_C_FLAGS_INIT}")
set(CMAKE_CXX_FLAGS_INIT "-m32 ${CMAKE_CXX_FLAGS_INIT}")
include(${CMAKE_CURRENT_LIST_DIR}/platform.cmake)
# What it builds runs here.
set(CMAKE_CROSSCOMPILING_EMULATOR env)
