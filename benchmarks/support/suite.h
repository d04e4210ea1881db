#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace bench {

// What a run measures: which sizes, and how thoroughly.
struct eOptions {
    std::vector<unsigned> kilobytes{1'000, 16'000};
    bool full = false;  // the long runs too: 128 MB documents, 1 GB files, every document at every size
    bool small = false; // one small size of everything: for instruction counts and quick checks
};

enum class eKind {
    Ours,  // this library
    Peer,  // another library
    Limit, // code written by hand for this one purpose
    Note,  // told for comparison; no target hangs on it
};

// One contender of one work.
struct eRow {
    std::string contender;
    eKind kind = eKind::Ours;
    // The ratio "ours over this row" to stay at or below; 0 states none. On a row of ours it is the ratio
    // "this row over our first one of the work". Ours is our first row of the work, with an axis that of the same
    // size.
    double target = 0;
    size_t bytes = 0; // bytes that one pass takes in or puts out
    // Brings back the state that a pass starts from, untimed. May be empty.
    std::function<void()> before;
    // The timed pass. Returns the checksum of what it read, or anything when `check` is given.
    std::function<std::uint64_t()> pass;
    // Told once after the first pass, untimed: the checksum of what the pass produced. May be empty.
    std::function<std::uint64_t()> check;
    bool counted = true;  // a row of ours whose instructions are counted
    double values = 0;    // values that one pass handles, where they are not the work's
    double size = 0;      // the row's place on the work's axis, where it has one
    int repetitions = 0; // where they are not the run's
    // The most memory that a pass may need above what was held before, in bytes; empty where nothing is said.
    // Asked after the run. What the row named `peakBase` needed is added to it.
    std::function<double()> peakAllowed = {};
    std::string peakBase = {};
};

// A piece of work that several contenders do on the same logical data: a table of the report.
struct eWork {
    std::string name;
    double values = 0; // values that one pass handles; the report's "ns per value" divides by it
    std::string unit = "value";
    std::string axis; // what the sizes of its rows count, such as "MB"; empty where all have one size
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
    // With a row's name ("work/contender") only that row is wanted.
    explicit eSuite(const eOptions& measured, const std::string& onlyRow = {}) : options(measured), only(onlyRow) {}

    const eOptions& Options() const { return options; }

    // Is the work one to add rows to? Asked before its data are made.
    bool Wants(const std::string& work) const { return only.empty() || only.starts_with(work + "/"); }

    // Adds a row to the work of that name, which is made when it is new.
    void Add(const std::string& work, double values, eRow row, const std::string& unit = "value",
             const std::string& axis = {});

    std::vector<std::unique_ptr<eWork>>& Works() { return works; }

private:
    eOptions options;
    std::string only;
    std::vector<std::unique_ptr<eWork>> works;
};

// A static object of this type in a source file adds that file's rows to every suite.
// Files register in the order of `rank`, so that tables and works keep a fixed order.
class eContender {
public:
    using eAdd = void (*)(eSuite&);
    eContender(int rank, eAdd add);
    static void AddAll(eSuite& suite);
};

} // namespace bench
