// SPDX-License-Identifier: BSL-1.0
#include <benchmark/benchmark.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "../platform/process.h"
#include "documents.h"
#include "json_report.h"
#include "progress.h"
#include "suite.h"
#include "tables.h"
#include "verdicts.h"
#include "work_folder.h"

namespace bench {

// The only function in which instructions are counted; it is found by its name.
[[gnu::noinline]] std::uint64_t MeasuredPass(const eRow& row) {
    return row.pass();
}

namespace {

constexpr int kRepetitions = 15;
// In a full run, a pass over this many bytes or more is repeated less often.
constexpr size_t kLargeBytes = 100'000'000;
constexpr int kRepetitionsOfLarge = 3;

struct eArguments {
    eOptions options;
    std::string row;   // the row to run once, instead of all
    bool list = false; // print the names of the rows whose instructions are counted
    bool peaks = true;
    bool isPeak = false; // the row is run for its peak of memory
    unsigned passes = 1; // of that row
    std::string json;    // the file for the run as JSON; empty: none is written
    std::vector<std::string> sizes;
};

bool TakeOwn(std::string_view argument, eArguments& taken) {
    const auto value = argument.substr(std::min(argument.find('=') + 1, argument.size()));
    if (argument == "--full")
        taken.options.full = true;
    else if (argument == "--small")
        taken.options.small = true;
    else if (argument == "--list-counted")
        taken.list = true;
    else if (argument == "--no-peaks")
        taken.peaks = false;
    else if (argument == "--peak")
        taken.isPeak = true;
    else if (argument.starts_with("--row="))
        taken.row = value;
    else if (argument.starts_with("--passes="))
        std::from_chars(value.data(), value.data() + value.size(), taken.passes);
    else if (argument.starts_with("--json="))
        taken.json = value;
    else
        return false;
    if (argument.find('=') == argument.npos)
        taken.sizes.emplace_back(argument);
    return true;
}

eArguments TakeArguments(int& count, char** arguments) {
    eArguments taken;
    int kept = 1;
    for (int i = 1; i < count; ++i)
        if (!TakeOwn(arguments[i], taken))
            arguments[kept++] = arguments[i];
    count = kept;
    if (taken.options.full)
        taken.options.kilobytes.push_back(128'000);
    if (taken.options.small)
        taken.options.kilobytes = {100};
    return taken;
}

// Runs one row the given number of times and prints the peak of memory and the checksum.
int RunOneRow(eSuite& suite, const eArguments& arguments) {
    for (const auto& work : suite.Works())
        for (const eRow& row : work->rows)
            if (RowName(*work, row) == arguments.row) {
                std::uint64_t checksum = 0;
                long long peak = -1;
                for (unsigned i = 0; i < arguments.passes; ++i) {
                    if (row.before)
                        row.before();
                    const bool isTold = platform::ResetPeak();
                    const size_t held = platform::Resident();
                    checksum = MeasuredPass(row);
                    if (isTold)
                        peak = static_cast<long long>(platform::Peak()) - static_cast<long long>(held);
                }
                std::printf("%lld %016llx\n", peak, static_cast<unsigned long long>(checksum));
                return EXIT_SUCCESS;
            }
    std::fprintf(stderr, "no such row: %s\n", arguments.row.c_str());
    return EXIT_FAILURE;
}

// Keeps the checksum of the first contender of each work and tells whether later ones agree.
class eAgreement {
public:
    bool Agrees(const eWork& work, std::uint64_t checksum) {
        const auto [entry, isFirst] = checksums.try_emplace(&work, checksum);
        return isFirst || entry->second == checksum;
    }
    const std::map<const eWork*, std::uint64_t>& Checksums() const { return checksums; }

private:
    std::map<const eWork*, std::uint64_t> checksums;
};

// Why a run failed, or null if it did not. Releases of the benchmark library name this in two ways.
template <class Run>
const std::string* FailureOf(const Run& run) {
    if constexpr (requires { run.error_occurred; })
        return run.error_occurred ? &run.error_message : nullptr;
    else
        return run.skipped ? &run.skip_message : nullptr;
}

// Collects the repetitions of every row. The tables are printed when all have been collected.
class eCollector : public benchmark::BenchmarkReporter {
public:
    eCollector(const std::map<std::string, const eRow*>& known, eMeasurements& taken) : rows(known), measured(taken) {}
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            Take(run);
    }

private:
    void Take(const Run& run) {
        const auto found = rows.find(run.run_name.function_name);
        if (found == rows.end())
            return;
        eMeasured& taken = measured[found->second];
        if (const std::string* const failure = FailureOf(run))
            taken.failure = *failure;
        else if (run.run_type == Run::RT_Iteration && run.iterations > 0)
            taken.seconds.push_back((found->second->isCommand ? run.real_accumulated_time : run.cpu_accumulated_time) /
                                    static_cast<double>(run.iterations));
    }

    const std::map<std::string, const eRow*>& rows;
    eMeasurements& measured;
};

// The number of repetitions that the row itself demands, or 0.
int OwnRepetitions(const eRow& row, const eOptions& options) {
    if (row.repetitions > 0)
        return row.repetitions;
    return options.full && row.bytes > kLargeBytes ? kRepetitionsOfLarge : 0;
}

// The checksum of a row's pass. A row's own check runs once.
class eChecked {
public:
    std::uint64_t Sum(const eRow& row, std::uint64_t passed) {
        if (!row.check)
            return passed;
        const auto [entry, isFirst] = sums.try_emplace(&row);
        if (isFirst)
            entry->second = row.check();
        return entry->second;
    }

private:
    std::map<const eRow*, std::uint64_t> sums;
};

void Measure(benchmark::State& state, const eWork& work, const eRow& row, eAgreement& agreement, eChecked& checked) {
    std::uint64_t checksum = 0;
    for (auto _ : state) {
        if (row.before) {
            state.PauseTiming();
            row.before();
            state.ResumeTiming();
        }
        const double commands = row.isCommand ? platform::SecondsOfCommands() : 0;
        checksum = MeasuredPass(row);
        benchmark::DoNotOptimize(checksum);
        if (row.isCommand)
            state.SetIterationTime(platform::SecondsOfCommands() - commands);
    }
    if (!agreement.Agrees(work, checked.Sum(row, checksum)))
        state.SkipWithError("reads other values than the first contender");
}

void MeasurePeaks(eSuite& suite, const eArguments& arguments, eMeasurements& measured, eProgress& progress) {
    size_t part = 0;
    for (const auto& work : suite.Works())
        for (const eRow& row : work->rows) {
            progress.Next("peak", ++part, measured.size(), RowName(*work, row));
            std::vector<std::string> call = arguments.sizes;
            call.push_back("--peak");
            call.push_back("--row=" + RowName(*work, row));
            const std::string told = platform::RunSelf(call);
            if (const size_t end = told.find(' '); end != std::string::npos)
                std::from_chars(told.data(), told.data() + end, measured[&row].peak);
        }
}

std::string ProgramName(const char* path) {
    std::string name = path;
    name = name.substr(name.find_last_of('/') + 1);
    return name.starts_with("bench_") ? name.substr(6) : name;
}

// Google Benchmark's arguments: ours first, so that the caller's arguments win.
std::vector<std::string> BenchmarkArguments(int count, char** arguments) {
    std::vector<std::string> all{arguments[0], "--benchmark_repetitions=" + std::to_string(kRepetitions),
                                 "--benchmark_min_time=0.02", "--benchmark_enable_random_interleaving=true"};
    all.insert(all.end(), arguments + 1, arguments + count);
    return all;
}

int RunAll(eSuite& suite, const eArguments& arguments, int count, char** given) {
    std::vector<std::string> texts = BenchmarkArguments(count, given);
    std::vector<char*> pointers;
    for (std::string& each : texts)
        pointers.push_back(each.data());
    int number = static_cast<int>(pointers.size());
    benchmark::Initialize(&number, pointers.data());
    if (benchmark::ReportUnrecognizedArguments(number, pointers.data()))
        return EXIT_FAILURE;

    eAgreement agreement;
    eChecked checked;
    eProgress progress(ProgramName(given[0]));
    eMeasurements measured;
    std::map<std::string, const eRow*> rows;
    size_t runs = 0;
    size_t allRuns = 0;
    for (const auto& work : suite.Works())
        for (const eRow& row : work->rows) {
            measured[&row];
            rows[RowName(*work, row)] = &row;
            auto* registered = benchmark::RegisterBenchmark(RowName(*work, row).c_str(), [&](benchmark::State& state) {
                progress.Next("run", ++runs, allRuns, RowName(*work, row));
                Measure(state, *work, row, agreement, checked);
            });
            if (row.isCommand)
                registered->UseManualTime();
            const int own = OwnRepetitions(row, arguments.options);
            if (own > 0)
                registered->Repetitions(own);
            allRuns += static_cast<size_t>(own > 0 ? own : kRepetitions);
        }
    const eRunInfo run = RunInfo(ProgramName(given[0]), WorkFolder());
    std::cout << Heading(run) << std::flush;
    if (arguments.peaks)
        MeasurePeaks(suite, arguments, measured, progress);
    eCollector collector(rows, measured);
    benchmark::RunSpecifiedBenchmarks(&collector);
    benchmark::Shutdown();

    const std::vector<eJudgedWork> judged = Judge(suite.Works(), measured);
    std::cout << Tables(judged);
    if (!arguments.json.empty())
        WriteWhole(arguments.json, JsonReport(run, judged));
    bool isEqual = true;
    for (const auto& [row, each] : measured)
        isEqual = isEqual && each.failure.empty();
    std::cout << "\nchecksums, equal for all contenders of a work:" << (isEqual ? "" : " NOT SO") << "\n";
    for (const auto& work : suite.Works())
        if (const auto found = agreement.Checksums().find(work.get()); found != agreement.Checksums().end())
            std::printf("  %016llx %s\n", static_cast<unsigned long long>(found->second), work->name.c_str());
    return isEqual ? EXIT_SUCCESS : EXIT_FAILURE;
}

int Main(int count, char** given) {
    const eArguments arguments = TakeArguments(count, given);
    if (arguments.isPeak)
        platform::ReturnLargeBlocks();
    eSuite suite(arguments.options, arguments.row);
    eContender::AddAll(suite);
    if (!arguments.row.empty())
        return RunOneRow(suite, arguments);
    if (arguments.list) {
        for (const auto& work : suite.Works())
            for (const eRow& row : work->rows)
                if (row.kind == eKind::Ours && row.counted)
                    std::cout << RowName(*work, row) << "\n";
        return EXIT_SUCCESS;
    }
    return RunAll(suite, arguments, count, given);
}

} // namespace
} // namespace bench

int main(int count, char** arguments) {
    try {
        return bench::Main(count, arguments);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return EXIT_FAILURE;
    }
}
