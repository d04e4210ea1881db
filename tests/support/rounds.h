// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <ctime>

#include "long_tests.h"

// The rounds of a random test, counted from 0: up to `most` of them within the seconds of processor time, or all
// `mostInFull` if long tests are wanted. A slow machine runs the first of the same rounds.
class eRounds {
public:
    eRounds(unsigned most, unsigned mostInFull, unsigned seconds = 1)
        : end(LongTests() ? mostInFull : most), until(std::clock() + std::clock_t(seconds) * CLOCKS_PER_SEC) {}

    bool Next() {
        ++current;
        return current < end && (LongTests() || std::clock() < until);
    }
    unsigned Current() const { return current; }

private:
    unsigned current = ~0u;
    unsigned end;
    std::clock_t until;
};
