#include "tables.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>

#include "../platform/process.h"
#include "build_info.h"

namespace bench {
namespace {

std::string Fixed(double value, int digits) {
    std::array<char, 64> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, digits).ptr;
    return {text.data(), end};
}

std::string Today() {
    const std::time_t now = std::time(nullptr);
    std::string text(32, '\0');
    text.resize(std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", std::gmtime(&now)));
    return text + " UTC";
}

std::string Bytes(long long bytes) {
    if (bytes < 0)
        return "";
    return bytes < 10'000'000 ? Fixed(static_cast<double>(bytes) / 1e3, 0) + " KB"
                              : Fixed(static_cast<double>(bytes) / 1e6, 1) + " MB";
}

struct eTally {
    int met = 0;
    int missed = 0;
};

const char* Verdict(bool isMet, eTally& tally) {
    ++(isMet ? tally.met : tally.missed);
    return isMet ? "met" : "NOT MET";
}

// One work's rows turned into lines.
class eTable {
public:
    eTable(const eWork& tabled, const eMeasurements& all, eTally& counts) : work(tabled), measured(all), tally(counts) {
        for (const eRow& row : work.rows)
            if (ours == 0 && row.kind == eKind::Ours && !measured.at(&row).seconds.empty())
                ours = PerValue(row);
    }

    std::string Text() {
        std::string rows;
        for (const eRow& row : work.rows)
            rows += Line(row);
        if (rows.empty())
            return "";
        return "### " + work.name + " (" + Fixed(work.values, 0) + " " + work.unit + "s)\n\n| contender | ns per " +
               work.unit + " | MB/s | peak memory | ours / theirs | target | |\n|---|--:|--:|--:|--:|--:|---|\n" +
               rows + "\n";
    }

private:
    double PerValue(const eRow& row) const {
        return Median(measured.at(&row).seconds) / (row.values > 0 ? row.values : work.values);
    }

    std::string Line(const eRow& row) {
        const eMeasured& figures = measured.at(&row);
        if (!figures.failure.empty())
            return "| " + row.contender + " | " + figures.failure + " | | | | | |\n";
        if (figures.seconds.empty())
            return "";
        return "| " + row.contender + " | " + Fixed(PerValue(row) * 1e9, 2) + " | " +
               Rate(row, Median(figures.seconds)) + " | " + PeakCell(row) + " | " + RatioCells(row) + " |\n";
    }

    static std::string Rate(const eRow& row, double seconds) {
        return row.bytes ? Fixed(static_cast<double>(row.bytes) / seconds / 1e6, 0) : "";
    }

    // Ours over theirs; for a row of ours with a target, this over the first of ours.
    std::string RatioCells(const eRow& row) {
        const bool isOurs = row.kind == eKind::Ours;
        if (ours == 0 || (isOurs && row.target == 0))
            return " | | ";
        const double ratio = isOurs ? PerValue(row) / ours : ours / PerValue(row);
        if (row.target == 0)
            return Fixed(ratio, 3) + " | | ";
        return Fixed(ratio, 3) + " | " + Fixed(row.target, 2) + " | " + Verdict(ratio <= row.target, tally);
    }

    std::string PeakCell(const eRow& row) {
        const long long peak = measured.at(&row).peak;
        if (!row.peakAllowed || peak < 0)
            return Bytes(peak);
        double allowed = row.peakAllowed();
        for (const eRow& base : work.rows)
            if (base.contender == row.peakBase)
                allowed += static_cast<double>(measured.at(&base).peak);
        return Bytes(peak) + " of " + Bytes(static_cast<long long>(allowed)) + ": " +
               Verdict(static_cast<double>(peak) <= allowed, tally);
    }

    const eWork& work;
    const eMeasurements& measured;
    eTally& tally;
    double ours = 0; // seconds for one value in the first row of ours; 0 when there is none
};

} // namespace

double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    if (values.size() % 2 != 0)
        return *middle;
    return (*middle + *std::max_element(values.begin(), middle)) / 2;
}

std::string Heading(const std::string& family, const std::string& folder) {
    std::string text = "## " + family + "\n\n" + Today() + "; " + platform::ProcessorName() + ", " +
                       std::to_string(platform::ProcessorCount()) + " processors; " + build_info::kCompiler + ", " +
                       build_info::kBuildType + " (" + build_info::kFlags + "); files in " + folder + "\n";
    if (!build_info::kOptimised)
        text += "WARNING: this build is not optimised; its figures mean nothing.\n";
    if (*build_info::kMissingPeers)
        text += "Not installed here, so without rows: " + std::string(build_info::kMissingPeers) + "\n";
    return text + "\n";
}

std::string Tables(const std::vector<std::unique_ptr<eWork>>& works, const eMeasurements& measured) {
    std::string text;
    eTally tally;
    for (const auto& work : works)
        text += eTable(*work, measured, tally).Text();
    return text + std::to_string(tally.met) + " of " + std::to_string(tally.met + tally.missed) + " targets met\n";
}

} // namespace bench
