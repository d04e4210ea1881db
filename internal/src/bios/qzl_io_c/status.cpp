// SPDX-License-Identifier: BSL-1.0
#include <qzl_io_c.h>

const char* qzl_status_text(qzl_status status) {
    switch (status) {
    case QZL_OK:
        return "It is done.";
    case QZL_END:
        return "Nothing more is to be read.";
    case QZL_NOT_FOUND:
        return "Nothing is at this place.";
    case QZL_WRONG_KIND:
        return "The value is of another kind, or does not fit.";
    case QZL_REFUSED:
        return "The document cannot be edited like this.";
    case QZL_MISTAKE:
        return "The text has a mistake.";
    case QZL_LIMIT:
        return "The text exceeds a limit.";
    case QZL_FILE:
        return "The file could not be opened, read or written.";
    case QZL_BAD_ARGUMENT:
        return "An argument is wrong.";
    case QZL_NO_MEMORY:
        return "There is not enough memory.";
    case QZL_UNAVAILABLE:
        return "The library was built without JSON.";
    case QZL_INTERNAL:
        return "The library has made a mistake.";
    default:
        return "This is no status.";
    }
}

const char* qzl_version(void) {
    return QZL_VERSION;
}
