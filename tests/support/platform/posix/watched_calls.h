// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>

// The system functions that the libraries call. The test program defines them, and its definitions take precedence over
// the system's: each asks the watcher, if there is one, before it passes a call on.

// What a watcher learns of a call.
struct eWatchedCall {
    const char* function = nullptr;
    int descriptor = -1;       // that it works on; negative if there is none
    int second = -1;           // likewise
    bool takesRoom = false;    // it may need room on the disk
    bool interruptible = true; // a signal may interrupt it
    std::size_t* bytes =
        nullptr; // how many it is to transfer; null if a call that transfers fewer means something else
};

class eCallWatcher {
public:
    // True if the call is to fail, with errno set. It is then not passed on, but a failing close still closes.
    virtual bool Takes(eWatchedCall& call) = 0;

protected:
    ~eCallWatcher() = default;
};

// Installs the watcher of this thread's calls, or of the calls of all threads without one of their own, and returns the
// previous one. Null stands for none.
eCallWatcher* WatchThread(eCallWatcher* watcher);
eCallWatcher* WatchAll(eCallWatcher* watcher);
