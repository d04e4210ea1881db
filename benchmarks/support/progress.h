// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <chrono>
#include <cstdio>
#include <string>

namespace bench {

// Shows on the error output, every ten seconds at most, how far a run has got.
class eProgress {
public:
    explicit eProgress(const std::string& programName) : program(programName) {}

    // Begins the next step, which is for `row`: number `part` of about `parts` steps of its kind.
    void Next(const char* kind, size_t part, size_t parts, const std::string& row) {
        const auto now = eClock::now();
        if (now - told < std::chrono::seconds(10))
            return;
        told = now;
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(now - begin).count();
        std::fprintf(stderr, "%s, %lld s: %s %zu of about %zu, %s\n", program.c_str(), static_cast<long long>(seconds),
                     kind, part, parts, row.c_str());
    }

private:
    using eClock = std::chrono::steady_clock;

    std::string program;
    eClock::time_point begin = eClock::now();
    eClock::time_point told = begin;
};

} // namespace bench
