# SPDX-License-Identifier: BSL-1.0
# Functions for declaring the targets of a folder.
include(CheckCXXCompilerFlag)

set(QZL_WARNINGS
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast -Wcast-align
    -Woverloaded-virtual -Wformat=2 -Wundef -Wimplicit-fallthrough -Wextra-semi
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>) # GCC 12 mistakes the standard library's string sums for overlapping copies

set(QZL_C_WARNINGS
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wcast-align -Wformat=2 -Wundef
    -Wimplicit-fallthrough -Wstrict-prototypes -Wmissing-prototypes -Wold-style-definition)
set(QZL_WARNING_IS_ERROR -Werror)
set(QZL_DIALECT)
if(MSVC)
    set(QZL_WARNINGS /W4)
    set(QZL_C_WARNINGS /W4)
    set(QZL_WARNING_IS_ERROR /WX)
    set(QZL_DIALECT /utf-8 $<$<COMPILE_LANGUAGE:CXX>:/permissive-> $<$<COMPILE_LANGUAGE:CXX>:/Zc:__cplusplus>)
endif()

# For Windows GCC takes the stack for aligned to vectors of 32 bytes, which it is not. The assembler can replace the
# instructions for aligned vectors; where it cannot, AVX2 is not used.
set(QZL_VECTOR_OPTIONS)
set(QZL_VECTOR_DEFINITIONS)
if(MINGW AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    check_cxx_compiler_flag(-Wa,-muse-unaligned-vector-move QZL_UNALIGNED_VECTOR_MOVES)
    if(QZL_UNALIGNED_VECTOR_MOVES)
        set(QZL_VECTOR_OPTIONS -Wa,-muse-unaligned-vector-move)
    else()
        set(QZL_VECTOR_DEFINITIONS QZL_IO_WITHOUT_AVX2)
    endif()
endif()

# qzl_own_target(target): a target that is compiled from our own sources with our warnings.
function(qzl_own_target target)
    target_compile_options(${target} PRIVATE
        $<$<COMPILE_LANGUAGE:C,CXX>:${QZL_DIALECT}>
        $<$<COMPILE_LANGUAGE:CXX>:${QZL_WARNINGS}>
        $<$<COMPILE_LANGUAGE:CXX>:${QZL_VECTOR_OPTIONS}>
        $<$<COMPILE_LANGUAGE:C>:${QZL_C_WARNINGS}>
        $<$<AND:$<COMPILE_LANGUAGE:C,CXX>,$<BOOL:${QZL_WARNINGS_AS_ERRORS}>>:${QZL_WARNING_IS_ERROR}>)
    target_compile_definitions(${target} PRIVATE ${QZL_VECTOR_DEFINITIONS})
    if(QZL_SANITIZE)
        # Clang links the sanitizers' part for C++, which the libraries need, into no program in C.
        set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX)
    endif()
endfunction()

# qzl_add_library(name [LEAVE_OUT regex]): the library of the calling folder, shared or static by BUILD_SHARED_LIBS,
# with <name/export.h> and every source of the folder and of its folder for the platform, except sources whose path in
# the folder matches.
function(qzl_add_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" LEAVE_OUT "")
    file(GLOB sources RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} CONFIGURE_DEPENDS *.cpp streams/*.cpp sdl/*.cpp document/*.cpp schema/*.cpp json/*.cpp files/*.cpp machine/*.cpp
        platform/${QZL_PLATFORM}/*.cpp)
    if(arg_LEAVE_OUT)
        list(FILTER sources EXCLUDE REGEX ${arg_LEAVE_OUT})
    endif()
    add_library(${name} ${sources})
    qzl_own_target(${name})
    target_compile_features(${name} PUBLIC cxx_std_20)
    if(NOT MSVC)
        target_compile_options(${name} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-fno-semantic-interposition>)
    endif()
    if(QZL_COVERAGE STREQUAL "libraries")
        target_compile_options(${name} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:--coverage> $<$<COMPILE_LANGUAGE:CXX>:-O0>
            $<$<COMPILE_LANGUAGE:CXX>:-fprofile-update=atomic>)
        target_link_options(${name} PRIVATE --coverage)
    endif()
    target_include_directories(${name} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    set_target_properties(${name} PROPERTIES
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}
        INSTALL_RPATH "$ORIGIN")
    string(TOUPPER ${name} upper)
    generate_export_header(${name}
        BASE_NAME ${upper}
        EXPORT_MACRO_NAME ${upper}_API
        EXPORT_FILE_NAME ${PROJECT_BINARY_DIR}/include/${name}/export.h)
    if(NOT BUILD_SHARED_LIBS)
        target_compile_definitions(${name} PUBLIC ${upper}_STATIC_DEFINE)
    elseif(QZL_PLATFORM STREQUAL posix)
        set(exports ${CMAKE_CURRENT_BINARY_DIR}/exports.map)
        configure_file(exports.map.in ${exports} @ONLY)
        target_link_options(${name} PRIVATE -Wl,-Bsymbolic-functions -Wl,--version-script=${exports})
        set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS ${exports})
    else()
        if(MINGW)
            set_target_properties(${name} PROPERTIES PREFIX "" IMPORT_PREFIX "lib")
        endif()
        configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${CMAKE_CURRENT_BINARY_DIR}/version.rc @ONLY)
        target_sources(${name} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/version.rc)
    endif()
endfunction()

# qzl_add_optional_folder(folder option): adds the folder's targets if the option is on and the folder has any.
function(qzl_add_optional_folder folder option)
    if(${option} AND EXISTS ${PROJECT_SOURCE_DIR}/${folder}/CMakeLists.txt)
        add_subdirectory(${folder})
    endif()
endfunction()

# qzl_examples_definition(target): defines the folders of JSON documents for the target's sources: QZL_EXAMPLES_DIR (the
# examples of this tree) and QZL_DOCUMENTS_DIR (real documents, which may be missing).
set(QZL_DOCUMENTS_DIR ${PROJECT_SOURCE_DIR}/../shared/data CACHE PATH "Folder with further JSON documents to test with")
function(qzl_examples_definition target)
    cmake_path(ABSOLUTE_PATH QZL_DOCUMENTS_DIR NORMALIZE OUTPUT_VARIABLE documents)
    set(root)
    if(WIN32 AND CMAKE_CROSSCOMPILING)
        set(root "Z:")
    endif()
    target_compile_definitions(${target} PRIVATE
        QZL_EXAMPLES_DIR="${root}${PROJECT_SOURCE_DIR}/examples" QZL_DOCUMENTS_DIR="${root}${documents}")
endfunction()
