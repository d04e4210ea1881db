// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>
#include <vector>

#include "run_info.h"
#include "verdicts.h"

namespace bench {

// The lines above the tables: what was measured, when, on what machine, and in which build.
std::string Heading(const eRunInfo& run);

// One table for each work, followed by the number of targets met.
std::string Tables(const std::vector<eJudgedWork>& works);

} // namespace bench
