# qzl_cli11: the command-line library. Its headers are among the system's headers, which a cross compiler must not see,
# so a link in the build folder leads to this library alone.
find_path(QZL_CLI11_INCLUDE CLI/CLI.hpp PATHS /usr/include /usr/local/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
set(folder ${PROJECT_BINARY_DIR}/cli11)
file(MAKE_DIRECTORY ${folder})
file(CREATE_LINK ${QZL_CLI11_INCLUDE}/CLI ${folder}/CLI SYMBOLIC COPY_ON_ERROR)
add_library(qzl_cli11 INTERFACE)
target_include_directories(qzl_cli11 SYSTEM INTERFACE ${folder})
