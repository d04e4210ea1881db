// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <exception>
#include <string>
#include <utility>
#include <vector>

#include <qzl_base/error.h>
#include <qzl_io/streams/stream.h>

#include "streams/reported.h"

namespace IO {

// While a hook runs, bufferEnd is the end of the buffer wherever the position is. Otherwise, and while a handler runs
// in a hook, it is null where the invariant demands it.
class eHookRun {
public:
    explicit eHookRun(eStream& of, bool runs = true) noexcept : stream(of), before(of.hookRuns) { Set(runs); }
    ~eHookRun() { Set(before); }

    eHookRun(const eHookRun&) = delete;
    eHookRun& operator=(const eHookRun&) = delete;

private:
    void Set(bool runs) noexcept {
        const unsigned long long capacity = stream.Capacity();
        stream.hookRuns = runs;
        stream.SetCapacity(capacity);
    }

    eStream& stream;
    const bool before;
};

// One operation of a stream in progress. Until its end it holds back the stream's reports and an exception from a hook,
// so that whoever receives either finds the operation complete. An operation that a hook begins passes its reports to
// the operation that called the hook.
class eStreamOperation {
public:
    explicit eStreamOperation(eStream& of) noexcept : stream(of), outer(std::exchange(of.underWay, this)) {}
    ~eStreamOperation() { Leave(); }

    eStreamOperation(const eStreamOperation&) = delete;
    eStreamOperation& operator=(const eStreamOperation&) = delete;

    // Calls a hook. True if it failed: it set Bad, failed through the core's Fail, or threw. After a hook has thrown,
    // no further one is called.
    bool Fails(void (eStream::*hook)()) {
        return Fails([this, hook] { stream.RunHook(hook); });
    }
    // Fails for work that calls a hook or replaces one.
    template <class Work>
    bool Fails(Work work) {
        if (thrown)
            return true;
        const int failuresBefore = failures;
        const bool bad = stream.Enabled(StreamMode::Bad);
        Hold(work);
        return thrown || failures != failuresBefore || (!bad && stream.Enabled(StreamMode::Bad));
    }
    bool Threw() const noexcept { return thrown != nullptr; }
    // Does work that may throw, and that comes before the reports; the first exception is held back until after them.
    template <class Work>
    void Hold(Work work) {
        try {
            work();
        } catch (...) {
            if (!thrown)
                thrown = std::current_exception();
        }
    }

    void CountFailure() noexcept { ++failures; }
    void Keep(const char* source, int line, const std::string& message) {
        if (!thrown)
            reports.push_back({source, line, message});
    }
    void DropReports() noexcept { reports.clear(); }

    // Makes the reports, then throws what a hook has thrown.
    void End() {
        eStreamOperation* const next = outer;
        Leave();
        for (const eReport& report : reports)
            if (next)
                next->Keep(report.source, report.line, report.message);
            else
                Make(report);
        if (next)
            next->failures += failures;
        if (thrown)
            std::rethrow_exception(thrown);
    }

protected:
    eStream& stream;

private:
    struct eReport {
        const char* source;
        int line;
        std::string message;
    };

    void Make(const eReport& report) const {
        const eReportedStream context(stream);
        xError::Error(report.source, report.line, report.message, true);
    }
    void Leave() noexcept {
        if (!std::exchange(ended, true))
            stream.underWay = outer;
    }

    eStreamOperation* const outer;
    bool ended = false;
    int failures = 0;
    std::exception_ptr thrown;
    std::vector<eReport> reports;
};

} // namespace IO
