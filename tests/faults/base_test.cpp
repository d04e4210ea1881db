// SPDX-License-Identifier: BSL-1.0
// Reports, thread storage and conversions while everything that they use fails.
#include <condition_variable>
#include <cstring>
#include <functional>
#include <mutex>
#include <new>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include <gtest/gtest.h>

#include <qzl_base/collectors.h>
#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_base/format.h>
#include <qzl_base/stack_entry.h>
#include <qzl_base/strings.h>
#include <qzl_base/thread_storage.h>

#include "faults/torture.h"

namespace {

// --- Reports ---

constexpr char kMessage[] = "something went wrong with a rather long message";

class eTold : public xDebug::eStackEntry {
public:
    std::string DSE_Title() const override { return "the thing that is worked on, with a long title"; }
    std::string DSE_Full() const override { return "several lines\nthat show the place\n"; }
};

// A report arrives whole, but for its context where there is no memory for that, or std::bad_alloc is thrown.
class eReporting : public eScenario {
public:
    bool Run() override {
        const eTold outer, inner;
        whole = lost = false;
        try {
            xError::Error("a source unit with a rather long name", 7, kMessage, true);
            lost = true;
        } catch (const xError::eException& exception) {
            const xError::eReport& report = exception.Report();
            lost = report.message != kMessage || std::strcmp(exception.what(), kMessage) != 0 || report.line != 7;
            whole = report.context.size() == 2 * (inner.DSE_Title() + "\n" + inner.DSE_Full()).size();
        }
        const int before = eNoted::Warnings();
        xError::Warning("a source unit", 8, format("%1% and %2%") % kMessage % 7, 0);
        return whole && eNoted::Warnings() == before + 1;
    }

    void Look(const eAftermath& after) override {
        EXPECT_FALSE(lost);
        EXPECT_TRUE(whole || !after.complete);
    }

    bool Expects(std::string_view message) const override { return message.starts_with(kMessage); }

private:
    bool whole = false;
    bool lost = false;
};

// A handler is installed or the previous one stays.
class eExchangingHandlers : public eScenario {
public:
    bool Run() override {
        reached = 0;
        const std::string captured = "a text that the handler holds and that takes memory";
        const auto previous = xError::SetWarningHandler([this, captured](const xError::eReport&) { ++reached; });
        xError::Warning("unit", 1, "", 0);
        xError::SetWarningHandler(previous);
        xError::Warning("unit", 1, kMessage, 0);
        return reached == 1 && std::string_view(eNoted::LastWarning()).starts_with(kMessage);
    }

    void Look(const eAftermath& after) override { EXPECT_TRUE(reached == 1 || !after.complete); }

    bool Expects(std::string_view message) const override { return message == kMessage || message.empty(); }

private:
    int reached = 0;
};

// --- Thread storage ---

// A second thread that is there before faults begin, since starting one takes memory.
class eOtherThread {
public:
    explicit eOtherThread(std::function<void()> theWork) : work(std::move(theWork)), thread([this] { Serve(); }) {
        Await(eStep::Wait);
    }
    ~eOtherThread() {
        Go(eStep::End);
        thread.join();
    }
    eOtherThread(const eOtherThread&) = delete;
    eOtherThread& operator=(const eOtherThread&) = delete;

    // Has the work done once, and waits for it.
    void Do() {
        Go(eStep::Work);
        Await(eStep::Wait);
    }

private:
    enum class eStep { Start, Wait, Work, End };

    void Go(eStep next) {
        const std::lock_guard lock(mutex);
        step = next;
        changed.notify_all();
    }

    void Await(eStep wanted) {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return step == wanted; });
    }

    // True if there is work, false at the end.
    bool AwaitWork() {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return step != eStep::Wait; });
        return step == eStep::Work;
    }

    void Serve() {
        for (Go(eStep::Wait); AwaitWork(); Go(eStep::Wait))
            work();
    }

    const std::function<void()> work;
    std::mutex mutex;
    std::condition_variable changed;
    eStep step = eStep::Start;
    std::thread thread;
};

template <bool returns>
class eStoring : public eScenario {
public:
    bool Run() override {
        eCriticalResource<std::string> storage;
        used = &storage;
        storage.Get() = "the text of the first thread, which takes memory";
        other = false;
        second.Do();
        own = storage.Get().starts_with("the text of the first thread");
        return own && other;
    }

    void Look(const eAftermath& after) override { EXPECT_TRUE(own || !after.complete); }

    bool Expects(std::string_view message) const override { return message.starts_with("Thread Storage Overflow : "); }

    bool Returns() const override { return returns; }

private:
    void StoreOnOther() {
        try {
            other = used->Get().empty();
            used->Get() = "the text of the second thread, which takes memory";
        } catch (const std::bad_alloc&) {
            other = false;
        }
    }

    eCriticalResource<std::string>* used = nullptr;
    bool own = false;
    bool other = false;
    eOtherThread second{[this] { StoreOnOther(); }};
};

// --- Conversions ---

class eConverting : public eScenario {
public:
    bool Run() override {
        right = 0;
        const std::wstring wide = StringToWideChar(narrow, 1251);
        right += wide.size() == narrow.size();
        right += WideCharToString(wide, 1251) == narrow;
        right += ToString(ToStringW(utf8)) == utf8;
        std::string escaped = "a \"text\" with\nlines, longer than short";
        const std::string plain = escaped;
        ConvertEscSequence(&escaped, true);
        ConvertEscSequence(&escaped, false);
        right += escaped == plain;
        eStrings texts;
        for (int text = 0; text < 20; ++text)
            texts.AddUnique((format("a text with a number, %1%") % text).str());
        right += texts.size() == 20 && texts.Find("a text with a number, 19") == 19;
        return right == 5;
    }

    void Look(const eAftermath& after) override { EXPECT_TRUE(right == 5 || !after.complete) << right; }

    bool Expects(std::string_view message) const override {
        return message == "The system has no file descriptor for a code page!";
    }

private:
    static inline const std::string narrow = "a text in Cyrillic letters: \xC0\xC1\xC2\xE0\xE1\xE2";
    static inline const std::string utf8 = "a text in Cyrillic letters: \xD0\x90\xD0\x91\xD0\x92";

    int right = 0;
};

// --- Functions of groups ---

int runs = 0;

class eCollecting : public eScenario {
public:
    bool Run() override {
        runs = 0;
        const std::string group = "a group of functions with a rather long name";
        const xCollectors::xGlobal::eGlobalFunctionRegistrator first(
            group, [] { ++runs; }, [] { ++runs; });
        const xCollectors::xGlobal::eGlobalFunctionRegistrator second(
            group, [] { ++runs; }, nullptr);
        xCollectors::xGlobal::Init(group);
        xCollectors::xGlobal::Exit(group);
        return runs == 3;
    }

    void Look(const eAftermath& after) override { EXPECT_TRUE(runs == 3 || !after.complete) << runs; }

    bool Expects(std::string_view) const override { return false; }
};

} // namespace

TEST(Faults, Reporting) {
    Torture<eReporting>("report errors and warnings");
    Torture<eExchangingHandlers>("exchange handlers");
}

TEST(Faults, StoringByThreads) {
    Torture<eStoring<false>>("thread storage");
    Torture<eStoring<true>>("thread storage, with a handler that returns");
}

TEST(Faults, Converting) {
    Torture<eConverting>("convert texts");
}

TEST(Faults, CollectingFunctions) {
    Torture<eCollecting>("functions of a group");
}
