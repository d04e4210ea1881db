# SPDX-License-Identifier: BSL-1.0
# An overlay port that builds the tree it lies in: vcpkg install qzl-io --overlay-ports=packaging/vcpkg/ports
cmake_path(ABSOLUTE_PATH CURRENT_PORT_DIR NORMALIZE OUTPUT_VARIABLE port)
cmake_path(SET SOURCE_PATH NORMALIZE "${port}/../../../..")

vcpkg_check_features(OUT_FEATURE_OPTIONS FEATURE_OPTIONS
    FEATURES json QZL_JSON)
vcpkg_cmake_configure(
    SOURCE_PATH ${SOURCE_PATH}
    OPTIONS
        ${FEATURE_OPTIONS}
        -DQZL_CPPREST_FROM_SOURCE=OFF
        -DQZL_INSTALL=ON
        -DQZL_BUILD_TESTS=OFF
        -DQZL_BUILD_TOOLS=OFF
        -DQZL_BUILD_EXAMPLES=OFF
    MAYBE_UNUSED_VARIABLES QZL_CPPREST_FROM_SOURCE)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME qzl_io CONFIG_PATH lib/cmake/qzl_io)
vcpkg_fixup_pkgconfig()
vcpkg_copy_pdbs()

file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
file(INSTALL "${CMAKE_CURRENT_LIST_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
vcpkg_install_copyright(FILE_LIST "${SOURCE_PATH}/LICENSE" "${SOURCE_PATH}/THIRD-PARTY-NOTICES.md")
