// SPDX-License-Identifier: BSL-1.0
#include "thread_number.h"

#include <atomic>

unsigned long long ThreadNumber() noexcept {
    static std::atomic<unsigned long long> last = 0;
    static thread_local unsigned long long number = 0;
    if (number == 0)
        number = ++last;
    return number;
}
