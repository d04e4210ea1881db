// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/stack_entry.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/error.h>

#include "support/reports.h"

namespace {

class ePlace : public xDebug::eStackEntry {
public:
    ePlace(std::string theTitle, std::string theBrief, std::string theFull)
        : title(std::move(theTitle)), brief(std::move(theBrief)), full(std::move(theFull)) {}
    ~ePlace() override { LeaveStack(); }
    ePlace(const ePlace&) = default;
    ePlace& operator=(const ePlace&) = default;

    std::string DSE_Title() const override { return title; }
    std::string DSE_Brief() const override { return brief; }
    std::string DSE_Full() const override { return full; }

    void Leave() { LeaveStack(); }
    void Enter() { EnterStack(); }

private:
    std::string title;
    std::string brief;
    std::string full;
};

std::string Context() {
    eReports reports;
    xError::Error("unit", 1, "text", true);
    return reports.errors().at(0).context;
}

TEST(DiagnosticStack, GivesNoContextWhileItIsEmpty) {
    EXPECT_EQ("", Context());
}

TEST(DiagnosticStack, DescribesItsEntriesInnermostFirst) {
    const ePlace outer("\"a.sdl\"", ", 3", "3: {\n");
    const ePlace inner("\"b.sdl\"", ", 12", "12: x\n13: y\n");
    EXPECT_EQ("\"b.sdl\", 12\n12: x\n13: y\n\"a.sdl\", 3\n3: {\n", Context());
}

TEST(DiagnosticStack, TextsAreLaidOutAsPromised) {
    const struct {
        const char* title;
        const char* brief;
        const char* full;
        const char* context;
    } rows[] = {
        {"t", "b", "f", "tb\nf\n"}, {"t", "b", "f\n", "tb\nf\n"}, {"t", "b", "", "tb\n"}, {"t", "", "", "t\n"},
        {"", "b", "", "b\n"},       {"", "", "f", "\nf\n"},       {"", "", "", ""},
    };
    for (const auto& row : rows) {
        const ePlace place(row.title, row.brief, row.full);
        EXPECT_EQ(row.context, Context()) << row.title << '|' << row.brief << '|' << row.full;
    }
}

TEST(DiagnosticStack, WarningsAndThrownErrorsCarryItToo) {
    const ePlace place("t", "b", "f");
    eReports reports(eReports::Throws);
    xError::Warning("unit", 1, "text", 0);
    EXPECT_EQ("tb\nf\n", reports.warnings().at(0).context);
    try {
        xError::Error("unit", 1, "text", true);
        FAIL();
    } catch (const xError::eException& exception) {
        EXPECT_STREQ("text", exception.what());
        EXPECT_EQ("tb\nf\n", exception.Report().context);
    }
}

TEST(DiagnosticStack, AnEntryWithoutTextsOfItsOwnLeavesNoTrace) {
    const xDebug::eStackEntry entry;
    EXPECT_EQ("", Context());
}

TEST(DiagnosticStack, EntriesMayLeaveInAnyOrder) {
    auto first = std::make_unique<ePlace>("1", "", "");
    auto second = std::make_unique<ePlace>("2", "", "");
    auto third = std::make_unique<ePlace>("3", "", "");
    second.reset();
    EXPECT_EQ("3\n1\n", Context());
    first.reset();
    EXPECT_EQ("3\n", Context());
    const ePlace fourth("4", "", "");
    third.reset();
    EXPECT_EQ("4\n", Context());
}

TEST(DiagnosticStack, LeavingTwiceIsLeavingOnce) {
    ePlace first("1", "", "");
    const ePlace second("2", "", "");
    first.Leave();
    first.Leave();
    EXPECT_EQ("2\n", Context());
}

TEST(DiagnosticStack, AnEntryMayEnterAgainAsTheInnermostOne) {
    ePlace first("1", "", "");
    ePlace second("2", "", "");
    const ePlace third("3", "", "");
    first.Enter();
    EXPECT_EQ("1\n3\n2\n", Context());
    first.Enter();
    second.Leave();
    second.Enter();
    EXPECT_EQ("2\n1\n3\n", Context());
}

TEST(DiagnosticStack, AnEntryMayEnterTheStackOfAnotherThread) {
    ePlace wanderer("wanderer", "", "");
    std::string there;
    std::thread([&] {
        const ePlace own("own", "", "");
        wanderer.Enter();
        there = Context();
    }).join();
    EXPECT_EQ("wanderer\nown\n", there);
    EXPECT_EQ("", Context());
    wanderer.Enter();
    EXPECT_EQ("wanderer\n", Context());
}

TEST(DiagnosticStack, AnEntryMayEnterAgainWhileItIsDescribed) {
    class eEnterer : public xDebug::eStackEntry {
    public:
        eEnterer* self = this;
        std::string DSE_Title() const override {
            self->EnterStack();
            return "enterer";
        }
    };
    auto enterer = std::make_unique<eEnterer>();
    const ePlace outer("outer", "", "");
    EXPECT_EQ("outer\nenterer\n", Context());
    EXPECT_EQ("enterer\nouter\n", Context());
    std::thread([&] { enterer.reset(); }).join();
    EXPECT_EQ("outer\n", Context());
}

TEST(DiagnosticStack, DescribesEightOfManyAndCountsTheRest) {
    class eOneOfMany : public xDebug::eStackEntry {
    public:
        explicit eOneOfMany(int theNumber) : eStackEntry(eNumber::Many), number(theNumber) {}
        std::string DSE_Title() const override { return std::to_string(number); }

    private:
        int number;
    };
    const ePlace outer("outer", "", "");
    std::vector<std::unique_ptr<eOneOfMany>> many;
    for (int number = 0; number < 8; ++number)
        many.push_back(std::make_unique<eOneOfMany>(number));
    EXPECT_EQ("7\n6\n5\n4\n3\n2\n1\n0\nouter\n", Context());
    const ePlace inner("inner", "", "");
    many.push_back(std::make_unique<eOneOfMany>(8));
    const eOneOfMany copy(*many.back());
    EXPECT_EQ("8\n8\ninner\n7\n6\n5\n4\n3\n2\n... and 2 more\nouter\n", Context());
}

TEST(DiagnosticStack, DescribesAnyNumberOfOthers) {
    std::vector<std::unique_ptr<ePlace>> places;
    std::string expected;
    for (int number = 0; number < 3000; ++number) {
        places.push_back(std::make_unique<ePlace>(std::to_string(number), "", ""));
        expected.insert(0, std::to_string(number) + "\n");
    }
    EXPECT_EQ(expected, Context());
}

TEST(DiagnosticStack, ACopyIsAnEntryOfItsOwn) {
    auto original = std::make_unique<ePlace>("a", "", "");
    const ePlace copy(*original);
    EXPECT_EQ("a\na\n", Context());
    original.reset();
    EXPECT_EQ("a\n", Context());
}

TEST(DiagnosticStack, AssignmentKeepsEachEntryInItsPlace) {
    ePlace first("1", "", "");
    const ePlace second("2", "", "");
    first = second;
    EXPECT_EQ("2\n2\n", Context());
}

TEST(DiagnosticStack, AThrowingEntryDoesNotHarmTheReport) {
    class eThrower : public xDebug::eStackEntry {
        std::string DSE_Title() const override { return "title"; }
        std::string DSE_Full() const override { throw std::runtime_error("no text"); }
    };
    const ePlace outer("outer", "", "");
    const eThrower thrower;
    const ePlace inner("inner", "", "");
    EXPECT_EQ("inner\nouter\n", Context());
}

TEST(DiagnosticStack, AnEntryMayReportWhileItIsDescribed) {
    class eReporter : public xDebug::eStackEntry {
        std::string DSE_Title() const override {
            xError::Warning("unit", 2, "nested", 0);
            return "reporter";
        }
    };
    const eReporter reporter;
    eReports reports;
    xError::Error("unit", 1, "text", true);
    ASSERT_EQ(1u, reports.errors().size());
    EXPECT_EQ("reporter\n", reports.errors()[0].context);
    ASSERT_EQ(1u, reports.warnings().size());
    EXPECT_EQ("", reports.warnings()[0].context);
}

TEST(DiagnosticStack, AnEntryMayMakeEntriesWhileItIsDescribed) {
    class eMaker : public xDebug::eStackEntry {
        std::string DSE_Title() const override {
            const ePlace temporary("temporary", "", "");
            return "maker";
        }
    };
    const eMaker maker;
    EXPECT_EQ("maker\n", Context());
}

TEST(DiagnosticStack, AnEntryMayEndOthersWhileItIsDescribed) {
    class eEnder : public xDebug::eStackEntry {
    public:
        mutable std::unique_ptr<ePlace> other;
        std::string DSE_Title() const override {
            other.reset();
            return "ender";
        }
    };
    auto outer = std::make_unique<ePlace>("outer", "", "");
    eEnder ender;
    ender.other = std::move(outer);
    EXPECT_EQ("ender\n", Context());
}

TEST(DiagnosticStack, AnotherThreadsEntryIsNotTakenForAnEndedOneAtItsAddress) {
    class eReplacer : public xDebug::eStackEntry {
    public:
        explicit eReplacer(std::optional<ePlace>& theOther) : other(theOther) {}
        std::string DSE_Title() const override {
            other.reset();
            std::thread([this] { other.emplace("foreign", "", ""); }).join();
            return "replacer";
        }

    private:
        std::optional<ePlace>& other;
    };
    std::optional<ePlace> outer(std::in_place, "outer", "", "");
    const eReplacer replacer(outer);
    EXPECT_EQ("replacer\n", Context());
}

TEST(DiagnosticStack, AnEntryMayLeaveWhileItIsDescribed) {
    class eLeaver : public xDebug::eStackEntry {
    public:
        eLeaver* self = this;
        std::string DSE_Title() const override {
            self->LeaveStack();
            return "leaver";
        }
    };
    const eLeaver leaver;
    EXPECT_EQ("leaver\n", Context());
    EXPECT_EQ("", Context());
}

TEST(DiagnosticStack, AReportDuringConstructionUsesTheTextsOfTheFinishedBases) {
    class eEager : public ePlace {
    public:
        explicit eEager(std::string* context) : eEager(context, Context()) {}

    private:
        eEager(std::string* context, const std::string& before) : ePlace("base", "", "") {
            *context = before + Context();
        }
        std::string DSE_Title() const override { return "derived"; }
    };
    std::string context;
    const eEager eager(&context);
    EXPECT_EQ("derived\n", context);
}

TEST(DiagnosticStack, BelongsToOneThread) {
    const ePlace place("main", "", "");
    std::string other;
    std::string otherEmpty;
    std::thread([&] {
        otherEmpty = Context();
        const ePlace own("other", "", "");
        other = Context();
    }).join();
    EXPECT_EQ("", otherEmpty);
    EXPECT_EQ("other\n", other);
    EXPECT_EQ("main\n", Context());
}

TEST(DiagnosticStack, AnEntryMayOutliveItsThreadAndEndOnAnother) {
    std::unique_ptr<ePlace> wanderer;
    std::thread([&wanderer] { wanderer = std::make_unique<ePlace>("wanderer", "", ""); }).join();
    EXPECT_EQ("", Context());
    std::thread([] { EXPECT_EQ("", Context()); }).join();
    wanderer.reset();
    EXPECT_EQ("", Context());
}

TEST(DiagnosticStack, AnEntryIsDestroyedElsewhereOnlyAfterItsDescription) {
    std::atomic<bool> describing = false;
    std::atomic<bool> described = false;
    class eSlow : public xDebug::eStackEntry {
    public:
        eSlow(std::atomic<bool>& first, std::atomic<bool>& last) : begun(first), ended(last) {}
        ~eSlow() override { LeaveStack(); }
        eSlow(const eSlow&) = delete;
        eSlow& operator=(const eSlow&) = delete;
        std::string DSE_Title() const override {
            begun = true;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            ended = true;
            return title;
        }

    private:
        std::atomic<bool>& begun;
        std::atomic<bool>& ended;
        std::string title = "a title that is longer than any small buffer of a string";
    };
    eReports reports;
    std::unique_ptr<eSlow> slow;
    std::thread reporter([&] {
        slow = std::make_unique<eSlow>(describing, described);
        xError::Error("unit", 1, "text", true);
    });
    while (!describing)
        std::this_thread::yield();
    slow.reset();
    EXPECT_TRUE(described);
    reporter.join();
    EXPECT_EQ("a title that is longer than any small buffer of a string\n", reports.errors().at(0).context);
}

TEST(DiagnosticStack, ManyThreadsUseItAtOnce) {
    eReports reports;
    std::vector<std::unique_ptr<ePlace>> left(4);
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < left.size(); ++thread)
        threads.emplace_back([&left, thread] {
            const std::string name = std::to_string(thread);
            for (int round = 0; round < 100; ++round) {
                left[thread] = std::make_unique<ePlace>(name, "", "");
                const ePlace place("in ", name, "");
                xError::Error("unit", static_cast<int>(thread), "text", true);
            }
        });
    for (auto& thread : threads)
        thread.join();
    ASSERT_EQ(400u, reports.errors().size());
    for (const auto& report : reports.errors()) {
        const std::string name = std::to_string(report.line);
        EXPECT_EQ("in " + name + "\n" + name + "\n", report.context);
    }
}

} // namespace
