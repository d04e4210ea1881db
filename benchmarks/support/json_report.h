// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>
#include <vector>

#include "run_info.h"
#include "verdicts.h"

namespace bench {

// The run of a family as JSON, for programs that draw charts and tables: an object with the members of eRunInfo and the
// list "works", each with its list "rows". Times are in nanoseconds for one value, amounts of memory in bytes. What is
// unknown or does not apply is null. A verdict is true if the target is met.
std::string JsonReport(const eRunInfo& run, const std::vector<eJudgedWork>& works);

} // namespace bench
