#pragma once

#include <cerrno>
#include <functional>
#include <limits>
#include <string>

// The system's failures, made when a test wants them. The functions of the system that the libraries call are defined
// once more in the test program, which puts them before the system's own; they pass every call on but those that an
// eFault of the calling thread takes.

// While it lives, counts this thread's calls of a function and makes some of them fail. A call that fails is not passed
// on; but a close that fails has closed all the same. Only the fault made last is asked.
class eFault {
public:
    static constexpr int kAlways = std::numeric_limits<int>::max();

    // The calls number `first` to `first + times - 1` of `function` fail with `error`; "" is every function watched,
    // and first 0 lets every call pass.
    eFault(std::string function, int error, int first = 1, int times = 1);

    // In place of a failure: `before` runs before call number `first`, which is then passed on.
    eFault(std::string function, int first, std::function<void()> before);

    ~eFault();
    eFault(const eFault&) = delete;
    eFault& operator=(const eFault&) = delete;

    int Calls() const { return calls; }
    bool Struck() const { return struck; }

    // False where something else (a sanitizer, a static C library) takes the libraries' calls before the test program
    // does: then a test says that it is skipped.
    static bool ReachesLibraries();

    // For the functions that stand in for the system's.
    static bool Takes(const char* function);

private:
    bool Counts(const char* function);

    const std::string watched;
    const int failure = 0;
    const int firstCall = 0;
    const int lastCall = 0;
    const std::function<void()> action;
    eFault* const previous;
    int calls = 0;
    bool struck = false;
};
