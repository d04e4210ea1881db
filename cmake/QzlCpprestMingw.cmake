# The JSON part of cpprestsdk as a static library: Debian's source package, downloaded and adapted in the build folder.
set(adaptation ${PROJECT_SOURCE_DIR}/cmake/cpprest-mingw)
set(QZL_CPPREST_FOLDER ${PROJECT_BINARY_DIR}/cpprestsdk CACHE PATH "Where cpprestsdk's source package is kept")

execute_process(COMMAND ${adaptation}/fetch-source ${QZL_CPPREST_FOLDER}
    OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "cpprestsdk's sources are not at hand\n${output}")
endif()

# qzl_adapt(file was becomes): replaces a text in a source file of cpprestsdk once; it is an error if both are missing.
function(qzl_adapt file was becomes)
    set(path ${QZL_CPPREST_FOLDER}/source/Release/${file})
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

set(release ${QZL_CPPREST_FOLDER}/source/Release)
add_library(cpprestsdk_json STATIC EXCLUDE_FROM_ALL
    ${release}/src/json/json.cpp
    ${release}/src/json/json_parsing.cpp
    ${release}/src/json/json_serialization.cpp
    ${release}/src/utilities/asyncrt_utils.cpp
    ${adaptation}/to_double.cpp)
target_include_directories(cpprestsdk_json SYSTEM PUBLIC ${adaptation}/include ${release}/include)
target_compile_definitions(cpprestsdk_json
    PUBLIC _NO_ASYNCRTIMP _NO_PPLXIMP
    PRIVATE _WIN32_WINNT=0x0601 UNICODE _UNICODE)
target_compile_options(cpprestsdk_json PRIVATE -fpermissive -w)
