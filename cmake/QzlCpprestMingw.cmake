# SPDX-License-Identifier: BSL-1.0
# cpprestsdk's JSON part on MinGW-w64: adds what MinGW lacks and adapts the unpacked sources.

# qzl_adapt(file was becomes): replaces a text in a source file of cpprestsdk once; it is an error if both are missing.
function(qzl_adapt file was becomes)
    set(path ${release}/${file})
    file(READ ${path} text)
    string(FIND "${text}" "${was}" original)
    string(FIND "${text}" "${becomes}" adapted)
    if(NOT original EQUAL -1)
        string(REPLACE "${was}" "${becomes}" text "${text}")
        file(WRITE ${path} "${text}")
    elseif(adapted EQUAL -1)
        message(FATAL_ERROR "cpprestsdk's ${file} holds no '${was}': ${adaptation} does not fit this version")
    endif()
endfunction()

qzl_adapt(include/cpprest/details/cpprest_compat.h "#if _MSC_VER >= 1900" "#if defined(__GNUC__)")
set(c_locale "str, nullptr, utility::details::scoped_c_thread_locale::c_locale()")
qzl_adapt(src/json/json_parsing.cpp "_strtod_l(${c_locale})" "qzl_cpprest::ToDouble(str)")
qzl_adapt(src/json/json_parsing.cpp "_wcstod_l(${c_locale})" "qzl_cpprest::ToDouble(str)")

target_sources(qzl_json_engine PRIVATE ${adaptation}/mingw/to_double.cpp)
target_include_directories(qzl_json_engine SYSTEM BEFORE PUBLIC ${adaptation}/mingw/include)
target_compile_definitions(qzl_json_engine PRIVATE _WIN32_WINNT=0x0601 UNICODE _UNICODE)
target_compile_options(qzl_json_engine PRIVATE -fpermissive)
