// SPDX-License-Identifier: BSL-1.0
#include <stdlib.h>
#include <string.h>

#include "check.h"

static void NullHandlesAreRefused(void) {
    qzl_mistake mistake = {.size = sizeof mistake};
    qzl_node node = {.size = sizeof node};
    qzl_token token = {.size = sizeof token};
    const char* text = NULL;
    size_t size = 0;
    int32_t flag = 0;
    int64_t integer = 0;
    double number = 0;
    const qzl_status kResults[] = {
        qzl_document_new(NULL),
        qzl_document_error(NULL, &mistake),
        qzl_document_limit(NULL, NULL),
        qzl_document_open(NULL, "a", 1),
        qzl_document_parse(NULL, "a", 1, NULL, 0),
        qzl_document_open_json(NULL, "a", 1, NULL),
        qzl_document_parse_json(NULL, "1", 1, NULL),
        qzl_document_save(NULL, "a", 1),
        qzl_document_text(NULL, &text, &size),
        qzl_document_format(NULL, NULL, &text, &size),
        qzl_document_check(NULL, NULL, 1, &size),
        qzl_document_mistake(NULL, 0, &mistake),
        qzl_document_count(NULL, "a", 1, &size),
        qzl_document_find(NULL, "a", 1, 0, &node),
        qzl_document_get_bool(NULL, "a", 1, &flag),
        qzl_document_get_integer(NULL, "a", 1, &integer),
        qzl_document_get_number(NULL, "a", 1, &number),
        qzl_document_get_string(NULL, "a", 1, &text, &size),
        qzl_document_set_bool(NULL, "a", 1, 1),
        qzl_document_set_integer(NULL, "a", 1, 1),
        qzl_document_set_number(NULL, "a", 1, 1),
        qzl_document_set_string(NULL, "a", 1, "b", 1),
        qzl_document_set_word(NULL, "a", 1, "b", 1),
        qzl_document_insert(NULL, "a", 1, QZL_AFTER, "b", 1),
        qzl_document_rename(NULL, "a", 1, "b", 1),
        qzl_document_remove(NULL, "a", 1),
        qzl_schema_new(NULL),
        qzl_schema_error(NULL, &mistake),
        qzl_schema_open(NULL, "a", 1),
        qzl_schema_parse(NULL, "a", 1, NULL, 0),
        qzl_schema_mistake(NULL, 0, &mistake),
        qzl_reader_new(NULL),
        qzl_reader_error(NULL, &mistake),
        qzl_reader_limit(NULL, NULL),
        qzl_reader_open(NULL, "a", 1),
        qzl_reader_parse(NULL, "a", 1, NULL, 0),
        qzl_reader_next(NULL, &token),
        qzl_reader_skip_block(NULL),
        qzl_reader_place(NULL, NULL, NULL, NULL),
    };
    for (size_t i = 0; i < sizeof kResults / sizeof *kResults; ++i)
        CHECK_STATUS(kResults[i], QZL_BAD_ARGUMENT);
    qzl_document_free(NULL);
    qzl_schema_free(NULL);
    qzl_reader_free(NULL);
}

static void NullTextsAndTargetsAreRefused(void) {
    qzl_document* document = Parsed("{a 1}");
    const qzl_status kResults[] = {
        qzl_document_open(document, NULL, 1),
        qzl_document_open(document, NULL, 0),
        qzl_document_open(document, "", Z),
        qzl_document_open(document, "a\0b", 3),
        qzl_document_save(document, NULL, Z),
        qzl_document_parse(document, NULL, 1, NULL, 0),
        qzl_document_parse(document, NULL, Z, NULL, 0),
        qzl_document_parse(document, "{b}", Z, NULL, 1),
        qzl_document_parse_json(document, NULL, 1, NULL),
        qzl_document_count(document, "a", Z, NULL),
        qzl_document_count(document, NULL, 1, NULL),
        qzl_document_get_bool(document, "a", Z, NULL),
        qzl_document_get_integer(document, "a", Z, NULL),
        qzl_document_get_number(document, "a", Z, NULL),
        qzl_document_get_number(document, NULL, 9, NULL),
        qzl_document_set_string(document, "a", Z, NULL, 1),
        qzl_document_set_word(document, "a", Z, NULL, 1),
        qzl_document_insert(document, "a", Z, QZL_AFTER, NULL, 1),
        qzl_document_insert(document, "a", Z, -1, "1", Z),
        qzl_document_rename(document, "a", Z, NULL, 1),
        qzl_document_find(document, "a", Z, 0, NULL),
        qzl_document_mistake(document, 0, NULL),
        qzl_document_error(document, NULL),
    };
    for (size_t i = 0; i < sizeof kResults / sizeof *kResults; ++i)
        CHECK_STATUS(kResults[i], QZL_BAD_ARGUMENT);
    CHECK_TEXT(TextIn(document), "{a 1}");
    CHECK_STATUS(qzl_document_get_string(document, "a", Z, NULL, NULL), QZL_WRONG_KIND);
    CHECK_STATUS(qzl_document_text(document, NULL, NULL), QZL_OK);
    qzl_document_free(document);
}

// Structures of callers that were compiled with another version of the header.
static void StructuresOfOtherSizesAreTakenOrRefused(void) {
    typedef struct {
        qzl_node node;
        unsigned char later[24];
    } eLaterNode;
    static const size_t kWrong[] = {0, 1, sizeof(size_t), sizeof(qzl_node) - 1, 4097, SIZE_MAX};
    qzl_document* document = Parsed("{a 1}");
    eLaterNode node;
    for (size_t i = 0; i < sizeof kWrong / sizeof *kWrong; ++i) {
        memset(&node, 0x55, sizeof node);
        node.node.size = kWrong[i];
        CHECK_STATUS(qzl_document_find(document, "a", Z, 0, &node.node), QZL_BAD_ARGUMENT);
        CHECK(node.node.kind == 0x55555555);
    }
    memset(&node, 0x55, sizeof node);
    node.node.size = sizeof node;
    CHECK_STATUS(qzl_document_find(document, "a", Z, 0, &node.node), QZL_OK);
    CHECK(node.node.size == sizeof node && node.node.kind == QZL_KIND_BLOCK);
    for (size_t i = 0; i < sizeof node.later; ++i)
        CHECK_NUMBER(node.later[i], 0);
    node.node.size = sizeof(qzl_node);
    node.later[0] = 7;
    CHECK_STATUS(qzl_document_find(document, "a", Z, 0, &node.node), QZL_OK);
    CHECK_NUMBER(node.later[0], 7);

    struct {
        qzl_limits limits;
        uint64_t later;
    } limits = {{sizeof limits, 100, 100, 100}, 0};
    CHECK_STATUS(qzl_document_limit(document, &limits.limits), QZL_OK);
    limits.later = 1;
    CHECK_STATUS(qzl_document_limit(document, &limits.limits), QZL_BAD_ARGUMENT);
    limits.limits.size = 8;
    CHECK_STATUS(qzl_document_limit(document, &limits.limits), QZL_BAD_ARGUMENT);

    static const qzl_layout kWrongLayouts[] = {
        {0, 1, 1},
        {sizeof(qzl_layout), -2, 1},
        {sizeof(qzl_layout), 17, 1},
        {sizeof(qzl_layout), INT32_MAX, 1},
        {sizeof(qzl_layout), 1, 2},
    };
    for (size_t i = 0; i < sizeof kWrongLayouts / sizeof *kWrongLayouts; ++i)
        CHECK_STATUS(qzl_document_format(document, &kWrongLayouts[i], NULL, NULL), QZL_BAD_ARGUMENT);
    qzl_document_free(document);
}

// Sizes that no text has are refused before a byte is read.
static void ImpossibleSizesAreRefused(void) {
    qzl_document* document = Parsed("{a *}");
    qzl_reader* reader = NULL;
    CHECK_STATUS(qzl_reader_new(&reader), QZL_OK);
    CHECK_STATUS(qzl_document_parse(document, "1", (size_t)PTRDIFF_MAX + 1, NULL, 0), QZL_BAD_ARGUMENT);
    CHECK_STATUS(qzl_document_parse(document, "1", SIZE_MAX - 1, NULL, 0), QZL_BAD_ARGUMENT);
    CHECK_STATUS(qzl_document_parse(document, "1", PTRDIFF_MAX, NULL, 0), QZL_NO_MEMORY);
    CHECK_STATUS(qzl_document_parse(document, "1", 1, "a", PTRDIFF_MAX), QZL_NO_MEMORY);
    CHECK_STATUS(qzl_reader_parse(reader, "1", SIZE_MAX - 1, NULL, 0), QZL_BAD_ARGUMENT);
    CHECK_STATUS(qzl_reader_parse(reader, "1", PTRDIFF_MAX, NULL, 0), QZL_NO_MEMORY);
    CHECK_TEXT(ErrorOf(document).message, qzl_status_text(QZL_NO_MEMORY));
    CHECK_TEXT(TextIn(document), "{a *}");
    qzl_reader_free(reader);
    qzl_document_free(document);
}

static void AllCallsWith(qzl_document* document, const char* text, size_t size) {
    qzl_mistake mistake = {.size = sizeof mistake};
    qzl_node node = {.size = sizeof node};
    size_t count = 0;
    qzl_document_check(document, NULL, 3, &count);
    for (size_t i = 0; i <= count; ++i)
        qzl_document_mistake(document, i, &mistake);
    qzl_document_format(document, NULL, NULL, NULL);
    qzl_document_count(document, text, size, &count);
    qzl_document_find(document, "*", Z, 0, &node);
    qzl_document_find(document, "0", Z, 0, &node);
    qzl_document_set_string(document, "0", Z, text, size);
    qzl_document_set_word(document, "0", Z, text, size);
    qzl_document_insert(document, "", 0, QZL_WITHIN, text, size);
    qzl_document_rename(document, "*", Z, text, size);
    qzl_document_remove(document, "*", Z);
    qzl_document_parse_json(document, text, size, NULL);
}

// Any bytes, at every call that takes a text: nothing but statuses, and the handle stays good.
static void AnyBytesAreTaken(void) {
    static const char kPieces[] = "{}()\"\\;#%=\n\r\t 019.-+eE/*[]a\xC3\xA9\xFF\xEF\xBB\xBF";
    const unsigned rounds = 300;
    uint32_t random = 12345;
    qzl_reader* reader = NULL;
    CHECK_STATUS(qzl_reader_new(&reader), QZL_OK);
    for (unsigned round = 0; round < rounds; ++round) {
        char text[64];
        for (size_t i = 0; i < sizeof text; ++i) {
            random = random * 1664525u + 1013904223u;
            text[i] = kPieces[(random >> 16) % sizeof kPieces]; // its NUL among them
        }
        const size_t size = (random >> 8) % sizeof text;
        qzl_document* document = NULL;
        CHECK_STATUS(qzl_document_new(&document), QZL_OK);
        CHECK_STATUS(qzl_document_parse(document, text, size, text, size), QZL_OK);
        AllCallsWith(document, text, size);
        CHECK_STATUS(qzl_document_parse(document, "{a}", Z, NULL, 0), QZL_OK);
        CHECK_TEXT(TextIn(document), "{a}");
        qzl_document_free(document);

        qzl_token token = {.size = sizeof token};
        qzl_status status = qzl_reader_parse(reader, text, size, NULL, 0);
        CHECK_STATUS(status, QZL_OK);
        for (size_t i = 0; i <= size + 1 && status == QZL_OK; ++i)
            status = qzl_reader_next(reader, &token);
        CHECK(status == QZL_END || status == QZL_MISTAKE);
    }
    qzl_reader_free(reader);
}

static void DepthTakesNoStack(void) {
    const size_t depth = 200000;
    char* text = malloc(depth);
    CHECK(text != NULL);
    if (!text)
        return;
    memset(text, '{', depth);
    qzl_document* document = NULL;
    size_t count = 0;
    CHECK_STATUS(qzl_document_new(&document), QZL_OK);
    CHECK_STATUS(qzl_document_parse(document, text, depth, NULL, 0), QZL_OK);
    CHECK_STATUS(qzl_document_check(document, NULL, 10, &count), QZL_OK);
    CHECK_NUMBER(count, 1);
    qzl_document_free(document);
    free(text);
}

void TestHostile(void) {
    NullHandlesAreRefused();
    NullTextsAndTargetsAreRefused();
    StructuresOfOtherSizesAreTakenOrRefused();
    ImpossibleSizesAreRefused();
    AnyBytesAreTaken();
    DepthTakesNoStack();
}
