# SPDX-License-Identifier: BSL-1.0
# Installation below a prefix: libraries, headers, the CMake package, the pkg-config files, notices and the list of what
# is installed. Its components are those of the Debian packages: base (libqzl_base), library (libqzl_io), interface
# (libqzl_io_c), development, tool (the program sdl); notices are in each of those in Debian's own form, and for other packages in `notices`.
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/qzl_io)
set(document_folder ${CMAKE_INSTALL_DATADIR}/doc/qzl_io)

set(libraries "qzl_base base" "qzl_io library")
if(QZL_C_INTERFACE)
    list(APPEND libraries "qzl_io_c interface")
endif()
foreach(pair IN LISTS libraries)
    separate_arguments(pair)
    list(GET pair 0 target)
    list(GET pair 1 component)
    install(TARGETS ${target} EXPORT qzl_io_targets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${component}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${component} NAMELINK_COMPONENT development
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
endforeach()
set(left_out)
if(NOT QZL_JSON)
    set(left_out PATTERN json_to_sdl.h EXCLUDE)
endif()
foreach(headers ${PROJECT_SOURCE_DIR}/include/qzl_io ${PROJECT_SOURCE_DIR}/internal/include/qzl_base
        ${PROJECT_BINARY_DIR}/include/qzl_io ${PROJECT_BINARY_DIR}/include/qzl_base)
    install(DIRECTORY ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
        FILES_MATCHING PATTERN "*.h" ${left_out})
endforeach()

if(QZL_C_INTERFACE)
    install(FILES ${PROJECT_SOURCE_DIR}/include/qzl_io_c.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
    install(FILES ${PROJECT_BINARY_DIR}/include/qzl_io_c/export.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qzl_io_c
        COMPONENT development)
    if(TARGET qzl_io_c_msvc)
        get_target_property(for_msvc qzl_io_c_msvc FILES_FOR_MSVC)
        install(FILES ${for_msvc} DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
    endif()
endif()

install(DIRECTORY ${PROJECT_SOURCE_DIR}/schemas/ DESTINATION ${CMAKE_INSTALL_DATADIR}/qzl_io COMPONENT development)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/THIRD-PARTY-NOTICES.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    DESTINATION ${document_folder} COMPONENT notices)

# Libraries that a program needs besides the static ones, for the CMake package and for pkg-config.
set(dependencies)
set(defines)
set(private_libraries)
if(NOT BUILD_SHARED_LIBS)
    set(dependencies "include(CMakeFindDependencyMacro)\nfind_dependency(Threads)\n")
    set(defines " -DQZL_BASE_STATIC_DEFINE -DQZL_IO_STATIC_DEFINE")
    set(private_libraries -pthread)
    if(QZL_JSON AND NOT QZL_JSON_ENGINE_IS_INSIDE)
        target_link_libraries(qzl_io PRIVATE $<INSTALL_INTERFACE:cpprest>)
        string(PREPEND private_libraries "-lcpprest ")
    endif()
elseif(MINGW)
    install(FILES ${QZL_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT base)
endif()

install(EXPORT qzl_io_targets NAMESPACE qzl:: DESTINATION ${package_folder} COMPONENT development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/qzl_io-config.cmake.in
    ${PROJECT_BINARY_DIR}/qzl_io-config.cmake
    INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qzl_io-config-version.cmake
    VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/qzl_io-config.cmake ${PROJECT_BINARY_DIR}/qzl_io-config-version.cmake
    ${PROJECT_SOURCE_DIR}/cmake/QzlUtf8Names.cmake ${PROJECT_SOURCE_DIR}/cmake/utf8-names.manifest
    DESTINATION ${package_folder} COMPONENT development)

# The prefix is found from the pkg-config file's own place, so that an installation can be moved; folders that are
# absolute stay where they are.
set(pc_prefix ${CMAKE_INSTALL_PREFIX})
if(NOT IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    file(RELATIVE_PATH pc_prefix /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
    cmake_path(SET pc_prefix NORMALIZE "${pc_prefix}")
    string(PREPEND pc_prefix "\${pcfiledir}/")
endif()
foreach(folder LIBDIR INCLUDEDIR)
    set(pc_${folder} ${CMAKE_INSTALL_${folder}})
    if(NOT IS_ABSOLUTE "${pc_${folder}}")
        string(PREPEND pc_${folder} "\${prefix}/")
    endif()
endforeach()
configure_file(${PROJECT_SOURCE_DIR}/cmake/qzl_io.pc.in ${PROJECT_BINARY_DIR}/qzl_io.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qzl_io.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
if(QZL_C_INTERFACE)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/qzl_io_c.pc.in ${PROJECT_BINARY_DIR}/qzl_io_c.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/qzl_io_c.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endif()
