// SPDX-License-Identifier: BSL-1.0
#include <stdio.h>
#include <string.h>

#include "check.h"

static int failures;
static int checks;
static const char* about;

static void Fail(const char* what, const char* file, int line) {
    ++failures;
    printf("%s:%d: %s%s%s\n", file, line, what, about ? ", for " : "", about ? about : "");
}

void Expect(int fulfilled, const char* what, const char* file, int line) {
    ++checks;
    if (!fulfilled)
        Fail(what, file, line);
}

void ExpectStatus(qzl_status status, qzl_status expected, const char* what, const char* file, int line) {
    ++checks;
    if (status == expected)
        return;
    printf("%d (%s) where %d was expected\n", (int)status, qzl_status_text(status), (int)expected);
    Fail(what, file, line);
}

void ExpectText(const char* text, const char* expected, const char* what, const char* file, int line) {
    ++checks;
    if (text && strcmp(text, expected) == 0)
        return;
    printf("'%s' where '%s' was expected\n", text ? text : "(null)", expected);
    Fail(what, file, line);
}

void ExpectNumber(double number, double expected, const char* what, const char* file, int line) {
    ++checks;
    if (number >= expected && number <= expected)
        return;
    printf("%.17g where %.17g was expected\n", number, expected);
    Fail(what, file, line);
}

void About(const char* row) {
    about = row;
}

void Skip(const char* reason) {
    printf("skipped: %s\n", reason);
}

qzl_document* Parsed(const char* text) {
    qzl_document* document = NULL;
    CHECK_STATUS(qzl_document_new(&document), QZL_OK);
    CHECK_STATUS(qzl_document_parse(document, text, Z, "test.sdl", Z), QZL_OK);
    return document;
}

qzl_mistake ErrorOf(const qzl_document* document) {
    qzl_mistake error;
    memset(&error, 0, sizeof error);
    error.size = sizeof error;
    CHECK_STATUS(qzl_document_error(document, &error), QZL_OK);
    return error;
}

const char* TextIn(qzl_document* document) {
    const char* text = NULL;
    size_t size = 0;
    CHECK_STATUS(qzl_document_text(document, &text, &size), QZL_OK);
    CHECK(text && strlen(text) == size);
    return text;
}

typedef struct {
    const char* name;
    void (*run)(void);
} eTest;

// main [NAME]: runs all tests, or that one.
int main(int count, char** arguments) {
    static const eTest kTests[] = {
        {"documents", TestDocuments}, {"paths", TestPaths},     {"json", TestJson},       {"schemas", TestSchemas},
        {"readers", TestReaders},     {"hostile", TestHostile}, {"threads", TestThreads}, {"memory", TestMemory},
    };
    int ran = 0;
    for (size_t i = 0; i < sizeof kTests / sizeof *kTests; ++i) {
        if (count > 1 && strcmp(arguments[1], kTests[i].name) != 0)
            continue;
        const int before = failures;
        About(NULL);
        kTests[i].run();
        printf("%s %s\n", failures == before ? "passed" : "FAILED", kTests[i].name);
        ++ran;
    }
    printf("%d checks, %d failures\n", checks, failures);
    return failures > 0 || ran == 0;
}
