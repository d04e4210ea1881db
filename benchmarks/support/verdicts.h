// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "suite.h"

namespace bench {

// The measurements of one row.
struct eMeasured {
    std::vector<double> seconds; // processor time of one pass, one entry for each repetition
    long long peak = -1;         // bytes above what the process held before the pass; -1 if unknown
    std::string failure;         // why the row has no figures; empty if it has
};

using eMeasurements = std::map<const eRow*, eMeasured>;

enum class eVerdict { None, Met, Missed };

// The figures of one row, and its targets.
struct eJudgedRow {
    const eRow* row = nullptr;
    const eMeasured* measured = nullptr;
    double perValue = 0; // the median, in seconds
    double ratio = 0;    // ours over this row, or this row over our first; 0 if there is nothing to compare
    eVerdict verdict = eVerdict::None;
    double peakAllowed = 0; // bytes; 0 for no limit
    eVerdict peakVerdict = eVerdict::None;
};

// The rows of a work that were measured or failed.
struct eJudgedWork {
    const eWork* work = nullptr;
    std::vector<eJudgedRow> rows;
};

// The judged works, without those of which nothing was measured.
std::vector<eJudgedWork> Judge(const std::vector<std::unique_ptr<eWork>>& works, const eMeasurements& measured);

// The number of targets met, and the number of targets.
struct eTally {
    int met = 0;
    int all = 0;
};
eTally Count(const std::vector<eJudgedWork>& works);

} // namespace bench
