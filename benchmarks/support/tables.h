#pragma once

#include <string>
#include <vector>

#include "verdicts.h"

namespace bench {

// The lines that stand above the tables: what, when, on what machine, how built.
std::string Heading(const std::string& family, const std::string& folder);

// One table for each work, and below them how many targets are met.
std::string Tables(const std::vector<eJudgedWork>& works);

} // namespace bench
