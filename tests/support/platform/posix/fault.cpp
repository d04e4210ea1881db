// SPDX-License-Identifier: BSL-1.0
#include "fault.h"

#include <utility>

#include <qzl_io/system/file.h>

namespace {

int LastCall(int first, int times) {
    return times > eFault::kAlways - first ? eFault::kAlways : first + times - 1;
}

} // namespace

eFault::eFault(std::string function, int error, int first, int times)
    : watched(std::move(function)),
      failure(error),
      firstCall(first),
      lastCall(LastCall(first, times)),
      previous(WatchThread(this)) {}

eFault::eFault(std::string function, int first, std::function<void()> before)
    : watched(std::move(function)),
      firstCall(first),
      lastCall(first),
      action(std::move(before)),
      previous(WatchThread(this)) {}

eFault::~eFault() {
    WatchThread(previous);
}

bool eFault::Counts(const char* function) {
    if (!watched.empty() && watched != function)
        return false;
    ++calls;
    trace.emplace_back(function);
    return calls >= firstCall && calls <= lastCall;
}

bool eFault::Takes(eWatchedCall& call) {
    if (!Counts(call.function))
        return false;
    struck = true;
    if (action) {
        WatchThread(nullptr);
        action();
        WatchThread(this);
        return false;
    }
    errno = failure;
    return true;
}

bool eFault::ReachesLibraries() {
    const eFault watch("", 0, 0);
    IO::System::File::Size(eFileName("/"));
    return watch.Calls() != 0;
}
