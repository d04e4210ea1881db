// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <functional>

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

inline constexpr int kHeldInChild = 0;

// Runs the work in a child process that is subject to permissions, and returns its exit status. The work must not use
// the test framework.
inline int AsNobody(const std::function<int()>& work) {
    constexpr uid_t kNobody = 65534;
    const pid_t child = ::fork();
    if (child == 0) {
        const bool bound = ::geteuid() != 0 || (::setgid(kNobody) == 0 && ::setuid(kNobody) == 0);
        ::_exit(bound ? work() : 99);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 98;
}
