// SPDX-License-Identifier: BSL-1.0
#include "check.h"

#include <string.h>

// Every call with text, in a row; each may end with QZL_OK or QZL_NO_MEMORY, and handles are freed in any case. Returns
// whether all was done.
static int Everything(void) {
    static const char kJson[] = "{\"a\": [1, \"some text that is too long for the inside of a string\"]}";
    qzl_document* document = NULL;
    qzl_schema* schema = NULL;
    qzl_reader* reader = NULL;
    qzl_token token = {.size = sizeof token};
    qzl_mistake mistake = {.size = sizeof mistake};
    qzl_node node = {.size = sizeof node};
    qzl_status results[16];
    size_t count = 0;
    memset(results, 0, sizeof results);
    size_t calls = 0;
    results[calls++] = qzl_document_new(&document);
    results[calls++] = qzl_schema_new(&schema);
    results[calls++] = qzl_reader_new(&reader);
    if (document && schema && reader) {
        results[calls++] = qzl_schema_parse(schema, "{schema {block a {value int} {others}}}", Z, "s.sdls", Z);
        results[calls++] = qzl_document_parse(document, "{a 1} {lengthy_name_of_a_block {x $ 2}}", Z, "d.sdl", Z);
        results[calls++] = qzl_document_check(document, schema, SIZE_MAX, &count);
        results[calls++] = count ? qzl_document_mistake(document, 0, &mistake) : QZL_OK;
        results[calls++] = qzl_document_find(document, "lengthy_name_of_a_block/x", Z, 0, &node);
        results[calls++] = qzl_document_set_string(document, "a", Z, "a text beyond what strings hold inside", Z);
        results[calls++] = qzl_document_text(document, NULL, NULL);
        results[calls++] = qzl_document_parse_json(document, kJson, Z, NULL);
        results[calls++] = qzl_document_format(document, NULL, NULL, NULL);
        results[calls++] = qzl_reader_parse(reader, "{a 1 \"text that is long enough to be allocated\"", Z, "r", Z);
        while ((results[calls] = qzl_reader_next(reader, &token)) == QZL_OK)
            ;
        ++calls;
    }
    int done = calls > 4;
    for (size_t i = 0; i < calls; ++i) {
        const qzl_status status = results[i];
        CHECK(status == QZL_OK || status == QZL_NO_MEMORY || status == QZL_UNAVAILABLE || status == QZL_MISTAKE ||
              status == QZL_NOT_FOUND || status == QZL_END);
        done = done && status != QZL_NO_MEMORY;
    }
    qzl_reader_free(reader);
    qzl_schema_free(schema);
    qzl_document_free(document);
    return done;
}

void TestMemory(void) {
    const long most = 20000;
    CHECK(Everything());
    if (!FailAllocations(0)) {
        Skip("allocations of the library cannot be made to fail here");
        return;
    }
    long first = 1;
    for (; first < most; ++first) {
        FailAllocations(first);
        const int done = Everything();
        FailAllocations(0);
        if (done)
            break;
    }
    CHECK(first > 100 && first < most); // the scenario allocates that often, and works again once there is memory
}
