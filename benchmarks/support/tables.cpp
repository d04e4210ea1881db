// SPDX-License-Identifier: BSL-1.0
#include "tables.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace bench {
namespace {

std::string Fixed(double value, int digits) {
    std::array<char, 64> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, digits).ptr;
    return {text.data(), end};
}

std::string Bytes(double bytes) {
    return bytes < 1e7 ? Fixed(bytes / 1e3, 0) + " KB" : Fixed(bytes / 1e6, 1) + " MB";
}

const char* Name(eVerdict verdict) {
    return verdict == eVerdict::Met ? "met" : verdict == eVerdict::Missed ? "NOT MET" : "";
}

std::string NanosecondsCell(const eJudgedRow& judged) {
    return judged.perValue > 0 ? Fixed(judged.perValue * 1e9, 2) : judged.measured->failure;
}

std::string RateCell(const eJudgedRow& judged, const eWork& work) {
    if (judged.row->bytes == 0 || judged.perValue <= 0)
        return "";
    return Fixed(static_cast<double>(judged.row->bytes) / ValuesOfPass(work, *judged.row) / judged.perValue / 1e6, 0);
}

std::string PeakCell(const eJudgedRow& judged) {
    if (judged.measured->peak < 0)
        return "";
    const std::string told = Bytes(static_cast<double>(judged.measured->peak));
    if (judged.peakVerdict == eVerdict::None)
        return told;
    return told + " of " + Bytes(judged.peakAllowed) + ": " + Name(judged.peakVerdict);
}

std::string RatioCells(const eJudgedRow& judged) {
    if (judged.ratio == 0)
        return " | | ";
    const std::string target = judged.row->target > 0 ? Fixed(judged.row->target, 2) : "";
    return Fixed(judged.ratio, 3) + " | " + target + " | " + Name(judged.verdict);
}

std::string Title(const eWork& work) {
    return "### " + work.name + (work.values > 0 ? " (" + Fixed(work.values, 0) + " " + work.unit + "s)" : "") + "\n\n";
}

// A table with one line for each contender.
std::string PlainTable(const eJudgedWork& judged) {
    const eWork& work = *judged.work;
    std::string text = Title(work) + "| contender | ns per " + work.unit +
                       " | MB/s | peak memory | ours / theirs | target | |\n|---|--:|--:|--:|--:|--:|---|\n";
    for (const eJudgedRow& row : judged.rows)
        text += "| " + ContenderName(work, *row.row) + " | " + NanosecondsCell(row) + " | " + RateCell(row, work) +
                " | " + PeakCell(row) + " | " + RatioCells(row) + " |\n";
    return text + "\n";
}

std::vector<const eJudgedRow*> OfSize(const eJudgedWork& judged, double size) {
    std::vector<const eJudgedRow*> rows;
    for (const eJudgedRow& row : judged.rows)
        if (row.row->size == size)
            rows.push_back(&row);
    return rows;
}

// A table with one line for each size: the nanoseconds of each contender, then the ratios to other contenders.
std::string TableOverSizes(const eJudgedWork& judged) {
    const eWork& work = *judged.work;
    const auto first = OfSize(judged, judged.rows.front().row->size);
    std::string head = "| " + work.axis;
    std::string rule = "|--:";
    for (const eJudgedRow* row : first) {
        head += " | " + row->row->contender;
        rule += "|--:";
    }
    for (const eJudgedRow* row : first)
        if (row->row->kind != eKind::Ours) {
            head += " | ours / " + row->row->contender + " | target | ";
            rule += "|--:|--:|---";
        }
    std::string text = Title(work) + "ns per " + work.unit + "\n\n" + head + " |\n" + rule + "|\n";
    for (const eJudgedRow& judgedRow : judged.rows) {
        if (judgedRow.row->contender != first.front()->row->contender)
            continue;
        const auto rows = OfSize(judged, judgedRow.row->size);
        text += "| " + Fixed(judgedRow.row->size, 0);
        for (const eJudgedRow* row : rows)
            text += " | " + NanosecondsCell(*row);
        for (const eJudgedRow* row : rows)
            if (row->row->kind != eKind::Ours)
                text += " | " + RatioCells(*row);
        text += " |\n";
    }
    return text + "\n";
}

bool HasSeveralOfOneSize(const eJudgedWork& judged) {
    return !judged.work->axis.empty() && OfSize(judged, judged.rows.front().row->size).size() > 1;
}

} // namespace

std::string Heading(const eRunInfo& run) {
    std::string text = "## " + run.family + "\n\n" + run.when + "; " + run.processor + ", " +
                       std::to_string(run.processors) + " processors; " + run.build + "; files in " + run.folder + "\n";
    if (!run.isOptimised)
        text += "WARNING: this build is not optimised; its figures mean nothing.\n";
    if (!run.missingPeers.empty())
        text += "Not installed here, so without rows: " + run.missingPeers + "\n";
    return text + "\n";
}

std::string Tables(const std::vector<eJudgedWork>& works) {
    std::string text;
    for (const eJudgedWork& work : works)
        text += HasSeveralOfOneSize(work) ? TableOverSizes(work) : PlainTable(work);
    const eTally tally = Count(works);
    return text + std::to_string(tally.met) + " of " + std::to_string(tally.all) + " targets met\n";
}

} // namespace bench
