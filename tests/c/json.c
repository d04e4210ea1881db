// SPDX-License-Identifier: BSL-1.0
#include <stdio.h>
#include <string.h>

#include "check.h"

static int HasJson(void) {
    qzl_document* document = Parsed("");
    const qzl_status status = qzl_document_parse_json(document, "{}", Z, NULL);
    qzl_document_free(document);
    if (status == QZL_UNAVAILABLE)
        Skip("the library was built without JSON");
    return status != QZL_UNAVAILABLE;
}

static void JsonBecomesADocument(void) {
    qzl_document* document = Parsed("{old}");
    int64_t port = 0;
    qzl_json_losses losses = {.size = sizeof losses};
    CHECK_STATUS(qzl_document_parse_json(document,
                                         "{\"server\": {\"port\": 8080, \"on\": true, \"no word\": 1.1, "
                                         "\"list\": [null]}}",
                                         Z, &losses),
                 QZL_OK);
    CHECK_STATUS(qzl_document_get_integer(document, "server/port", Z, &port), QZL_OK);
    CHECK_NUMBER(port, 8080);
    CHECK_STATUS(qzl_document_parse_json(document, "{\"no word\": [true, 1.1, null, 4294967295]}", Z, &losses), QZL_OK);
    CHECK_NUMBER(losses.names, 1);
    CHECK_NUMBER(losses.booleans, 1);
    CHECK_NUMBER(losses.floats, 1);
    CHECK_NUMBER(losses.nulls, 1);
    CHECK_NUMBER(losses.integers, 1);
    CHECK_NUMBER(losses.texts, 0);
    CHECK_TEXT(losses.first_name, "/no word");
    qzl_document_free(document);
}

static void RefusedJsonLeavesTheDocument(void) {
    static const struct {
        const char* text;
        qzl_status status;
    } kTable[] = {
        {"", QZL_MISTAKE},
        {"{\"a\": }", QZL_MISTAKE},
        {"[1,]", QZL_MISTAKE},
        {"{\"a\": 1} x", QZL_MISTAKE},
        {"[[[[1]]]]", QZL_LIMIT},
        {"\xFF\xFE", QZL_MISTAKE},
        {"[\"123456789012345678901234567890\"]", QZL_LIMIT},
    };
    qzl_limits limits = {sizeof limits, 30, QZL_UNLIMITED, 3};
    qzl_document* document = Parsed("{old}");
    CHECK_STATUS(qzl_document_limit(document, &limits), QZL_OK);
    for (size_t i = 0; i < sizeof kTable / sizeof *kTable; ++i) {
        About(kTable[i].text);
        CHECK_STATUS(qzl_document_parse_json(document, kTable[i].text, Z, NULL), kTable[i].status);
        CHECK(strlen(ErrorOf(document).message) > 5);
        CHECK_TEXT(TextIn(document), "{old}");
    }
    CHECK_STATUS(qzl_document_open_json(document, "no/such/file.json", Z, NULL), QZL_FILE);
    qzl_document_free(document);
}

static void JsonFilesAreOpened(void) {
    qzl_document* document = Parsed("");
    FILE* file = fopen("c_test.json", "wb");
    CHECK(file != NULL);
    if (file) {
        CHECK(fputs("{\"a\": [1, \"x\"]}", file) >= 0);
        fclose(file);
    }
    CHECK_STATUS(qzl_document_open_json(document, "c_test.json", Z, NULL), QZL_OK);
    const char* text = NULL;
    CHECK_STATUS(qzl_document_get_string(document, "a/1", Z, &text, NULL), QZL_OK);
    CHECK_TEXT(text, "x");
    qzl_document_free(document);
}

void TestJson(void) {
    if (!HasJson())
        return;
    JsonBecomesADocument();
    RefusedJsonLeavesTheDocument();
    JsonFilesAreOpened();
}
