// SPDX-License-Identifier: BSL-1.0
#include <qzl_io_c.h>

// A program of a compiler for MSVC, without a C library: the DLL alone, by its import library. The number of the first
// step that fails is its exit code.

static int IsEqual(const char* text, const char* expected) {
    while (*text && *text == *expected) {
        ++text;
        ++expected;
    }
    return *text == *expected;
}

static int Work(qzl_document* document, qzl_reader* reader) {
    double number = 0;
    int64_t integer = 0;
    const char* text = "";
    size_t size = 0;
    size_t count = 0;
    qzl_mistake mistake;
    qzl_token token;
    mistake.size = sizeof mistake;
    token.size = sizeof token;
    if (qzl_document_parse(document, "{a 1.5} {b 9007199254740993} $", QZL_TERMINATED, "a.sdl", 5) != QZL_OK)
        return 4;
    if (qzl_document_get_number(document, "a", 1, &number) != QZL_OK || number != 1.5)
        return 5;
    if (qzl_document_get_integer(document, "b", 1, &integer) != QZL_OK || integer != 9007199254740993)
        return 6;
    if (qzl_document_check(document, 0, SIZE_MAX, &count) != QZL_OK || count != 1)
        return 7;
    if (qzl_document_mistake(document, 0, &mistake) != QZL_OK || mistake.column != 30)
        return 8;
    if (!IsEqual(mistake.source, "a.sdl") || !IsEqual(mistake.message, "No token begins like this!"))
        return 9;
    if (qzl_document_remove(document, "a//", 3) != QZL_BAD_ARGUMENT)
        return 10;
    if (qzl_document_set_number(document, "a", 1, 0.25) != QZL_OK)
        return 11;
    if (qzl_document_text(document, &text, &size) != QZL_OK || size != 31)
        return 12;
    if (!IsEqual(text, "{a 0.25} {b 9007199254740993} $"))
        return 13;
    if (qzl_reader_parse(reader, "2.5 {", QZL_TERMINATED, 0, 0) != QZL_OK)
        return 14;
    if (qzl_reader_next(reader, &token) != QZL_OK || token.number != 2.5)
        return 15;
    if (qzl_reader_next(reader, &token) != QZL_OK || token.kind != QZL_KIND_BLOCK)
        return 16;
    if (qzl_reader_next(reader, &token) != QZL_MISTAKE) // an exception inside
        return 17;
    return 0;
}

// The entry of the program.
int Main(void);
int Main(void) {
    qzl_document* document = 0;
    qzl_reader* reader = 0;
    if (!IsEqual(qzl_status_text(QZL_OK), "It is done."))
        return 1;
    if (qzl_document_new(&document) != QZL_OK)
        return 2;
    if (qzl_reader_new(&reader) != QZL_OK)
        return 3;
    const int failed = Work(document, reader);
    qzl_reader_free(reader);
    qzl_document_free(document);
    return failed;
}

// What a compiler for MSVC wants of a program with floating-point numbers.
int _fltused = 0;
