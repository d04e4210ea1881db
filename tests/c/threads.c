// SPDX-License-Identifier: BSL-1.0
#include <stdio.h>
#include <string.h>

#include "check.h"

enum { kThreads = 4, kRounds = 60 };

static qzl_schema* shared;
static int good[kThreads];

// Statuses are counted, as the expectations are for one thread.
static void Work(int number) {
    char text[64];
    snprintf(text, sizeof text, "{a %d} {b} %s", number, "$");
    for (int round = 0; round < kRounds; ++round) {
        qzl_document* document = NULL;
        qzl_reader* reader = NULL;
        qzl_token token = {.size = sizeof token};
        qzl_mistake mistake = {.size = sizeof mistake};
        int64_t value = -1;
        size_t count = 0;
        const int json = round % 2;
        int fine = qzl_document_new(&document) == QZL_OK && qzl_reader_new(&reader) == QZL_OK;
        fine = fine && qzl_document_parse(document, text, Z, NULL, 0) == QZL_OK;
        fine = fine && qzl_document_check(document, shared, SIZE_MAX, &count) == QZL_OK && count == 2;
        fine = fine && qzl_document_mistake(document, 1, &mistake) == QZL_OK && mistake.message[0] != 0;
        fine = fine && qzl_document_get_integer(document, "a", Z, &value) == QZL_OK && value == number;
        fine = fine && qzl_reader_parse(reader, "{a $", Z, NULL, 0) == QZL_OK;
        fine = fine && qzl_reader_next(reader, &token) == QZL_OK && qzl_reader_next(reader, &token) == QZL_OK;
        fine = fine && qzl_reader_next(reader, &token) == QZL_MISTAKE;
        const qzl_status status = qzl_document_parse_json(document, json ? "[1]" : "[1", Z, NULL);
        const qzl_status expected = json ? QZL_OK : QZL_MISTAKE;
        fine = fine && (status == QZL_UNAVAILABLE || status == expected);
        qzl_reader_free(reader);
        qzl_document_free(document);
        good[number] += fine;
    }
}

// Handles of each thread, and one schema for all of them.
void TestThreads(void) {
    CHECK_STATUS(qzl_schema_new(&shared), QZL_OK);
    CHECK_STATUS(qzl_schema_parse(shared, "{schema {block a {value int}}}", Z, NULL, 0), QZL_OK);
    RunThreads(kThreads, Work);
    for (int number = 0; number < kThreads; ++number)
        CHECK_NUMBER(good[number], kRounds);
    qzl_schema_free(shared);
}
