// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <cerrno>
#include <new>
#include <string>

#include <qzl_base/thread_storage.h>

#include "support/platform/posix/fault.h"

TEST(ThreadStorageFault, AnObjectThatTheSystemCannotKeepThrowsBadAllocAndTheNextOneIsKept) {
#ifdef QZL_THREADS_SANITIZED
    GTEST_SKIP() << "the thread sanitizer needs this call for itself";
#endif
    if (!eFault::ReachesLibraries())
        GTEST_SKIP() << "the libraries' calls do not pass through the test program";
    eCriticalResource<std::string> storage;
    {
        const eFault fault("pthread_setspecific", ENOMEM);
        EXPECT_THROW(storage.Get(), std::bad_alloc);
        EXPECT_TRUE(fault.Struck());
    }
    storage.Get() = "kept";
    EXPECT_EQ("kept", storage.Get());
}
