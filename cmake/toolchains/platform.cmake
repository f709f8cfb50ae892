# What all platforms that are built for on another machine share; ZPA_PLATFORM names one of them. Their
# dependencies lie where `./run` puts what it builds from Debian's sources.
cmake_path(SET ZPA_DEPENDENCIES NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../../build/platforms/${ZPA_PLATFORM}/prefix)

# This machine's own libraries and headers are of no use: what is not in the prefix is not there.
set(CMAKE_FIND_ROOT_PATH ${ZPA_DEPENDENCIES} ${ZPA_TOOLCHAIN_ROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
