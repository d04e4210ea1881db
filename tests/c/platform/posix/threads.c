// SPDX-License-Identifier: BSL-1.0
#include <pthread.h>

#include "check.h"

enum { kMost = 16 };

typedef struct {
    void (*work)(int number);
    int number;
} eTask;

static void* Run(void* task) {
    const eTask* const mine = task;
    mine->work(mine->number);
    return NULL;
}

void RunThreads(int count, void (*work)(int number)) {
    pthread_t threads[kMost];
    eTask tasks[kMost];
    CHECK(count <= kMost);
    for (int i = 0; i < count; ++i) {
        tasks[i].work = work;
        tasks[i].number = i;
        CHECK(pthread_create(&threads[i], NULL, Run, &tasks[i]) == 0);
    }
    for (int i = 0; i < count; ++i)
        CHECK(pthread_join(threads[i], NULL) == 0);
}
