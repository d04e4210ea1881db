// SPDX-License-Identifier: BSL-1.0
#include "verdicts.h"

#include <algorithm>
#include <cstddef>
#include <memory>

namespace bench {
namespace {

double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    if (values.size() % 2 != 0)
        return *middle;
    return (*middle + *std::max_element(values.begin(), middle)) / 2;
}

eVerdict Verdict(bool isMet) {
    return isMet ? eVerdict::Met : eVerdict::Missed;
}

// The row that a row is compared with: our first row of the work; for a row of others, our first row of its size.
const eJudgedRow* Base(const eJudgedWork& judged, const eRow& row) {
    for (const eJudgedRow& each : judged.rows)
        if (each.row->kind == eKind::Ours && each.perValue > 0 &&
            (row.kind == eKind::Ours || each.row->size == row.size))
            return &each;
    return nullptr;
}

void JudgeSpeed(eJudgedRow& judged, const eJudgedRow* base) {
    const eRow& row = *judged.row;
    const bool isOurs = row.kind == eKind::Ours;
    if (!base || judged.perValue <= 0 || (isOurs && row.target == 0))
        return;
    judged.ratio = isOurs ? judged.perValue / base->perValue : base->perValue / judged.perValue;
    if (row.target > 0)
        judged.verdict = Verdict(judged.ratio <= row.target);
}

void JudgePeak(eJudgedRow& judged, const eWork& work, const eMeasurements& measured) {
    const long long peak = judged.measured->peak;
    if (!judged.row->peakAllowed || peak < 0)
        return;
    judged.peakAllowed = judged.row->peakAllowed();
    for (const eRow& base : work.rows)
        if (base.contender == judged.row->peakBase)
            judged.peakAllowed += static_cast<double>(measured.at(&base).peak);
    judged.peakVerdict = Verdict(static_cast<double>(peak) <= judged.peakAllowed);
}

eJudgedWork JudgeWork(const eWork& work, const eMeasurements& measured) {
    eJudgedWork judged{&work, {}};
    for (const eRow& row : work.rows) {
        const eMeasured& figures = measured.at(&row);
        if (figures.seconds.empty() && figures.failure.empty())
            continue;
        eJudgedRow& each = judged.rows.emplace_back();
        each.row = &row;
        each.measured = &figures;
        if (figures.failure.empty())
            each.perValue = Median(figures.seconds) / ValuesOfPass(work, row);
    }
    for (eJudgedRow& each : judged.rows) {
        JudgeSpeed(each, Base(judged, *each.row));
        JudgePeak(each, work, measured);
    }
    return judged;
}

void Add(eTally& tally, eVerdict verdict) {
    tally.met += verdict == eVerdict::Met;
    tally.all += verdict != eVerdict::None;
}

} // namespace

std::vector<eJudgedWork> Judge(const std::vector<std::unique_ptr<eWork>>& works, const eMeasurements& measured) {
    std::vector<eJudgedWork> judged;
    for (const auto& work : works)
        if (eJudgedWork each = JudgeWork(*work, measured); !each.rows.empty())
            judged.push_back(std::move(each));
    return judged;
}

eTally Count(const std::vector<eJudgedWork>& works) {
    eTally tally;
    for (const eJudgedWork& work : works)
        for (const eJudgedRow& row : work.rows) {
            Add(tally, row.verdict);
            Add(tally, row.peakVerdict);
        }
    return tally;
}

} // namespace bench
