// SPDX-License-Identifier: BSL-1.0
#include "document.h"

qzl_status qzl_document_open_json(qzl_document* document, const char*, size_t, qzl_json_losses*) {
    return xC::Run(document, [] { return QZL_UNAVAILABLE; });
}

qzl_status qzl_document_parse_json(qzl_document* document, const char*, size_t, qzl_json_losses*) {
    return xC::Run(document, [] { return QZL_UNAVAILABLE; });
}
