// SPDX-License-Identifier: BSL-1.0
#include "json_report.h"

#include <array>
#include <charconv>
#include <utility>

namespace bench {
namespace {

constexpr const char* kNull = "null";

// Our texts hold no control characters.
std::string Json(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

std::string Json(double value) {
    std::array<char, 64> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return {text.data(), end};
}

std::string Json(bool value) {
    return value ? "true" : "false";
}

std::string Json(eVerdict verdict) {
    return verdict == eVerdict::None ? kNull : Json(verdict == eVerdict::Met);
}

// Null in place of a value that is not above zero.
std::string Positive(double value) {
    return value > 0 ? Json(value) : kNull;
}

std::string Listed(const std::vector<std::string>& items) {
    std::string list;
    for (const std::string& item : items)
        list += (list.empty() ? "" : ",\n") + item;
    return "[" + list + "]";
}

using eMembers = std::vector<std::pair<const char*, std::string>>;

std::string Object(const eMembers& members) {
    std::string text;
    for (const auto& [name, value] : members)
        text += (text.empty() ? "" : ", ") + Json(std::string(name)) + ": " + value;
    return "{" + text + "}";
}

const char* Name(eKind kind) {
    switch (kind) {
    case eKind::Ours:
        return "ours";
    case eKind::Peer:
        return "peer";
    case eKind::Limit:
        return "limit";
    case eKind::Note:
        return "note";
    }
    return "";
}

std::string Row(const eWork& work, const eJudgedRow& judged) {
    const eRow& row = *judged.row;
    const double values = ValuesOfPass(work, row);
    std::vector<std::string> repetitions;
    for (const double seconds : judged.measured->seconds)
        repetitions.push_back(Json(seconds / values * 1e9));
    return Object({{"contender", Json(row.contender)},
                   {"kind", Json(std::string(Name(row.kind)))},
                   {"size", work.axis.empty() ? kNull : Json(row.size)},
                   {"values", Json(values)},
                   {"bytes", Positive(static_cast<double>(row.bytes))},
                   {"ns", Positive(judged.perValue * 1e9)},
                   {"repetitions", Listed(repetitions)},
                   {"ratio", Positive(judged.ratio)},
                   {"target", Positive(row.target)},
                   {"met", Json(judged.verdict)},
                   {"peak", judged.measured->peak < 0 ? kNull : Json(static_cast<double>(judged.measured->peak))},
                   {"peakAllowed", Positive(judged.peakAllowed)},
                   {"peakMet", Json(judged.peakVerdict)},
                   {"failure", Json(judged.measured->failure)}});
}

std::string Work(const eJudgedWork& judged) {
    std::vector<std::string> rows;
    for (const eJudgedRow& row : judged.rows)
        rows.push_back(Row(*judged.work, row));
    return Object({{"name", Json(judged.work->name)},
                   {"unit", Json(judged.work->unit)},
                   {"axis", Json(judged.work->axis)},
                   {"rows", Listed(rows)}});
}

} // namespace

std::string JsonReport(const eRunInfo& run, const std::vector<eJudgedWork>& works) {
    std::vector<std::string> all;
    for (const eJudgedWork& work : works)
        all.push_back(Work(work));
    return Object({{"family", Json(run.family)},
                   {"when", Json(run.when)},
                   {"processor", Json(run.processor)},
                   {"processors", Json(static_cast<double>(run.processors))},
                   {"build", Json(run.build)},
                   {"isOptimised", Json(run.isOptimised)},
                   {"missingPeers", Json(run.missingPeers)},
                   {"folder", Json(run.folder)},
                   {"works", Listed(all)}}) +
           "\n";
}

} // namespace bench
