// SPDX-License-Identifier: BSL-1.0
#include <windows.h>

#include "check.h"

enum { kMost = 16 };

typedef struct {
    void (*work)(int number);
    int number;
} eTask;

static DWORD WINAPI Run(void* task) {
    const eTask* const mine = task;
    mine->work(mine->number);
    return 0;
}

void RunThreads(int count, void (*work)(int number)) {
    HANDLE threads[kMost];
    eTask tasks[kMost];
    CHECK(count <= kMost);
    for (int i = 0; i < count; ++i) {
        tasks[i].work = work;
        tasks[i].number = i;
        threads[i] = CreateThread(NULL, 0, Run, &tasks[i], 0, NULL);
        CHECK(threads[i] != NULL);
    }
    for (int i = 0; i < count; ++i) {
        CHECK(WaitForSingleObject(threads[i], INFINITE) == WAIT_OBJECT_0);
        CloseHandle(threads[i]);
    }
}
