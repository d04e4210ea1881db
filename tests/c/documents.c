// SPDX-License-Identifier: BSL-1.0
#include <string.h>

#include "check.h"

static void ANewDocumentIsEmptyAndHasNoError(void) {
    qzl_document* document = NULL;
    CHECK_STATUS(qzl_document_new(&document), QZL_OK);
    CHECK_TEXT(TextIn(document), "");
    CHECK_STATUS(ErrorOf(document).status, QZL_OK);
    CHECK_TEXT(ErrorOf(document).message, "");
    qzl_document_free(document);
}

static void EveryByteComesBack(void) {
    static const char kText[] = "; caf\xC3\xA9\r\n{a = 1\t}\0 tail \xFF";
    qzl_document* document = NULL;
    const char* text = NULL;
    size_t size = 0;
    CHECK_STATUS(qzl_document_new(&document), QZL_OK);
    CHECK_STATUS(qzl_document_parse(document, kText, sizeof kText - 1, NULL, 0), QZL_OK);
    CHECK_STATUS(qzl_document_text(document, &text, &size), QZL_OK);
    CHECK(size == sizeof kText - 1 && memcmp(text, kText, sizeof kText) == 0);
    qzl_document_free(document);
}

static void SaveAndOpenUseNamesInUtf8(void) {
    static const char kName[] = "sz\xC3\xA9ne \xE2\x98\x80.sdl";
    qzl_document* document = Parsed("{a 1}");
    CHECK_STATUS(qzl_document_save(document, kName, Z), QZL_OK);
    qzl_document* copy = NULL;
    CHECK_STATUS(qzl_document_new(&copy), QZL_OK);
    CHECK_STATUS(qzl_document_open(copy, kName, sizeof kName - 1), QZL_OK);
    CHECK_TEXT(TextIn(copy), "{a 1}");
    CHECK_STATUS(qzl_document_open(copy, "no/such/file.sdl", Z), QZL_FILE);
    CHECK(strlen(ErrorOf(copy).message) > 10);
    CHECK_TEXT(TextIn(copy), "");
    CHECK_STATUS(qzl_document_save(document, "no/such/folder/file.sdl", Z), QZL_FILE);
    CHECK(strlen(ErrorOf(document).message) > 10);
    CHECK_TEXT(TextIn(document), "{a 1}");
    qzl_document_free(copy);
    qzl_document_free(document);
}

static void AllMistakesAreToldWithTheirPlaces(void) {
    static const struct {
        uint64_t offset;
        uint32_t line;
        uint32_t column;
        int32_t warning;
        const char* message;
        const char* expected;
        const char* found;
    } kExpected[] = {
        {3, 1, 4, 0, "No token begins like this!", "", "'\xC3\xA9'"},
        {10, 2, 3, 0, "The string is broken by the end of the line!", "a \"", "the string \"sun"},
        {16, 3, 2, 0, "No token begins like this!", "", "'$'"},
        {19, 4, 1, 1, "Nothing is open that this ) could close!", "", "')'"},
        {20, 4, 2, 0, "Block terminator expected!", "a }", "the end of the text"},
    };
    const size_t expected = sizeof kExpected / sizeof *kExpected;
    qzl_document* document = Parsed("{sc\xC3\xA9ne\n  \"sun\n $1\n)");
    size_t count = 0;
    qzl_mistake mistake = {.size = sizeof mistake};
    CHECK_STATUS(qzl_document_check(document, NULL, SIZE_MAX, &count), QZL_OK);
    CHECK_NUMBER(count, expected);
    for (size_t i = 0; i < count && i < expected; ++i) {
        About(kExpected[i].found);
        CHECK_STATUS(qzl_document_mistake(document, i, &mistake), QZL_OK);
        CHECK_STATUS(mistake.status, QZL_MISTAKE);
        CHECK_TEXT(mistake.source, "test.sdl");
        CHECK_NUMBER(mistake.offset, kExpected[i].offset);
        CHECK_NUMBER(mistake.line, kExpected[i].line);
        CHECK_NUMBER(mistake.column, kExpected[i].column);
        CHECK_NUMBER(mistake.is_warning, kExpected[i].warning);
        CHECK_TEXT(mistake.message, kExpected[i].message);
        CHECK_TEXT(mistake.expected, kExpected[i].expected);
        CHECK_TEXT(mistake.found, kExpected[i].found);
        CHECK_TEXT(mistake.suggestion, "");
    }
    About(NULL);
    CHECK(strstr(mistake.rendered, "test.sdl:4:2: error: Block terminator expected!\n  4 | )\n") == mistake.rendered);
    CHECK_STATUS(qzl_document_mistake(document, count, &mistake), QZL_NOT_FOUND);
    CHECK_STATUS(qzl_document_check(document, NULL, 1, &count), QZL_OK);
    CHECK_NUMBER(count, 1);
    qzl_document_free(document);
}

static void FormattingKeepsTheDocument(void) {
    static const struct {
        qzl_layout layout;
        const char* expected;
    } kTable[] = {
        {{sizeof(qzl_layout), QZL_TAB, 0}, "{a\r\n\t{b\r\n\t\t1}}\r\n"},
        {{sizeof(qzl_layout), QZL_TAB, 1}, "{a\n\t{b\n\t\t1}}\n"},
        {{sizeof(qzl_layout), 0, 1}, "{a\n{b\n1}}\n"},
        {{sizeof(qzl_layout), 3, 1}, "{a\n   {b\n      1}}\n"},
    };
    qzl_document* document = Parsed("{a\n{b\n1}}");
    const char* text = NULL;
    for (size_t i = 0; i < sizeof kTable / sizeof *kTable; ++i) {
        About(kTable[i].expected);
        CHECK_STATUS(qzl_document_format(document, &kTable[i].layout, &text, NULL), QZL_OK);
        CHECK_TEXT(text, kTable[i].expected);
    }
    About(NULL);
    CHECK_STATUS(qzl_document_format(document, NULL, &text, NULL), QZL_OK);
    CHECK_TEXT(text, kTable[0].expected);
    CHECK_TEXT(TextIn(document), "{a\n{b\n1}}");
    qzl_document_free(document);

    document = Parsed("{a )\n $");
    CHECK_STATUS(qzl_document_format(document, NULL, &text, NULL), QZL_MISTAKE);
    const qzl_mistake error = ErrorOf(document);
    CHECK_STATUS(error.status, QZL_MISTAKE);
    CHECK_TEXT(error.message, "No token begins like this!");
    CHECK_NUMBER(error.line, 2);
    CHECK_NUMBER(error.column, 2);
    CHECK_NUMBER(error.offset, 6);
    CHECK(strstr(error.rendered, "test.sdl:2:2: error: No token begins like this!") == error.rendered);
    qzl_document_free(document);
}

static void LimitsAreKept(void) {
    qzl_limits limits = {sizeof limits, 5, 3, QZL_UNLIMITED};
    qzl_document* document = Parsed("");
    CHECK_STATUS(qzl_document_limit(document, &limits), QZL_OK);
    CHECK_STATUS(qzl_document_parse(document, "12345", Z, NULL, 0), QZL_OK);
    CHECK_STATUS(qzl_document_parse(document, "123456", Z, NULL, 0), QZL_LIMIT);
    CHECK_TEXT(ErrorOf(document).message, "Source limit exceeded!");
    CHECK_TEXT(TextIn(document), "");
    CHECK_STATUS(qzl_document_limit(document, NULL), QZL_OK);
    CHECK_STATUS(qzl_document_parse(document, "123456", Z, NULL, 0), QZL_OK);
    qzl_document_free(document);
}

static void AFailureIsKeptUntilTheNextCall(void) {
    qzl_document* document = Parsed("{a 1}");
    CHECK_STATUS(qzl_document_remove(document, "b", Z), QZL_NOT_FOUND);
    CHECK_STATUS(ErrorOf(document).status, QZL_NOT_FOUND);
    CHECK_STATUS(ErrorOf(document).status, QZL_NOT_FOUND);
    CHECK_TEXT(TextIn(document), "{a 1}");
    CHECK_STATUS(ErrorOf(document).status, QZL_OK);
    qzl_document_free(document);
}

static void EveryStatusHasItsOwnText(void) {
    for (qzl_status status = QZL_OK; status <= QZL_INTERNAL; ++status) {
        CHECK(strlen(qzl_status_text(status)) > 5);
        CHECK(strcmp(qzl_status_text(status), qzl_status_text(QZL_INTERNAL + 1)) != 0);
        for (qzl_status other = QZL_OK; other < status; ++other)
            CHECK(strcmp(qzl_status_text(status), qzl_status_text(other)) != 0);
    }
    CHECK_TEXT(qzl_status_text(-1), "This is no status.");
    CHECK_TEXT(qzl_version(), QZL_VERSION);
}

void TestDocuments(void) {
    ANewDocumentIsEmptyAndHasNoError();
    EveryByteComesBack();
    SaveAndOpenUseNamesInUtf8();
    AllMistakesAreToldWithTheirPlaces();
    FormattingKeepsTheDocument();
    LimitsAreKept();
    AFailureIsKeptUntilTheNextCall();
    EveryStatusHasItsOwnText();
}
