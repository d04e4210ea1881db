# SPDX-License-Identifier: BSL-1.0
# qzl_utf8_names(TARGET): on Windows 10 1903 and later, the narrow names and the other narrow texts of this program are
# UTF-8, and the functions of the system take names of any length if the machine's settings allow it. It links a manifest
# into the program; one that has a manifest of its own adds the two settings there instead. Elsewhere it changes nothing,
# as narrow names are bytes.
function(qzl_utf8_names target)
    get_target_property(type ${target} TYPE)
    if(NOT type STREQUAL EXECUTABLE)
        message(FATAL_ERROR "qzl_utf8_names: ${target} is not a program; only the manifest of a program counts")
    endif()
    if(NOT WIN32)
        return()
    endif()
    set(manifest ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/utf8-names.manifest)
    if(MSVC)
        target_sources(${target} PRIVATE ${manifest})
        return()
    endif()
    set(resource ${CMAKE_CURRENT_BINARY_DIR}/${target}-utf8-names.rc)
    file(CONFIGURE OUTPUT ${resource} CONTENT "1 24 \"@manifest@\"\n" @ONLY)
    target_sources(${target} PRIVATE ${resource})
    set_property(SOURCE ${resource} APPEND PROPERTY OBJECT_DEPENDS ${manifest})
endfunction()
