// SPDX-License-Identifier: BSL-1.0
#pragma once

namespace IO::Platform {

// Whether functions that are marked QZL_IO_AVX2 can run on this processor under this system.
bool HasAvx2();

} // namespace IO::Platform
