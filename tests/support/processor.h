// SPDX-License-Identifier: BSL-1.0
#pragma once

// Whether functions that are marked QZL_IO_AVX2 can run here, as the compiler's own library tells.
inline bool HasAvx2() {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("pclmul") &&
           __builtin_cpu_supports("popcnt");
}
