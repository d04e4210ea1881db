# SPDX-License-Identifier: BSL-1.0
# Libraries of headers alone, for the tools. They are among the system's headers, which a cross compiler must not see,
# so links in the build folder lead to these libraries and nothing else.

# qzl_header_library(NAME FOLDER HEADER): a target for the library whose headers are FOLDER and what is below it.
function(qzl_header_library name folder header)
    find_path(${name}_include ${folder}/${header} PATHS /usr/include /usr/local/include
        NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    set(links ${PROJECT_BINARY_DIR}/${name})
    file(MAKE_DIRECTORY ${links})
    file(CREATE_LINK ${${name}_include}/${folder} ${links}/${folder} SYMBOLIC COPY_ON_ERROR)
    add_library(${name} INTERFACE)
    target_include_directories(${name} SYSTEM INTERFACE ${links})
endfunction()

qzl_header_library(qzl_cli11 CLI CLI.hpp)
qzl_header_library(qzl_nlohmann_json nlohmann json.hpp)
