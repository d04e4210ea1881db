# SPDX-License-Identifier: BSL-1.0
# Settings that all targets of the tree share: language level, folders, build type, sanitizers, coverage. None of them
# affects a project that adds this one as a subdirectory.
include(GNUInstallDirs)
include(GenerateExportHeader)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(THREADS_PREFER_PTHREAD_FLAG ON)

if(PROJECT_IS_TOP_LEVEL)
    set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
    if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
        set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Debug, Release, RelWithDebInfo or MinSizeRel" FORCE)
    endif()
    # Programs and their DLLs are in one folder, so that Windows finds the DLLs without a search path.
    set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
    set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
    set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
endif()

if(WIN32)
    if(BUILD_SHARED_LIBS)
        enable_language(RC)
    endif()
    set(QZL_PLATFORM windows)
else()
    set(QZL_PLATFORM posix)
endif()

if(QZL_SANITIZE)
    add_compile_options(-fsanitize=${QZL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${QZL_SANITIZE})
endif()
if(QZL_COVERAGE AND NOT QZL_COVERAGE STREQUAL "libraries")
    add_compile_options(--coverage -fprofile-update=atomic)
    add_compile_definitions(always_inline=noinline) # a function that is forced into others would be counted in each of them
    add_link_options(--coverage)
endif()

if(MINGW)
    include(QzlMingwRuntime)
endif()
