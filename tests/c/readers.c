// SPDX-License-Identifier: BSL-1.0
#include <string.h>

#include "check.h"

static qzl_reader* Reading(const char* text) {
    qzl_reader* reader = NULL;
    CHECK_STATUS(qzl_reader_new(&reader), QZL_OK);
    CHECK_STATUS(qzl_reader_parse(reader, text, Z, "test.sdl", Z), QZL_OK);
    return reader;
}

static void TokensComeOneByOne(void) {
    static const struct {
        int32_t kind;
        uint64_t depth;
        const char* text;
        int64_t integer;
        double number;
        uint64_t offset;
        uint32_t line;
        uint32_t column;
    } kTokens[] = {
        {QZL_KIND_BLOCK, 0, "m", 0, 0, 3, 1, 1},        {QZL_KIND_NAME, 1, "Scene", 0, 0, 7, 1, 5},
        {QZL_KIND_WORD, 1, "mode", 0, 0, 23, 2, 1},     {QZL_KIND_INTEGER, 1, "", -5, -5, 30, 2, 8},
        {QZL_KIND_STRING, 1, "a\"\n", 0, 0, 33, 2, 11}, {QZL_KIND_BLOCK, 1, "", 0, 0, 41, 2, 19},
        {QZL_KIND_FLOAT, 2, "", 0, 3, 42, 2, 20},       {QZL_KIND_BLOCK_END, 1, "", 0, 0, 49, 2, 27},
        {QZL_KIND_OPERATOR, 1, "*", 0, 0, 51, 2, 29},   {QZL_KIND_FLOAT, 1, "", 0, 0.5, 52, 2, 30},
        {QZL_KIND_BLOCK_END, 0, "", 0, 0, 75, 2, 53},
    };
    qzl_reader* reader =
        Reading("\xEF\xBB\xBF{#m Scene ; comment\nmode = -5 \"a\\\"\\n\" {(+ 1 2)} *0.5 {##hidden {1 2 3}} }");
    qzl_token token = {.size = sizeof token};
    for (size_t i = 0; i < sizeof kTokens / sizeof *kTokens; ++i) {
        uint64_t offset = 0;
        uint32_t line = 0;
        uint32_t column = 0;
        CHECK_STATUS(qzl_reader_next(reader, &token), QZL_OK);
        CHECK_NUMBER(token.kind, kTokens[i].kind);
        CHECK_NUMBER(token.depth, kTokens[i].depth);
        CHECK_TEXT(token.text, kTokens[i].text);
        CHECK(token.integer == kTokens[i].integer);
        CHECK_NUMBER(token.number, kTokens[i].number);
        CHECK_STATUS(qzl_reader_place(reader, &offset, &line, &column), QZL_OK);
        CHECK_NUMBER(offset, kTokens[i].offset);
        CHECK_NUMBER(line, kTokens[i].line);
        CHECK_NUMBER(column, kTokens[i].column);
    }
    CHECK_STATUS(qzl_reader_next(reader, &token), QZL_END);
    CHECK_STATUS(qzl_reader_next(reader, &token), QZL_END);
    CHECK_STATUS(qzl_reader_place(reader, NULL, NULL, NULL), QZL_OK);
    qzl_reader_free(reader);
}

static void WhatIsWrongEndsTheReading(void) {
    static const struct {
        const char* text;
        int tokens;
        uint32_t line;
        uint32_t column;
        const char* message;
    } kTable[] = {
        {"{a 1", 3, 1, 5, "Block terminator expected!"},
        {"1\n }", 1, 2, 2, "Nothing is open that this } could close!"},
        {"{a\n$}", 2, 2, 1, "No token begins like this!"},
        {"1 \"open", 1, 1, 3, "The string has no end!"},
        {"{a \"broken\n\"}", 2, 1, 4, "No token begins like this!"},
        {"9223372036854775808", 0, 1, 1, "9223372036854775808 is out of range!"},
        {"1e999", 0, 1, 1, "1e999 is out of range!"},
        {"{a (+ 1", 2, 1, 8, "Number expected!"},
    };
    for (size_t i = 0; i < sizeof kTable / sizeof *kTable; ++i) {
        qzl_reader* reader = Reading(kTable[i].text);
        qzl_token token = {.size = sizeof token};
        About(kTable[i].text);
        for (int read = 0; read < kTable[i].tokens; ++read)
            CHECK_STATUS(qzl_reader_next(reader, &token), QZL_OK);
        for (int again = 0; again < 2; ++again) {
            qzl_mistake error = {.size = sizeof error};
            CHECK_STATUS(qzl_reader_next(reader, &token), QZL_MISTAKE);
            CHECK_STATUS(qzl_reader_error(reader, &error), QZL_OK);
            CHECK_STATUS(error.status, QZL_MISTAKE);
            CHECK_TEXT(error.message, kTable[i].message);
            CHECK_TEXT(error.source, "test.sdl");
            CHECK_NUMBER(error.line, kTable[i].line);
            CHECK_NUMBER(error.column, kTable[i].column);
            CHECK(strncmp(error.rendered, "test.sdl:", 9) == 0);
        }
        CHECK_STATUS(qzl_reader_parse(reader, "7", Z, NULL, 0), QZL_OK);
        CHECK_STATUS(qzl_reader_next(reader, &token), QZL_OK);
        CHECK_NUMBER(token.integer, 7);
        qzl_reader_free(reader);
    }
}

static void BlocksAreSkipped(void) {
    qzl_reader* reader = Reading("{a {b 1 {c $} \"}\"} 2} 3 {");
    qzl_token token = {.size = sizeof token};
    CHECK_STATUS(qzl_reader_skip_block(reader), QZL_REFUSED);
    for (int i = 0; i < 3; ++i)
        CHECK_STATUS(qzl_reader_next(reader, &token), QZL_OK);
    CHECK_NUMBER(token.depth, 1);
    CHECK_STATUS(qzl_reader_skip_block(reader), QZL_MISTAKE);
    qzl_reader_free(reader);

    reader = Reading("{a {b 1 {c} \"}\"} 2} 3 {");
    for (int i = 0; i < 3; ++i)
        CHECK_STATUS(qzl_reader_next(reader, &token), QZL_OK);
    CHECK_STATUS(qzl_reader_skip_block(reader), QZL_OK);
    CHECK_STATUS(qzl_reader_next(reader, &token), QZL_OK);
    CHECK_NUMBER(token.integer, 2);
    CHECK_STATUS(qzl_reader_skip_block(reader), QZL_OK);
    CHECK_STATUS(qzl_reader_next(reader, &token), QZL_OK);
    CHECK_NUMBER(token.integer, 3);
    CHECK_STATUS(qzl_reader_next(reader, &token), QZL_OK);
    CHECK_STATUS(qzl_reader_skip_block(reader), QZL_MISTAKE);
    qzl_reader_free(reader);
}

static void ReadersOpenFilesWithinLimits(void) {
    qzl_document* document = Parsed("{a \"long enough\"}");
    qzl_reader* reader = NULL;
    qzl_token token = {.size = sizeof token};
    qzl_limits limits = {sizeof limits, 100, 4, 1};
    CHECK_STATUS(qzl_document_save(document, "c_reader.sdl", Z), QZL_OK);
    qzl_document_free(document);
    CHECK_STATUS(qzl_reader_new(&reader), QZL_OK);
    CHECK_STATUS(qzl_reader_next(reader, &token), QZL_END);
    CHECK_STATUS(qzl_reader_limit(reader, &limits), QZL_OK);
    CHECK_STATUS(qzl_reader_open(reader, "c_reader.sdl", Z), QZL_OK);
    CHECK_STATUS(qzl_reader_next(reader, &token), QZL_OK);
    CHECK_STATUS(qzl_reader_next(reader, &token), QZL_OK);
    CHECK_STATUS(qzl_reader_next(reader, &token), QZL_LIMIT);
    limits.source_bytes = 10;
    CHECK_STATUS(qzl_reader_limit(reader, &limits), QZL_OK);
    CHECK_STATUS(qzl_reader_open(reader, "c_reader.sdl", Z), QZL_LIMIT);
    CHECK_STATUS(qzl_reader_next(reader, &token), QZL_END);
    CHECK_STATUS(qzl_reader_skip_block(reader), QZL_REFUSED);
    CHECK_STATUS(qzl_reader_open(reader, "no/such/file.sdl", Z), QZL_FILE);
    CHECK_STATUS(qzl_reader_next(reader, &token), QZL_END);
    qzl_reader_free(reader);
}

void TestReaders(void) {
    TokensComeOneByOne();
    WhatIsWrongEndsTheReading();
    BlocksAreSkipped();
    ReadersOpenFilesWithinLimits();
}
