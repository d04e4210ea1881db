// SPDX-License-Identifier: BSL-1.0
#include "platform/processor.h"

#include <algorithm>
#include <array>

namespace IO::Platform {

bool HasAvx2() {
    __builtin_cpu_init(); // constructors of other libraries may run before the one that does this
    const std::array<int, 4> has = {__builtin_cpu_supports("avx2"), __builtin_cpu_supports("bmi"),
                                    __builtin_cpu_supports("pclmul"), __builtin_cpu_supports("popcnt")};
    return std::find(has.begin(), has.end(), 0) == has.end();
}

} // namespace IO::Platform
