# SPDX-License-Identifier: BSL-1.0
# cmake -DSOURCE=FOLDER -DVERSION=TEXT -DTEMPLATE=FILE -DOUTPUT=FILE -P QzlDescribe.cmake: writes OUTPUT from TEMPLATE, with the
# version in QZL_VERSION_TEXT: in a checkout with what git says of it, as in "1.0.0 (v1.0.0-3-g0123456)". An OUTPUT
# that would not change is left alone.
set(QZL_VERSION_TEXT ${VERSION})
find_program(git git)
if(git AND EXISTS ${SOURCE}/.git)
    execute_process(COMMAND ${git} -C ${SOURCE} describe --always --dirty --tags
        OUTPUT_VARIABLE described OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE result)
    if(result EQUAL 0 AND NOT described STREQUAL "v${VERSION}")
        string(APPEND QZL_VERSION_TEXT " (${described})")
    endif()
endif()
configure_file(${TEMPLATE} ${OUTPUT} @ONLY)
