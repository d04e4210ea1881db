// SPDX-License-Identifier: BSL-1.0
#include <stddef.h>

#include "check.h"

// The library allocates with malloc, which the program replaces here. A sanitizer has its own.
#ifdef QZL_SANITIZED

int FailAllocations(long first) {
    (void)first;
    return 0;
}

#else

void* __libc_malloc(size_t size);
void* malloc(size_t size);

static long left;

void* malloc(size_t size) {
    if (left == 1)
        return NULL;
    if (left > 1)
        --left;
    return __libc_malloc(size);
}

int FailAllocations(long first) {
    left = first;
    return 1;
}

#endif
