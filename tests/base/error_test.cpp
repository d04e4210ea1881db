// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/error.h>

#include <atomic>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/stack_entry.h>

#include "support/reports.h"

namespace {

using xError::eException;
using xError::eReport;

// Runs a test with the default handlers, and then restores the previous ones.
class Reports : public testing::Test {
protected:
    Reports() : error(xError::SetErrorHandler({})), warning(xError::SetWarningHandler({})) {}
    ~Reports() override {
        xError::SetErrorHandler(error);
        xError::SetWarningHandler(warning);
    }

private:
    xError::eHandler error;
    xError::eHandler warning;
};

std::string StandardErrorOf(const std::string& message) {
    testing::internal::CaptureStderr();
    xError::Warning("unit", 12, message, 0);
    return testing::internal::GetCapturedStderr();
}

// The report of the exception that a fatal error throws.
eReport FatalReport() {
    const auto fail = [] { xError::Fatal("unit", 9, "text"); };
    try {
        fail();
    } catch (const eException& exception) {
        return exception.Report();
    }
    ADD_FAILURE() << "nothing thrown";
    return {};
}

TEST_F(Reports, AnErrorThrowsItsReportByDefault) {
    try {
        xError::Error("internal/src/unit", 308, "Number expected!", true);
        FAIL();
    } catch (const eException& exception) {
        EXPECT_STREQ("Number expected!", exception.what());
        EXPECT_EQ("internal/src/unit", exception.Report().file);
        EXPECT_EQ(308, exception.Report().line);
        EXPECT_EQ("Number expected!", exception.Report().message);
        EXPECT_EQ("", exception.Report().context);
    }
}

TEST_F(Reports, AnErrorIsCaughtAsARuntimeError) {
    EXPECT_THROW(xError::Error("unit", 1, std::string("text"), true), std::runtime_error);
}

TEST_F(Reports, AWarningPrintsOneLineByDefaultAndReturns) {
    EXPECT_EQ("warning: unit(12): Value is NaN!\n", StandardErrorOf("Value is NaN!"));
}

TEST_F(Reports, AWarningOfSeveralLinesStillPrintsOneLine) {
    EXPECT_EQ("warning: unit(12): a  b c\n", StandardErrorOf("a\r\nb\nc"));
}

TEST_F(Reports, NullTextsCountAsEmpty) {
    eReports reports;
    const char* const none = nullptr;
    xError::Error(none, 1, none, true);
    xError::Warning(none, 2, none, 0);
    ASSERT_EQ(1u, reports.errors().size());
    EXPECT_EQ("", reports.errors()[0].file);
    EXPECT_EQ("", reports.errors()[0].message);
    ASSERT_EQ(1u, reports.warnings().size());
    EXPECT_EQ("", reports.warnings()[0].file);
    EXPECT_EQ("", reports.warnings()[0].message);
}

TEST_F(Reports, BothFormsOfAMessageReachTheHandlerWhole) {
    eReports reports;
    xError::Error("unit", 1, "narrow", true);
    xError::Error("unit", 2, std::string("with\0zero", 9), true);
    xError::Warning("unit", 3, "narrow", 0);
    xError::Warning("unit", 4, std::string("with\0zero", 9), 0);
    ASSERT_EQ(2u, reports.errors().size());
    EXPECT_EQ("narrow", reports.errors()[0].message);
    EXPECT_EQ(std::string("with\0zero", 9), reports.errors()[1].message);
    ASSERT_EQ(2u, reports.warnings().size());
    EXPECT_EQ("narrow", reports.warnings()[0].message);
    EXPECT_EQ(std::string("with\0zero", 9), reports.warnings()[1].message);
}

TEST_F(Reports, AHandlerThatReturnsLetsErrorReturn) {
    int calls = 0;
    xError::SetErrorHandler([&calls](const eReport&) { ++calls; });
    EXPECT_NO_THROW(xError::Error("unit", 1, "text", true));
    EXPECT_EQ(1, calls);
}

TEST_F(Reports, SettingAHandlerReturnsThePreviousOne) {
    int first = 0;
    EXPECT_FALSE(xError::SetErrorHandler([&first](const eReport&) { ++first; }));
    const auto previous = xError::SetErrorHandler([](const eReport&) {});
    ASSERT_TRUE(previous);
    previous({});
    EXPECT_EQ(1, first);
    xError::SetErrorHandler(previous);
    xError::Error("unit", 1, "text", true);
    EXPECT_EQ(2, first);
}

TEST_F(Reports, AnEmptyHandlerRestoresTheDefault) {
    xError::SetErrorHandler([](const eReport&) {});
    EXPECT_TRUE(xError::SetErrorHandler({}));
    EXPECT_THROW(xError::Error("unit", 1, "text", true), eException);
    EXPECT_FALSE(xError::SetErrorHandler(nullptr));

    xError::SetWarningHandler([](const eReport&) {});
    EXPECT_TRUE(xError::SetWarningHandler({}));
    EXPECT_EQ("warning: unit(12): text\n", StandardErrorOf("text"));
}

TEST_F(Reports, ErrorsAndWarningsHaveHandlersOfTheirOwn) {
    eReports reports;
    xError::Error("unit", 1, "error", true);
    xError::Warning("unit", 2, "warning", 0);
    EXPECT_EQ(1u, reports.errors().size());
    EXPECT_EQ(1u, reports.warnings().size());
}

TEST_F(Reports, AHandlerMayReportAgain) {
    std::vector<std::string> messages;
    xError::SetErrorHandler([&messages](const eReport& report) {
        messages.push_back(report.message);
        if (messages.size() < 3)
            xError::Error("unit", 2, report.message + "!", true);
    });
    xError::Error("unit", 1, "a", true);
    EXPECT_EQ((std::vector<std::string>{"a", "a!", "a!!"}), messages);
}

TEST_F(Reports, AHandlerMayReplaceItselfWhileItRuns) {
    auto state = std::make_shared<std::string>("before");
    std::string seen;
    xError::SetErrorHandler([state, &seen](const eReport&) {
        xError::SetErrorHandler([](const eReport&) {});
        seen = *state;
    });
    state.reset();
    xError::Error("unit", 1, "text", true);
    EXPECT_EQ("before", seen);
}

TEST_F(Reports, AnExceptionFromAHandlerReachesTheReporter) {
    xError::SetErrorHandler([](const eReport&) { throw 7; });
    EXPECT_THROW(xError::Error("unit", 1, "text", true), int);
    xError::SetWarningHandler([](const eReport&) { throw 8; });
    EXPECT_THROW(xError::Warning("unit", 1, "text", 0), int);
}

TEST_F(Reports, AFatalErrorThrowsItsReportWhateverTheHandlerDoes) {
    for (const auto mode : {eReports::Returns, eReports::Throws}) {
        eReports reports(mode);
        const eReport thrown = FatalReport();
        EXPECT_EQ("text", thrown.message);
        EXPECT_EQ("unit", thrown.file);
        EXPECT_EQ(9, thrown.line);
        EXPECT_EQ(1u, reports.errors().size());
    }
    EXPECT_THROW(xError::Fatal("unit", 9, "text"), eException);
}

TEST_F(Reports, AFatalErrorThrowsTheContextThatItReported) {
    struct ePlace : xDebug::eStackEntry {
        ~ePlace() override { LeaveStack(); }
        std::string DSE_Title() const override { return "the place"; }
    };
    const ePlace place;
    const eReports reports;
    EXPECT_EQ("the place\n", FatalReport().context);
    ASSERT_EQ(1u, reports.errors().size());
    EXPECT_EQ("the place\n", reports.errors()[0].context);
}

TEST_F(Reports, CopiesOfAnExceptionShareItsReportWithoutThrowing) {
    static_assert(std::is_nothrow_copy_constructible_v<eException>);
    static_assert(std::is_nothrow_copy_assignable_v<eException>);
    const eReport report{"unit", 5, "text", "context\n"};
    const eException original(report);
    eException copy(original);
    copy = original;
    EXPECT_STREQ("text", copy.what());
    EXPECT_EQ(&original.Report(), &copy.Report());
    EXPECT_EQ("context\n", copy.Report().context);
}

TEST_F(Reports, HandlersMayBeExchangedWhileOtherThreadsReport) {
    std::atomic<int> handled = 0;
    const auto count = [&handled](const eReport&) { ++handled; };
    xError::SetErrorHandler(count);
    constexpr int kThreads = 4;
    constexpr int kReports = 500;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&] {
            for (int report = 0; report < kReports; ++report) {
                xError::Error("unit", report, "text", true);
                xError::SetErrorHandler(count);
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(kThreads * kReports, handled);
}

} // namespace
