// SPDX-License-Identifier: BSL-1.0
#include <math.h>
#include <string.h>

#include "check.h"

static const char kScene[] = "{scene ; made by hand\n"
                             "  {#x light \"sun\\n\" 1.5}\n"
                             "  {light \"lamp\"\n"
                             "    {power 2} {on 1} {sum (+ 1 2)} {big 9007199254740993}\n"
                             "  }\n"
                             "  {none}\n"
                             "  mode = fast {op *}\n"
                             "}\n";

static void PartsAreFoundByPath(void) {
    static const struct {
        const char* path;
        size_t index;
        qzl_status status;
        int32_t kind;
        uint32_t line;
        uint32_t column;
        uint64_t values;
        uint64_t blocks;
        const char* name;
        const char* mark;
        const char* text;
    } kTable[] = {
        {"", 0, QZL_OK, QZL_KIND_DOCUMENT, 1, 1, 0, 1, "", "", kScene},
        {"scene/light", 0, QZL_OK, QZL_KIND_BLOCK, 2, 3, 2, 0, "light", "x", "{#x light \"sun\\n\" 1.5}"},
        {"scene/light/power", 0, QZL_OK, QZL_KIND_BLOCK, 4, 5, 1, 0, "power", "", "{power 2}"},
        {"scene/*", 2, QZL_OK, QZL_KIND_BLOCK, 6, 3, 0, 0, "none", "", "{none}"},
        {"scene/*", 4, QZL_NOT_FOUND, 0, 0, 0, 0, 0, "", "", ""},
        {"scene/mode", 0, QZL_OK, QZL_KIND_WORD, 7, 3, 0, 0, "mode", "", "mode"},
        {"scene/light[1]/sum/0", 0, QZL_OK, QZL_KIND_CALCULATION, 4, 27, 0, 0, "", "", "(+ 1 2)"},
        {"scene/light/1", 0, QZL_OK, QZL_KIND_FLOAT, 2, 21, 0, 0, "", "", "1.5"},
        {"scene/light/0", 1, QZL_OK, QZL_KIND_STRING, 3, 10, 0, 0, "", "", "\"lamp\""},
        {"scene/op/0", 0, QZL_OK, QZL_KIND_OPERATOR, 7, 19, 0, 0, "", "", "*"},
        {"nothing", 0, QZL_NOT_FOUND, 0, 0, 0, 0, 0, "", "", ""},
        {"a//b", 0, QZL_BAD_ARGUMENT, 0, 0, 0, 0, 0, "", "", ""},
        {"[", 0, QZL_BAD_ARGUMENT, 0, 0, 0, 0, 0, "", "", ""},
    };
    qzl_document* document = Parsed(kScene);
    for (size_t i = 0; i < sizeof kTable / sizeof *kTable; ++i) {
        qzl_node node = {.size = sizeof node};
        About(kTable[i].path);
        CHECK_STATUS(qzl_document_find(document, kTable[i].path, Z, kTable[i].index, &node), kTable[i].status);
        CHECK_STATUS(ErrorOf(document).status, kTable[i].status);
        if (kTable[i].status != QZL_OK)
            continue;
        CHECK_NUMBER(node.kind, kTable[i].kind);
        CHECK_NUMBER(node.line, kTable[i].line);
        CHECK_NUMBER(node.column, kTable[i].column);
        CHECK_NUMBER(node.values, kTable[i].values);
        CHECK_NUMBER(node.blocks, kTable[i].blocks);
        CHECK_TEXT(node.name, kTable[i].name);
        CHECK_TEXT(node.mark, kTable[i].mark);
        CHECK_TEXT(node.text, kTable[i].text);
        CHECK(node.text_size == strlen(kTable[i].text));
        CHECK(node.offset + node.text_size <= sizeof kScene);
        CHECK(memcmp(kScene + node.offset, node.text, node.text_size) == 0);
    }
    qzl_document_free(document);
}

static void CountsFollowEdits(void) {
    qzl_document* document = Parsed("{a 1}{a 2}{b 3}");
    size_t count = 0;
    CHECK_STATUS(qzl_document_count(document, "a", Z, &count), QZL_OK);
    CHECK_NUMBER(count, 2);
    CHECK_STATUS(qzl_document_rename(document, "b", Z, "a", Z), QZL_OK);
    CHECK_STATUS(qzl_document_count(document, "a", Z, &count), QZL_OK);
    CHECK_NUMBER(count, 3);
    CHECK_STATUS(qzl_document_remove(document, "a[1]", Z), QZL_OK);
    CHECK_STATUS(qzl_document_count(document, "a", Z, &count), QZL_OK);
    CHECK_NUMBER(count, 2);
    CHECK_STATUS(qzl_document_parse(document, "{c}", Z, NULL, 0), QZL_OK);
    CHECK_STATUS(qzl_document_count(document, "a", Z, &count), QZL_OK);
    CHECK_NUMBER(count, 0);
    qzl_document_free(document);
}

static void ValuesAreReadAsWhatTheyAre(void) {
    static const struct {
        const char* path;
        qzl_status asBool, asInteger, asNumber, asString;
        int64_t integer;
        double number;
        const char* string;
    } kTable[] = {
        {"scene/light/0", QZL_WRONG_KIND, QZL_WRONG_KIND, QZL_WRONG_KIND, QZL_OK, 0, 0, "sun\n"},
        {"scene/light", QZL_WRONG_KIND, QZL_WRONG_KIND, QZL_WRONG_KIND, QZL_OK, 0, 0, "sun\n"},
        {"scene/light/1", QZL_WRONG_KIND, QZL_WRONG_KIND, QZL_OK, QZL_WRONG_KIND, 0, 1.5, ""},
        {"scene/light[1]/power", QZL_OK, QZL_OK, QZL_OK, QZL_WRONG_KIND, 2, 2, ""},
        {"scene/light[1]/on", QZL_OK, QZL_OK, QZL_OK, QZL_WRONG_KIND, 1, 1, ""},
        {"scene/light[1]/sum", QZL_WRONG_KIND, QZL_WRONG_KIND, QZL_OK, QZL_WRONG_KIND, 0, 3, ""},
        {"scene/light[1]/big", QZL_OK, QZL_OK, QZL_OK, QZL_WRONG_KIND, 9007199254740993, 9007199254740992.0, ""},
        {"scene/mode", QZL_WRONG_KIND, QZL_WRONG_KIND, QZL_WRONG_KIND, QZL_OK, 0, 0, "fast"},
        {"scene/none", QZL_NOT_FOUND, QZL_NOT_FOUND, QZL_NOT_FOUND, QZL_NOT_FOUND, 0, 0, ""},
        {"scene/light[7]", QZL_NOT_FOUND, QZL_NOT_FOUND, QZL_NOT_FOUND, QZL_NOT_FOUND, 0, 0, ""},
        {"/", QZL_BAD_ARGUMENT, QZL_BAD_ARGUMENT, QZL_BAD_ARGUMENT, QZL_BAD_ARGUMENT, 0, 0, ""},
    };
    qzl_document* document = Parsed(kScene);
    for (size_t i = 0; i < sizeof kTable / sizeof *kTable; ++i) {
        const char* const path = kTable[i].path;
        int32_t asBool = -7;
        int64_t integer = -7;
        double number = -7;
        const char* string = "unchanged";
        size_t size = 0;
        About(path);
        CHECK_STATUS(qzl_document_get_bool(document, path, strlen(path), &asBool), kTable[i].asBool);
        CHECK_NUMBER(asBool, kTable[i].asBool == QZL_OK ? 1 : -7);
        CHECK_STATUS(qzl_document_get_integer(document, path, Z, &integer), kTable[i].asInteger);
        CHECK(integer == (kTable[i].asInteger == QZL_OK ? kTable[i].integer : -7));
        CHECK_STATUS(qzl_document_get_number(document, path, Z, &number), kTable[i].asNumber);
        CHECK_NUMBER(number, kTable[i].asNumber == QZL_OK ? kTable[i].number : -7);
        CHECK_STATUS(qzl_document_get_string(document, path, Z, &string, &size), kTable[i].asString);
        CHECK_TEXT(string, kTable[i].asString == QZL_OK ? kTable[i].string : "unchanged");
        CHECK(size == (kTable[i].asString == QZL_OK ? strlen(kTable[i].string) : 0));
    }
    qzl_document_free(document);
}

static void EditsLeaveAllElseAsItWas(void) {
    qzl_document* document = Parsed("{a ; one\n\t{b 1} w {c}\n}");
    CHECK_STATUS(qzl_document_set_integer(document, "a/b", Z, INT64_MIN), QZL_OK);
    CHECK_TEXT(TextIn(document), "{a ; one\n\t{b -9223372036854775808} w {c}\n}");
    CHECK_STATUS(qzl_document_set_number(document, "a/b", Z, 0.1), QZL_OK);
    CHECK_TEXT(TextIn(document), "{a ; one\n\t{b 0.1} w {c}\n}");
    CHECK_STATUS(qzl_document_set_bool(document, "a/b", Z, 17), QZL_OK);
    CHECK_TEXT(TextIn(document), "{a ; one\n\t{b 1} w {c}\n}");
    CHECK_STATUS(qzl_document_set_string(document, "a/b", Z, "x\"y\n", Z), QZL_OK);
    CHECK_TEXT(TextIn(document), "{a ; one\n\t{b \"x\\\"y\\n\"} w {c}\n}");
    CHECK_STATUS(qzl_document_set_word(document, "a/b/0", Z, "z", Z), QZL_OK);
    CHECK_TEXT(TextIn(document), "{a ; one\n\t{b z} w {c}\n}");
    CHECK_STATUS(qzl_document_set_string(document, "a/b/z", Z, "x\"y\n", 4), QZL_OK);
    CHECK_STATUS(qzl_document_set_word(document, "a/c", Z, "no word", Z), QZL_REFUSED);
    CHECK_STATUS(qzl_document_set_number(document, "a/b", Z, HUGE_VAL), QZL_REFUSED);
    CHECK_STATUS(qzl_document_set_number(document, "a/x", Z, 1), QZL_NOT_FOUND);
    CHECK_TEXT(TextIn(document), "{a ; one\n\t{b \"x\\\"y\\n\"} w {c}\n}");
    CHECK_STATUS(qzl_document_set_integer(document, "a/c", Z, 3), QZL_OK);
    CHECK_STATUS(qzl_document_insert(document, "a/c", Z, QZL_AFTER, "{d 4}", Z), QZL_OK);
    CHECK_STATUS(qzl_document_insert(document, "a", Z, QZL_WITHIN, "{e}", Z), QZL_OK);
    CHECK_STATUS(qzl_document_insert(document, "a/b", Z, QZL_BEFORE, "0", Z), QZL_OK);
    CHECK_STATUS(qzl_document_insert(document, "a", Z, QZL_WITHIN, "{", Z), QZL_REFUSED);
    CHECK_STATUS(qzl_document_insert(document, "a", Z, 3, "1", Z), QZL_BAD_ARGUMENT);
    CHECK_STATUS(qzl_document_rename(document, "a/d", Z, "not one", Z), QZL_REFUSED);
    CHECK_STATUS(qzl_document_remove(document, "a/b", Z), QZL_OK);
    CHECK_TEXT(TextIn(document), "{a ; one\n\t0 w {c 3} {d 4}\n\t{e}\n}");
    CHECK_STATUS(qzl_document_remove(document, "", 0), QZL_REFUSED);
    qzl_document_free(document);
}

void TestPaths(void) {
    PartsAreFoundByPath();
    CountsFollowEdits();
    ValuesAreReadAsWhatTheyAre();
    EditsLeaveAllElseAsItWas();
}
