# Installation below a prefix: libraries, headers, the CMake package and the pkg-config file.
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/qzl_io)

install(TARGETS qzl_base qzl_io EXPORT qzl_io_targets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(headers ${PROJECT_SOURCE_DIR}/include/qzl_io ${PROJECT_SOURCE_DIR}/internal/include/qzl_base
        ${PROJECT_BINARY_DIR}/include/qzl_io ${PROJECT_BINARY_DIR}/include/qzl_base)
    install(DIRECTORY ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
endforeach()
if(MINGW)
    install(FILES ${QZL_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

install(EXPORT qzl_io_targets NAMESPACE qzl:: DESTINATION ${package_folder})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/qzl_io-config.cmake.in
    ${PROJECT_BINARY_DIR}/qzl_io-config.cmake
    INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qzl_io-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/qzl_io-config.cmake ${PROJECT_BINARY_DIR}/qzl_io-config-version.cmake
    DESTINATION ${package_folder})

file(RELATIVE_PATH prefix_from_pc /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
cmake_path(SET prefix_from_pc NORMALIZE "${prefix_from_pc}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/qzl_io.pc.in ${PROJECT_BINARY_DIR}/qzl_io.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qzl_io.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
