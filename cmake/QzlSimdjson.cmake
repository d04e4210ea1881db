# SPDX-License-Identifier: BSL-1.0
# qzl_json_engine: simdjson, for the sources of qzl_io only, made from Debian's source package on both systems.
set(QZL_SIMDJSON_FOLDER ${PROJECT_BINARY_DIR}/simdjson CACHE PATH "Where simdjson's source package is kept")
execute_process(COMMAND ${PROJECT_SOURCE_DIR}/cmake/fetch-source
        simdjson libsimdjson-dev singleheader/simdjson.cpp ${QZL_SIMDJSON_FOLDER}
    OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "simdjson's sources are not available\n${output}")
endif()
set(QZL_JSON_ENGINE_IS_INSIDE ON)

set(sources ${QZL_SIMDJSON_FOLDER}/source/singleheader)
add_library(qzl_json_engine OBJECT EXCLUDE_FROM_ALL ${sources}/simdjson.cpp)
target_include_directories(qzl_json_engine SYSTEM PUBLIC ${sources})
target_compile_features(qzl_json_engine PRIVATE cxx_std_20)
target_compile_options(qzl_json_engine PRIVATE -w)
set_target_properties(qzl_json_engine PROPERTIES UNITY_BUILD OFF)
