# SPDX-License-Identifier: BSL-1.0
# The compiler's run-time DLLs, which library and application share, and the script that runs Windows programs.
set(QZL_RUNTIME_DLLS)
foreach(dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}
        OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT IS_ABSOLUTE "${path}")
        find_file(path_of_${dll} ${dll} PATH_SUFFIXES lib bin REQUIRED)
        set(path ${path_of_${dll}})
    endif()
    list(APPEND QZL_RUNTIME_DLLS ${path})
endforeach()

if(NOT PROJECT_IS_TOP_LEVEL)
    return()
endif()
file(COPY ${QZL_RUNTIME_DLLS} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
if(CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/wine-run.in ${PROJECT_BINARY_DIR}/wine-run
        @ONLY FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${PROJECT_BINARY_DIR}/wine-run)
endif()
