// SPDX-License-Identifier: BSL-1.0
#include "platform/processor.h"

namespace IO::Platform {

bool HasAvx2() {
    __builtin_cpu_init(); // constructors of other libraries may run before the one that does this
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("pclmul") &&
           __builtin_cpu_supports("popcnt");
}

} // namespace IO::Platform
