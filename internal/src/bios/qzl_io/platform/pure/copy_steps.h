// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <functional>
#include <initializer_list>

namespace IO::System {

// One way to move the next bytes, at most `limit`, from a source to its target. Returns the number of bytes moved, 0 if
// there are no more, or a negative number if this way does not work.
using eCopyWay = std::function<long long(std::size_t limit)>;

enum class eCopyEnd { Complete, Stopped, Failed };

// Moves bytes in steps until `expected` bytes have been moved or there are no more; 0 means that the number is unknown.
// Tries ways in order; each continues where the one before gave up. If a way finds nothing at all, only the last one is
// believed, since some files show their content only to plain reads. Calls `stop`, with the number of bytes moved,
// before the first step and between any two.
template <class Stop>
eCopyEnd CopyInSteps(std::initializer_list<eCopyWay> ways, std::size_t step, unsigned long long expected, Stop stop) {
    unsigned long long arrived = 0;
    for (const eCopyWay& way : ways) {
        for (long long moved = 1; moved > 0; arrived += moved > 0 ? static_cast<unsigned long long>(moved) : 0) {
            const unsigned long long left = expected - arrived;
            if (expected != 0 && left == 0)
                return eCopyEnd::Complete;
            if (stop(arrived))
                return eCopyEnd::Stopped;
            moved = way(expected != 0 && left < step ? static_cast<std::size_t>(left) : step);
            if (moved == 0 && (arrived != 0 || &way == ways.end() - 1))
                return eCopyEnd::Complete;
        }
    }
    return eCopyEnd::Failed;
}

} // namespace IO::System
