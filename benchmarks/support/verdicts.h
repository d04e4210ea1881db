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

enum class eVerdict { None, Met, Missed };

// One row's figures beside its targets.
struct eJudgedRow {
    const eRow* row = nullptr;
    const eMeasured* measured = nullptr;
    double perValue = 0; // the median, in seconds
    double ratio = 0;    // ours over this row, or this row over our first; 0 where there is nothing to compare
    eVerdict verdict = eVerdict::None;
    double peakAllowed = 0; // bytes; 0 where nothing is said
    eVerdict peakVerdict = eVerdict::None;
};

// A work's rows that were measured or failed.
struct eJudgedWork {
    const eWork* work = nullptr;
    std::vector<eJudgedRow> rows;
};

// Without the works of which nothing was measured.
std::vector<eJudgedWork> Judge(const std::vector<std::unique_ptr<eWork>>& works, const eMeasurements& measured);

// How many targets were met, and how many there are.
struct eTally {
    int met = 0;
    int all = 0;
};
eTally Count(const std::vector<eJudgedWork>& works);

} // namespace bench
