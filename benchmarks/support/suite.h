// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace bench {

// What a run measures, and how thoroughly.
struct eOptions {
    std::vector<unsigned> kilobytes{1'000, 16'000};
    bool full = false;  // includes the long runs: 128 MB documents, 1 GB files, every document at every size
    bool small = false; // one small size of everything: for instruction counts and quick checks
};

enum class eKind {
    Ours,  // this library
    Peer,  // another library
    Limit, // code written by hand for this one purpose
    Note,  // shown for comparison; has no target
};

// One contender of one work.
struct eRow {
    std::string contender;
    eKind kind = eKind::Ours;
    // The highest ratio "ours over this row" that meets the target; 0 for no target. On a row of ours it is the ratio
    // "this row over our first row of the work". "Ours" is our first row of the work, on an axis our first row of that
    // size.
    double target = 0;
    size_t bytes = 0; // bytes that one pass reads or writes
    // Restores the state that a pass starts from, untimed. May be empty.
    std::function<void()> before;
    // The timed pass. Returns the checksum of what it read, or any number if there is a `check`.
    std::function<std::uint64_t()> pass;
    // Called once after the first pass, untimed: returns the checksum of what the pass produced. May be empty.
    std::function<std::uint64_t()> check;
    bool isCommand = false; // the pass runs commands, whose own time is measured
    bool counted = true;    // a row of ours whose instructions are counted
    double values = 0;      // values that one pass handles, if the number differs from the work's
    double size = 0;        // the row's place on the work's axis, if the work has one
    int repetitions = 0;    // 0: as many as the run demands
    // The most memory in bytes that a pass may need above what was held before; empty for no limit. Called after the
    // run. The peak of the row named `peakBase` is added to the result.
    std::function<double()> peakAllowed = {};
    std::string peakBase = {};
};

// A piece of work that several contenders do on equal data: a table of the report.
struct eWork {
    std::string name;
    double values = 0; // values that one pass handles; the report's "ns per value" divides by it
    std::string unit = "value";
    std::string axis; // what the sizes of its rows count, such as "MB"; empty if all rows have one size
    std::vector<eRow> rows;
};

double ValuesOfPass(const eWork& work, const eRow& row);

// The contender, and its size where the work has an axis: "eSDLReader, 10 MB".
std::string ContenderName(const eWork& work, const eRow& row);

// "work/contender"
std::string RowName(const eWork& work, const eRow& row);

// The works of one program in the order of their first mention.
class eSuite {
public:
    // A suite that wants all rows, or only the row of that name ("work/contender").
    explicit eSuite(const eOptions& measured, const std::string& onlyRow = {}) : options(measured), only(onlyRow) {}

    const eOptions& Options() const { return options; }

    // Whether the suite wants rows of the work. Ask before creating the work's data.
    bool Wants(const std::string& work) const { return only.empty() || only.starts_with(work + "/"); }
    // Whether it wants the contender's row of the work.
    bool Wants(const std::string& work, const std::string& contender) const {
        return only.empty() || only == work + "/" + contender;
    }

    // Adds a row to the work of that name, which is created if it is new.
    void Add(const std::string& work, double values, eRow row, const std::string& unit = "value",
             const std::string& axis = {});

    std::vector<std::unique_ptr<eWork>>& Works() { return works; }

private:
    eOptions options;
    std::string only;
    std::vector<std::unique_ptr<eWork>> works;
};

// A static object of this type in a source file adds that file's rows to every suite. Files register in the order of
// `rank`, so tables and works have a fixed order.
class eContender {
public:
    using eAdd = void (*)(eSuite&);
    eContender(int rank, eAdd add);
    static void AddAll(eSuite& suite);
};

} // namespace bench
