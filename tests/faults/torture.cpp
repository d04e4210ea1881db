// SPDX-License-Identifier: BSL-1.0
#include "faults/torture.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>
#include <span>
#include <utility>

#include <gtest/gtest.h>

#include <qzl_base/error.h>

#include "faults/injection.h"
#include "faults/platform/system.h"
#include "support/long_tests.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kTimeForAKind = std::chrono::milliseconds(15);
constexpr auto kTimeForAScenario = std::chrono::milliseconds(150);

// --- The reports ---

struct eNotes {
    const eScenario* scenario = nullptr;
    int errors = 0;
    int warnings = 0;
    std::array<char, 200> unexpected{};
    std::array<char, 2000> lastWarning{};
};

eNotes notes;

void Note(const xError::eReport& report, int* count) {
    ++*count;
    if (!notes.scenario->Expects(report.message) && notes.unexpected[0] == 0)
        std::strncpy(notes.unexpected.data(), report.message.c_str(), notes.unexpected.size() - 1);
}

class eNoting {
public:
    explicit eNoting(const eScenario& scenario) {
        notes = {.scenario = &scenario};
        xError::SetErrorHandler([](const xError::eReport& report) {
            Note(report, &notes.errors);
            if (!notes.scenario->Returns())
                throw xError::eException(report);
        });
        xError::SetWarningHandler([](const xError::eReport& report) {
            Note(report, &notes.warnings);
            std::snprintf(notes.lastWarning.data(), notes.lastWarning.size(), "%s\n%s", report.message.c_str(),
                          report.context.c_str());
        });
    }
    ~eNoting() {
        xError::SetErrorHandler({});
        xError::SetWarningHandler({});
    }
    eNoting(const eNoting&) = delete;
    eNoting& operator=(const eNoting&) = delete;
};

// --- What a crash interrupts ---

std::array<char, 200> underWay;

void Say() {
    std::fputs(underWay.data(), stderr);
    std::fflush(stderr);
}

void SayAtCrash(int signal) {
    Say();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void WatchForCrashes() {
    std::signal(SIGABRT, SayAtCrash);
    std::signal(SIGSEGV, SayAtCrash);
}

// --- One scenario ---

bool IsNoMemoryAtAll(const eFaultMode& mode) {
    return mode.use == eUse::Allocation && mode.effect == eEffect::FailsFromThereOn;
}

class eTorture {
public:
    eTorture(const std::string& theName, const std::function<std::unique_ptr<eScenario>()>& theMake)
        : name(theName), make(theMake) {}

    unsigned long long Faults() const { return faults; }

    // Runs without a fault, twice, since a first use fills caches.
    void Count() {
        Strike(FaultModes().front(), 0);
        Strike(FaultModes().front(), 0);
        all = uses;
    }

    void All() {
        for (const eFaultMode& mode : FaultModes())
            for (unsigned long long n = 1; !testing::Test::HasFailure() && Check(mode, n); ++n)
                ;
    }

    // Where there is not time enough for every kind, each scenario begins with another one.
    void Sample() {
        static std::size_t begin = 0;
        const std::span<const eFaultMode> modes = FaultModes();
        const auto end = Clock::now() + kTimeForAScenario;
        for (std::size_t done = 0; done < modes.size() && Clock::now() < end; ++done)
            Sample(modes[begin++ % modes.size()]);
    }

private:
    // Steps of the golden ratio spread over all uses, however many there are.
    void Sample(const eFaultMode& mode) {
        constexpr double kGoldenRatio = 0.618033988749895;
        const unsigned long long last = all[static_cast<std::size_t>(mode.use)];
        const auto end = Clock::now() + kTimeForAKind;
        double place = kGoldenRatio;
        for (unsigned long long done = 0; done < last && (done == 0 || Clock::now() < end); ++done) {
            if (testing::Test::HasFailure())
                return;
            Check(mode, 1 + static_cast<unsigned long long>(place * static_cast<double>(last)));
            place += kGoldenRatio - (place + kGoldenRatio < 1 ? 0 : 1);
        }
    }

    // What is left over after a fault.
    struct eLeft {
        bool struck = false;
        long long blocks = 0;
        long long handles = 0;
    };

    // What is left over only once is a cache.
    bool Check(const eFaultMode& mode, unsigned long long n) {
        const testing::ScopedTrace trace(__FILE__, __LINE__, name + ", " + mode.name + ", use " + std::to_string(n));
        eLeft left = Strike(mode, n);
        if (testing::Test::HasFailure())
            return false;
        if (left.blocks != 0 || left.handles != 0)
            left = Strike(mode, n);
        EXPECT_EQ(0, left.blocks) << "blocks of memory have leaked";
        EXPECT_EQ(0, left.handles) << "handles are still open";
        faults += left.struck ? 1 : 0;
        return left.struck && !testing::Test::HasFailure();
    }

    eLeft Strike(const eFaultMode& mode, unsigned long long n) {
        std::snprintf(underWay.data(), underWay.size(), "Died in: %s, %s, use %llu\n", name.c_str(), mode.name, n);
        eLeft left;
        const long long handles = OpenHandles();
        const long long blocks = eBlocks::Live();
        Work(mode, n, &left.struck);
        left.blocks = eBlocks::Live() - blocks;
        left.handles = OpenHandles() - handles;
        return left;
    }

    void Work(const eFaultMode& mode, unsigned long long n, bool* struck) {
        const auto scenario = make();
        const char* function = "";
        const bool succeeded = Run(*scenario, mode, n, struck, &function);
        const bool harmed = *struck && !mode.harmless;
        if (!succeeded) {
            EXPECT_TRUE(harmed) << function << " made it fail";
        }
        const bool complete = succeeded && (scenario->Tells() || !harmed);
        EXPECT_STREQ("", notes.unexpected.data()) << "reported when " << function << " failed";
        scenario->Look({complete, mode.effect == eEffect::Cuts, IsNoMemoryAtAll(mode)});
        if (!*struck)
            return;
        EXPECT_TRUE(Again(*scenario)) << "after " << function << " had failed, the same does not work any more";
        scenario->Look({true, false, false});
        if (testing::Test::HasFailure())
            ADD_FAILURE() << "the call was " << function;
    }

    bool Run(eScenario& scenario, const eFaultMode& mode, unsigned long long n, bool* struck, const char** function) {
        const eNoting noting(scenario);
        const eInjection injection(mode, n);
        bool complete = false;
        try {
            complete = scenario.Run();
        } catch (const std::bad_alloc&) {
        } catch (const xError::eException&) {
        }
        for (std::size_t kind = 0; kind < kUses; ++kind)
            uses[kind] = injection.Uses(static_cast<eUse>(kind));
        *struck = injection.Struck();
        *function = injection.Function();
        return complete;
    }

    bool Again(eScenario& scenario) {
        const eNoting noting(scenario);
        return scenario.Run();
    }

    const std::string& name;
    const std::function<std::unique_ptr<eScenario>()>& make;
    std::array<unsigned long long, kUses> uses{}; // in the latest run
    std::array<unsigned long long, kUses> all{};  // without a fault
    unsigned long long faults = 0;
};

// --- The sum ---

class eSum : public testing::Environment {
public:
    static void Add(unsigned long long faults) { sum += faults; }
    void TearDown() override { std::printf("%llu faults in all\n", sum); }

private:
    static inline unsigned long long sum = 0;
};

[[maybe_unused]] testing::Environment* const printsSum = testing::AddGlobalTestEnvironment(new eSum);

} // namespace

int eNoted::Errors() {
    return notes.errors;
}

int eNoted::Warnings() {
    return notes.warnings;
}

const char* eNoted::LastWarning() {
    return notes.lastWarning.data();
}

void Torture(const std::string& name, const std::function<std::unique_ptr<eScenario>()>& make) {
    if (!AreCallsRouted())
        GTEST_SKIP() << "the libraries' calls do not pass through the test program";
    WatchForCrashes();
    eTorture torture(name, make);
    torture.Count();
    if (LongTests())
        torture.All();
    else
        torture.Sample();
    CountFaults(name, torture.Faults());
}

void CountFaults(const std::string& name, unsigned long long faults) {
    eSum::Add(faults);
    std::printf("%s: %llu faults\n", name.c_str(), faults);
}
