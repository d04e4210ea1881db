# SPDX-License-Identifier: BSL-1.0
# qzl_json_engine: the JSON part of cpprestsdk, for the sources of qzl_io only. It is either built into the
# library, or it is the machine's installed library, which loads OpenSSL, brotli and zlib into every program.
# Its source package is Debian's, so a cross build for Windows has nothing else, and a build on Windows not this.
include(CMakeDependentOption)
cmake_dependent_option(QZL_CPPREST_FROM_SOURCE "Make cpprestsdk's JSON part from its source package" OFF
    "NOT CMAKE_CROSSCOMPILING" ON)

set(adaptation ${PROJECT_SOURCE_DIR}/cmake/cpprest)
set(QZL_CPPREST_FOLDER ${PROJECT_BINARY_DIR}/cpprestsdk CACHE PATH "Where cpprestsdk's source package is kept")
set(QZL_JSON_ENGINE_IS_INSIDE OFF)

if(QZL_CPPREST_FROM_SOURCE)
    execute_process(COMMAND ${PROJECT_SOURCE_DIR}/cmake/fetch-source
        cpprest libcpprest-dev Release/include/cpprest/json.h ${QZL_CPPREST_FOLDER}
        OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE result)
    if(result EQUAL 0)
        set(QZL_JSON_ENGINE_IS_INSIDE ON)
    elseif(CMAKE_CROSSCOMPILING)
        message(FATAL_ERROR "cpprestsdk's sources are not available\n${output}")
    elseif(CMAKE_CXX_FLAGS MATCHES "-stdlib=libc\\+\\+")
        message(FATAL_ERROR "cpprestsdk's sources are not available, and the installed library is made with another "
            "standard library; -DQZL_JSON=OFF builds without it\n${output}")
    else()
        message(NOTICE "qzl_io will load the installed cpprestsdk: its source package is not available\n${output}")
    endif()
endif()

if(NOT QZL_JSON_ENGINE_IS_INSIDE)
    find_path(QZL_CPPREST_INCLUDE cpprest/json.h REQUIRED)
    find_library(QZL_CPPREST_LIBRARY cpprest REQUIRED)
    add_library(qzl_json_engine INTERFACE)
    target_include_directories(qzl_json_engine SYSTEM INTERFACE ${QZL_CPPREST_INCLUDE})
    target_link_libraries(qzl_json_engine INTERFACE ${QZL_CPPREST_LIBRARY})
    return()
endif()

set(release ${QZL_CPPREST_FOLDER}/source/Release)
add_library(qzl_json_engine OBJECT EXCLUDE_FROM_ALL
    ${release}/src/json/json.cpp
    ${release}/src/json/json_parsing.cpp
    ${release}/src/json/json_serialization.cpp
    ${release}/src/utilities/asyncrt_utils.cpp)
target_include_directories(qzl_json_engine SYSTEM PUBLIC ${adaptation}/include ${release}/include)
target_compile_definitions(qzl_json_engine PUBLIC _NO_ASYNCRTIMP _NO_PPLXIMP)
target_compile_options(qzl_json_engine PRIVATE -w)
set_target_properties(qzl_json_engine PROPERTIES UNITY_BUILD OFF)
if(MINGW)
    include(QzlCpprestMingw)
endif()
