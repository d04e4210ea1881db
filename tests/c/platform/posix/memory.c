// SPDX-License-Identifier: BSL-1.0
#include <stddef.h>

#include "check.h"

// The library allocates with malloc, which the program replaces here. A sanitizer has its own.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define QZL_OWN_HEAP 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define QZL_OWN_HEAP 1
#endif
#endif

#ifdef QZL_OWN_HEAP

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
