#pragma once

#include <string>
#include <vector>

#include "run_info.h"
#include "verdicts.h"

namespace bench {

// A family's run as a JSON document, for those who draw charts and tables of it: an object with the members of eRunInfo
// and the list "works", each with its list "rows". Times are nanoseconds for one value, sizes of memory are bytes; what
// is not known or not stated is null. A verdict is true for a target that is met.
std::string JsonReport(const eRunInfo& run, const std::vector<eJudgedWork>& works);

} // namespace bench
