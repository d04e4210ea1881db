# SPDX-License-Identifier: BSL-1.0
# The list of what is installed and what it was made from (SPDX 2.3, JSON), written when everything else is installed.

# qzl_part(NAME VERSION LICENCE RELATION): a third-party part, and how qzl_io is related to it in the terms of SPDX.
set(QZL_PARTS)
macro(qzl_part)
    string(JOIN "|" part ${ARGN})
    list(APPEND QZL_PARTS "${part}")
endmacro()

# qzl_version_in(VARIABLE FILE REGEX...): the parts of a version, as the file defines them.
function(qzl_version_in variable file)
    file(READ ${file} text)
    set(numbers)
    foreach(regex ${ARGN})
        string(REGEX MATCH "${regex}" match "${text}")
        list(APPEND numbers ${CMAKE_MATCH_1})
    endforeach()
    list(JOIN numbers "." version)
    set(${variable} ${version} PARENT_SCOPE)
endfunction()

if(QZL_JSON AND QZL_CPPREST_IS_INSIDE)
    qzl_version_in(version ${QZL_CPPREST_FOLDER}/source/Release/include/cpprest/version.h
        "VERSION_MAJOR ([0-9]+)" "VERSION_MINOR ([0-9]+)" "VERSION_REVISION ([0-9]+)")
    qzl_part(cpprestsdk ${version} "MIT AND MS-PL" STATIC_LINK)
elseif(QZL_JSON)
    qzl_part(cpprestsdk NOASSERTION MIT DYNAMIC_LINK)
endif()
if(QZL_BUILD_TOOLS AND QZL_JSON)
    qzl_version_in(version ${qzl_cli11_include}/CLI/Version.hpp "CLI11_VERSION \"([0-9.]+)\"")
    qzl_part(CLI11 ${version} BSD-3-Clause STATIC_LINK)
    set(abi ${qzl_nlohmann_json_include}/nlohmann/detail/abi_macros.hpp)
    qzl_version_in(version ${abi} "VERSION_MAJOR ([0-9]+)" "VERSION_MINOR ([0-9]+)" "VERSION_PATCH ([0-9]+)")
    qzl_part(nlohmann-json ${version} MIT STATIC_LINK)
endif()
if(MINGW AND BUILD_SHARED_LIBS)
    qzl_part(gcc-runtime ${CMAKE_CXX_COMPILER_VERSION} "GPL-3.0-or-later WITH GCC-exception-3.1" DYNAMIC_LINK)
    qzl_part(winpthreads NOASSERTION "MIT AND BSD-3-Clause" DYNAMIC_LINK)
endif()

configure_file(${PROJECT_SOURCE_DIR}/cmake/sbom.cmake.in ${PROJECT_BINARY_DIR}/sbom.cmake @ONLY)
install(SCRIPT ${PROJECT_BINARY_DIR}/sbom.cmake COMPONENT notices)
