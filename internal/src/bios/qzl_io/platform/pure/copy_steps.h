#pragma once

#include <cstddef>
#include <functional>
#include <initializer_list>

namespace IO::System {

// One way to move the next bytes from a source to its target, at most `limit` of them: the count that was moved, 0
// when there are no more, negative when this way does not work.
using eCopyWay = std::function<long long(std::size_t limit)>;

enum class eCopyEnd { Complete, Stopped, Failed };

// Moves bytes in steps until `expected` of them have arrived or there are no more; 0: how many there are is not known.
// Ways are tried in order: each goes on where the one before it gave up. That a way finds nothing at all is believed
// only of the last: some files show their content only to plain reading. Asks `stop` before the first step and between
// any two.
template <class Stop>
eCopyEnd CopyInSteps(std::initializer_list<eCopyWay> ways, std::size_t step, unsigned long long expected, Stop stop) {
    unsigned long long arrived = 0;
    for (const eCopyWay& way : ways) {
        for (long long moved = 1; moved > 0; arrived += moved > 0 ? static_cast<unsigned long long>(moved) : 0) {
            const unsigned long long left = expected - arrived;
            if (expected != 0 && left == 0)
                return eCopyEnd::Complete;
            if (stop())
                return eCopyEnd::Stopped;
            moved = way(expected != 0 && left < step ? static_cast<std::size_t>(left) : step);
            if (moved == 0 && (arrived != 0 || &way == ways.end() - 1))
                return eCopyEnd::Complete;
        }
    }
    return eCopyEnd::Failed;
}

} // namespace IO::System
