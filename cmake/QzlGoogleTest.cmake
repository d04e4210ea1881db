# SPDX-License-Identifier: BSL-1.0
# GTest::gtest, GTest::gmock and GTest::gtest_main: the system's libraries, or for another system or standard
# library the system's sources.
option(QZL_GOOGLETEST_FROM_SOURCE "Build GoogleTest from its sources" ${CMAKE_CROSSCOMPILING})
if(QZL_GOOGLETEST_FROM_SOURCE)
    set(QZL_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest's sources")
    set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
    block() # the setting is for GoogleTest alone
        set(BUILD_SHARED_LIBS OFF)
        add_subdirectory(${QZL_GOOGLETEST_SOURCE} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
    endblock()
    foreach(library gtest gmock gtest_main)
        if(NOT TARGET GTest::${library})
            add_library(GTest::${library} ALIAS ${library})
        endif()
    endforeach()
else()
    find_package(GTest REQUIRED)
endif()
