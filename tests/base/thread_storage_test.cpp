// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/thread_storage.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <future>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/error.h>

#include "support/reports.h"

namespace {

std::atomic<int> living = 0;

struct eCounted {
    eCounted() { ++living; }
    ~eCounted() { --living; }
    eCounted(const eCounted&) = delete;
    eCounted& operator=(const eCounted&) = delete;
    int value = 0;
};

using eStorage = eCriticalResource<eCounted>;

static_assert(!std::is_copy_constructible_v<eStorage> && !std::is_copy_assignable_v<eStorage>);
static_assert(!std::is_copy_constructible_v<eCriticalSection> && !std::is_copy_assignable_v<eCriticalSection>);

// Creates storages until the system has no index left. The last one has none and has reported that.
std::vector<std::unique_ptr<eStorage>> Exhaust(const eReports& reports) {
    std::vector<std::unique_ptr<eStorage>> storages;
    while (reports.errors().empty() && storages.size() < 100000)
        storages.push_back(std::make_unique<eStorage>());
    return storages;
}

TEST(ThreadStorage, GivesAThreadTheSameObjectEachTime) {
    eStorage storage;
    eCounted& object = storage.Get();
    object.value = 5;
    EXPECT_EQ(&object, &storage.Get());
    EXPECT_EQ(5, storage.Get().value);
}

TEST(ThreadStorage, GivesEachStorageItsOwnObject) {
    eStorage first;
    eStorage second;
    EXPECT_NE(&first.Get(), &second.Get());
}

TEST(ThreadStorage, MakesNoObjectBeforeItIsAskedFor) {
    eStorage storage;
    EXPECT_EQ(0, living);
    storage.Get();
    EXPECT_EQ(1, living);
}

TEST(ThreadStorage, GivesEachThreadItsOwnObject) {
    eStorage storage;
    std::vector<eCounted*> objects(8);
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < objects.size(); ++thread)
        threads.emplace_back([&storage, &objects, thread] {
            objects[thread] = &storage.Get();
            for (int round = 0; round < 1000; ++round)
                ++storage.Get().value;
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(objects.size(), std::set<eCounted*>(objects.begin(), objects.end()).size());
    for (const eCounted* object : objects)
        EXPECT_EQ(1000, object->value);
}

TEST(ThreadStorage, KeepsObjectsOfEndedThreadsAndFreesAllWithItself) {
    {
        eStorage storage;
        storage.Get();
        for (int thread = 0; thread < 3; ++thread)
            std::thread([&storage] { storage.Get(); }).join();
        EXPECT_EQ(4, living);
    }
    EXPECT_EQ(0, living);
}

TEST(ThreadStorage, GivesItsIndexBack) {
    eReports reports;
    for (int round = 0; round < 5000; ++round)
        eStorage().Get();
    EXPECT_TRUE(reports.errors().empty());
}

TEST(ThreadStorage, GivesAThreadThatOutlivesAStorageAFreshObjectOfTheNext) {
    auto storage = std::make_unique<eStorage>();
    std::promise<void> used, replaced;
    int valueOfTheNext = -1;
    std::thread thread([&] {
        storage->Get().value = 7;
        used.set_value();
        replaced.get_future().wait();
        valueOfTheNext = storage->Get().value;
    });
    used.get_future().wait();
    storage.reset();
    storage = std::make_unique<eStorage>(); // usually with the index that was released
    replaced.set_value();
    thread.join();
    EXPECT_EQ(0, valueOfTheNext);
    EXPECT_EQ(1, living);
}

TEST(ThreadStorage, TriesAgainAfterAConstructorThatThrew) {
    static int constructions;
    constructions = 0;
    struct eOnceRefused {
        eOnceRefused() {
            if (++constructions == 1)
                throw std::runtime_error("refused");
        }
    };
    eCriticalResource<eOnceRefused> storage;
    EXPECT_THROW(storage.Get(), std::runtime_error);
    EXPECT_EQ(&storage.Get(), &storage.Get());
    EXPECT_EQ(2, constructions);
}

TEST(ThreadStorage, ReportsThatTheSystemHasNoIndexLeft) {
    eReports reports;
    const auto storages = Exhaust(reports);
    ASSERT_EQ(1u, reports.errors().size());
    const auto& report = reports.errors()[0];
    const std::string prefix = "Thread Storage Overflow : ";
    EXPECT_EQ("internal/include/qzl_base/thread_storage", report.file);
    EXPECT_EQ(20, report.line);
    ASSERT_EQ(prefix, report.message.substr(0, prefix.size()));
    const std::string code = report.message.substr(prefix.size());
    EXPECT_FALSE(code.empty());
    EXPECT_EQ(std::string::npos, code.find_first_not_of("0123456789")) << code;
}

TEST(ThreadStorage, ThrowsForLackOfAnIndexByDefault) {
    std::vector<std::unique_ptr<eStorage>> storages;
    {
        eReports reports;
        storages = Exhaust(reports);
    }
    const auto previous = xError::SetErrorHandler({});
    EXPECT_THROW(eStorage(), xError::eException);
    xError::SetErrorHandler(previous);
}

TEST(ThreadStorage, KeepsItsPromisesWithoutAnIndex) {
    eReports reports;
    const auto storages = Exhaust(reports);
    eStorage& storage = *storages.back();
    eCounted& object = storage.Get();
    EXPECT_EQ(&object, &storage.Get());
    std::vector<std::thread> threads;
    std::atomic<int> own = 0;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&] {
            eCounted& mine = storage.Get();
            own += &mine != &object && &mine == &storage.Get();
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(4, own);
    EXPECT_EQ(5, living);
}

TEST(ThreadStorage, CanBeMadeAgainAfterIndicesWereGivenBack) {
    {
        eReports reports;
        Exhaust(reports);
    }
    eReports reports;
    eStorage storage;
    EXPECT_TRUE(reports.errors().empty());
}

TEST(CriticalSection, KeepsOtherThreadsOut) {
    eCriticalSection section;
    int count = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&] {
            for (int round = 0; round < 1000; ++round) {
                eCriticalSectionLock lock(section);
                ++count;
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(4000, count);
}

TEST(CriticalSection, MayBeEnteredAgainByItsOwnerWhoLeavesItAsOften) {
    eCriticalSection section;
    section.Enter();
    section.Enter();
    std::atomic<bool> entered = false;
    std::thread other([&] {
        section.Enter();
        entered = true;
        section.Leave();
    });
    section.Leave();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(entered);
    section.Leave();
    other.join();
    EXPECT_TRUE(entered);
}

TEST(CriticalSection, EnterAndLeaveCanBeReplaced) {
    class eSpy : public eCriticalSection {
    public:
        void Enter() override { ++entered; }
        void Leave() override { ++left; }
        int entered = 0;
        int left = 0;
    };
    eSpy spy;
    {
        eCriticalSectionLock lock(spy);
        EXPECT_EQ(1, spy.entered);
        EXPECT_EQ(0, spy.left);
    }
    EXPECT_EQ(1, spy.left);
}

} // namespace
