# MinGW with POSIX threads; ZPA_TOOLCHAIN is its prefix.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${ZPA_TOOLCHAIN}-gcc-posix)
set(CMAKE_CXX_COMPILER ${ZPA_TOOLCHAIN}-g++-posix)
set(CMAKE_RC_COMPILER ${ZPA_TOOLCHAIN}-windres)
set(ZPA_TOOLCHAIN_ROOT /usr/${ZPA_TOOLCHAIN})
include(${CMAKE_CURRENT_LIST_DIR}/platform.cmake)
