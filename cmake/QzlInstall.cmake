# SPDX-License-Identifier: BSL-1.0
# Installation below a prefix: libraries, headers, the CMake package and the pkg-config file.
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/qzl_io)

install(TARGETS qzl_base qzl_io EXPORT qzl_io_targets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
set(left_out)
if(NOT QZL_JSON)
    set(left_out PATTERN json_to_sdl.h EXCLUDE)
endif()
foreach(headers ${PROJECT_SOURCE_DIR}/include/qzl_io ${PROJECT_SOURCE_DIR}/internal/include/qzl_base
        ${PROJECT_BINARY_DIR}/include/qzl_io ${PROJECT_BINARY_DIR}/include/qzl_base)
    install(DIRECTORY ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h" ${left_out})
endforeach()

install(DIRECTORY ${PROJECT_SOURCE_DIR}/schemas/ DESTINATION ${CMAKE_INSTALL_DATADIR}/qzl_io)

# Libraries that a program needs besides the static ones, for the CMake package and for pkg-config.
set(dependencies)
set(defines)
set(private_libraries)
if(NOT BUILD_SHARED_LIBS)
    set(dependencies "include(CMakeFindDependencyMacro)\nfind_dependency(Threads)\n")
    set(defines " -DQZL_BASE_STATIC_DEFINE -DQZL_IO_STATIC_DEFINE")
    set(private_libraries -pthread)
    if(QZL_JSON AND NOT QZL_CPPREST_IS_INSIDE)
        target_link_libraries(qzl_io PRIVATE $<INSTALL_INTERFACE:cpprest>)
        string(PREPEND private_libraries "-lcpprest ")
    endif()
elseif(MINGW)
    install(FILES ${QZL_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

install(EXPORT qzl_io_targets NAMESPACE qzl:: DESTINATION ${package_folder})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/qzl_io-config.cmake.in
    ${PROJECT_BINARY_DIR}/qzl_io-config.cmake
    INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qzl_io-config-version.cmake
    VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/qzl_io-config.cmake ${PROJECT_BINARY_DIR}/qzl_io-config-version.cmake
    DESTINATION ${package_folder})

file(RELATIVE_PATH prefix_from_pc /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
cmake_path(SET prefix_from_pc NORMALIZE "${prefix_from_pc}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/qzl_io.pc.in ${PROJECT_BINARY_DIR}/qzl_io.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qzl_io.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
