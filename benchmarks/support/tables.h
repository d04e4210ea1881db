#pragma once

#include <map>
#include <string>
#include <vector>

#include "suite.h"

namespace bench {

// What was measured of one row.
struct eMeasured {
    std::vector<double> seconds; // processor time of one pass, one entry for each repetition
    long long peak = -1;         // bytes above what the process held before the pass; -1 when not told
    std::string failure;         // why the row has no figures; empty when it has
};

using eMeasurements = std::map<const eRow*, eMeasured>;

double Median(std::vector<double> values);

// The lines that stand above the tables: what, when, on what machine, how built.
std::string Heading(const std::string& family, const std::string& folder);

// One table for each work, and below them how many targets are met.
std::string Tables(const std::vector<std::unique_ptr<eWork>>& works, const eMeasurements& measured);

} // namespace bench
