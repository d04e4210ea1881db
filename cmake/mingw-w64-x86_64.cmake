# SPDX-License-Identifier: BSL-1.0
# 64-bit Windows with MinGW-w64's GCC, POSIX threads.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# LLVM's linker, where it is installed, takes half a second for a program that takes GNU's 15 s. Debian's GCC knows no
# option for it.
find_program(QZL_LLD ld.lld)
if(QZL_LLD)
    foreach(kind EXE SHARED MODULE)
        set(CMAKE_${kind}_LINKER_FLAGS_INIT "-wrapper ${CMAKE_CURRENT_LIST_DIR}/link-with-lld")
    endforeach()
endif()

# Folders in CMAKE_PREFIX_PATH are Windows prefixes, too.
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${CMAKE_PREFIX_PATH})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
