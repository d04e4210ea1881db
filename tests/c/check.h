// SPDX-License-Identifier: BSL-1.0
#ifndef QZL_TESTS_C_CHECK_H
#define QZL_TESTS_C_CHECK_H

#include <stddef.h>

#include <qzl_io_c.h>

// Expectations of the tests in C. Each one that fails is printed and counted.

#define CHECK(condition) Expect((condition) ? 1 : 0, #condition, __FILE__, __LINE__)
#define CHECK_STATUS(call, status) ExpectStatus((call), (status), #call, __FILE__, __LINE__)
#define CHECK_TEXT(text, expected) ExpectText((text), (expected), #text, __FILE__, __LINE__)
#define CHECK_NUMBER(number, expected) ExpectNumber((double)(number), (double)(expected), #number, __FILE__, __LINE__)

void Expect(int fulfilled, const char* what, const char* file, int line);
void ExpectStatus(qzl_status status, qzl_status expected, const char* what, const char* file, int line);
void ExpectText(const char* text, const char* expected, const char* what, const char* file, int line);
void ExpectNumber(double number, double expected, const char* what, const char* file, int line);

// What the next expectations are about, for a row of a table; null: nothing in particular.
void About(const char* row);

// A test that cannot run here says why.
void Skip(const char* reason);

// A document of the text, which the caller frees.
qzl_document* Parsed(const char* text);
// The last failure of the document.
qzl_mistake ErrorOf(const qzl_document* document);
// The whole text of the document, good until the next call with it.
const char* TextIn(qzl_document* document);

#define Z QZL_TERMINATED

// The tests, each in the file named after it.
void TestDocuments(void);
void TestPaths(void);
void TestJson(void);
void TestSchemas(void);
void TestReaders(void);
void TestHostile(void);
void TestThreads(void);
void TestMemory(void);

// Runs the work in so many threads at once and waits for all of them.
void RunThreads(int count, void (*work)(int number));

// Makes the n-th allocation of the library from now on fail; 0: none. On Linux all after it fail, too; a program for
// Windows whose heap gives nothing at all does not survive an exception. Returns 0 where that cannot be done.
int FailAllocations(long first);

#endif
