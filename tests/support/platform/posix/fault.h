// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cerrno>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "support/platform/posix/watched_calls.h"

// During its lifetime, counts this thread's calls of a function and makes some of them fail. A failing call is not
// passed on, but a failing close still closes. If several exist, only the latest is in effect.
class eFault : private eCallWatcher {
public:
    static constexpr int kAlways = std::numeric_limits<int>::max();

    // Makes the calls number `first` to `first + times - 1` of `function` fail with `error`. "" stands for every
    // watched function; with `first` 0 every call passes.
    eFault(std::string function, int error, int first = 1, int times = 1);

    // Instead of a failure, runs `before` before call number `first`, which is then passed on.
    eFault(std::string function, int first, std::function<void()> before);

    ~eFault();
    eFault(const eFault&) = delete;
    eFault& operator=(const eFault&) = delete;

    int Calls() const { return calls; }
    bool Struck() const { return struck; }

    // The names of the calls counted, in order.
    const std::vector<std::string>& Trace() const { return trace; }

    // False if something else (a sanitizer, a static C library) takes the libraries' calls before the test program
    // does; a test then says that it is skipped.
    static bool ReachesLibraries();

private:
    bool Takes(eWatchedCall& call) override;
    bool Counts(const char* function);

    const std::string watched;
    const int failure = 0;
    const int firstCall = 0;
    const int lastCall = 0;
    const std::function<void()> action;
    eCallWatcher* const previous;
    int calls = 0;
    bool struck = false;
    std::vector<std::string> trace;
};

// Makes each call of `function` in the action fail once, one after another, and returns the number of failures.
inline int FailEachCall(const std::string& function, int error, const std::function<void()>& action) {
    for (int failures = 0;; ++failures) {
        const eFault fault(function, error, failures + 1);
        action();
        if (!fault.Struck())
            return failures;
    }
}
