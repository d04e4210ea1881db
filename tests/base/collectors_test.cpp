// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/collectors.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

using xCollectors::xGlobal::eGlobalFunctionRegistrator;
using xCollectors::xGlobal::Exit;
using xCollectors::xGlobal::Init;

std::string calls;
std::unique_ptr<eGlobalFunctionRegistrator> dynamic;
std::atomic<int> concurrentCalls = 0;

const eGlobalFunctionRegistrator kStatic(
    "static", [] { calls += "static"; }, nullptr);

class Collectors : public testing::Test {
protected:
    Collectors() { calls.clear(); }
    ~Collectors() override { dynamic.reset(); }
};

TEST_F(Collectors, RunAGroupInOrderAndInReverse) {
    const eGlobalFunctionRegistrator first(
        "group", [] { calls += "1"; }, [] { calls += "-1"; });
    const eGlobalFunctionRegistrator other(
        "other", [] { calls += "x"; }, [] { calls += "-x"; });
    const eGlobalFunctionRegistrator second(
        "group", [] { calls += "2"; }, [] { calls += "-2"; });
    Init("group");
    EXPECT_EQ("12", calls);
    Exit("group");
    EXPECT_EQ("12-2-1", calls);
}

TEST_F(Collectors, RunNothingForAnUnknownGroup) {
    Init("nobody");
    Exit("nobody");
    EXPECT_EQ("", calls);
}

TEST_F(Collectors, SkipNullFunctions) {
    const eGlobalFunctionRegistrator init(
        "group", [] { calls += "i"; }, nullptr);
    const eGlobalFunctionRegistrator exit("group", nullptr, [] { calls += "e"; });
    Init("group");
    Exit("group");
    EXPECT_EQ("ie", calls);
}

TEST_F(Collectors, ServeStaticRegistrations) {
    Init("static");
    EXPECT_EQ("static", calls);
}

TEST_F(Collectors, RunAgainWhenAskedAgain) {
    const eGlobalFunctionRegistrator one(
        "group", [] { calls += "1"; }, nullptr);
    Init("group");
    Init("group");
    EXPECT_EQ("11", calls);
}

TEST_F(Collectors, ForgetARegistrationThatEnded) {
    {
        const eGlobalFunctionRegistrator gone(
            "group", [] { calls += "gone"; }, nullptr);
    }
    Init("group");
    EXPECT_EQ("", calls);
}

TEST_F(Collectors, DoNotRunWhatAnEarlierFunctionUnregistered) {
    const eGlobalFunctionRegistrator first(
        "group",
        [] {
            calls += "1";
            dynamic.reset();
        },
        nullptr);
    dynamic = std::make_unique<eGlobalFunctionRegistrator>(
        "group", [] { calls += "2"; }, nullptr);
    Init("group");
    EXPECT_EQ("1", calls);
}

TEST_F(Collectors, RunWhatAFunctionRegistersOnlyNextTime) {
    const eGlobalFunctionRegistrator first(
        "group",
        [] {
            calls += "1";
            if (!dynamic)
                dynamic = std::make_unique<eGlobalFunctionRegistrator>(
                    "group", [] { calls += "2"; }, nullptr);
        },
        nullptr);
    Init("group");
    EXPECT_EQ("1", calls);
    Init("group");
    EXPECT_EQ("112", calls);
}

TEST_F(Collectors, PassOnAnExceptionAndStop) {
    const eGlobalFunctionRegistrator first(
        "group", [] { throw std::runtime_error("failed"); }, nullptr);
    const eGlobalFunctionRegistrator second(
        "group", [] { calls += "2"; }, nullptr);
    EXPECT_THROW(Init("group"), std::runtime_error);
    EXPECT_EQ("", calls);
}

TEST_F(Collectors, MayBeUsedByManyThreadsAtOnce) {
    concurrentCalls = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([thread] {
            const std::string group = "thread " + std::to_string(thread);
            for (int round = 0; round < 100; ++round) {
                const eGlobalFunctionRegistrator one(
                    group, [] { ++concurrentCalls; }, [] { ++concurrentCalls; });
                Init(group);
                Exit(group);
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(800, concurrentCalls);
}

} // namespace
