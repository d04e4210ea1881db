// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/convert.h>

#include <cerrno>
#include <new>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/platform/posix/fault.h"
#include "support/reports.h"

// Code pages of the system, whose converters are files, when no descriptors or no memory are left.

namespace {

constexpr char kError[] = "The system has no file descriptor for a code page!";

// Cyrillic letters in code page 866.
const std::string kNarrow = "\x80\x81";
const std::wstring kWide = L"\u0410\u0411";

// Takes all descriptors that the process may have.
class eAllDescriptors {
public:
    eAllDescriptors() {
        getrlimit(RLIMIT_NOFILE, &limit);
        const rlimit few{100, limit.rlim_max};
        setrlimit(RLIMIT_NOFILE, &few);
        for (int taken = open("/", O_PATH | O_CLOEXEC); taken >= 0; taken = open("/", O_PATH | O_CLOEXEC))
            descriptors.push_back(taken);
    }
    ~eAllDescriptors() {
        for (const int taken : descriptors)
            close(taken);
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    eAllDescriptors(const eAllDescriptors&) = delete;
    eAllDescriptors& operator=(const eAllDescriptors&) = delete;

private:
    rlimit limit{};
    std::vector<int> descriptors;
};

class CodePage : public testing::Test {
protected:
    void SetUp() override {
        if (!eFault::ReachesLibraries())
            GTEST_SKIP() << "the libraries' calls do not pass through the test program";
    }
};

} // namespace

TEST(CodePages, LoseNothingForGoodWhenDescriptorsRunOut) {
    const pid_t child = fork(); // a process that has not used any page yet
    if (child == 0) {
        const eReports reports;
        bool right = true;
        {
            const eAllDescriptors taken;
            right = StringToWideChar(kNarrow, 866).empty() && WideCharToString(kWide, 866).empty();
        }
        right = right && reports.errors().size() == 2 && reports.errors()[0].message == kError;
        right = right && StringToWideChar(kNarrow, 866) == kWide && WideCharToString(kWide, 866) == kNarrow;
        _exit(right && reports.errors().size() == 2 ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(0, WEXITSTATUS(status));
}

TEST(CodePages, OfTheLibraryItselfNeedNoDescriptor) {
    const eReports reports;
    const eAllDescriptors taken;
    EXPECT_EQ(L"\u20ac", StringToWideChar("\x80", 1252));
    EXPECT_EQ(L"\u20ac", StringToWideChar("\xe2\x82\xac", 65001));
    EXPECT_TRUE(reports.errors().empty());
}

TEST_F(CodePage, ThatCannotBeOpenedForWantOfMemoryThrowsBadAlloc) {
    for (const int call : {1, 2}) {
        const eFault fault("iconv_open", ENOMEM, call);
        EXPECT_THROW(StringToWideChar(kNarrow, 866), std::bad_alloc);
    }
    const eFault fault("iconv_open", ENOMEM);
    EXPECT_THROW(WideCharToString(kWide, 866), std::bad_alloc);
}

TEST_F(CodePage, ThatCannotBeOpenedForWantOfDescriptorsIsReported) {
    const eReports reports;
    for (const int error : {EMFILE, ENFILE}) {
        for (const char* function : {"iconv_open", "open"}) {
            const eFault fault(function, error);
            EXPECT_EQ(L"", StringToWideChar(kNarrow, 866)) << function;
            EXPECT_TRUE(fault.Struck());
            const eFault another(function, error);
            EXPECT_EQ("", WideCharToString(kWide, 866)) << function;
            EXPECT_TRUE(another.Struck());
        }
    }
    ASSERT_EQ(8u, reports.errors().size());
    for (const xError::eReport& report : reports.errors())
        EXPECT_EQ(kError, report.message);
}

// The system says of a page that it cannot load that it does not know it.
TEST_F(CodePage, ThatMayBeUnknownOnlyForWantOfRoomThrowsBadAlloc) {
#ifdef QZL_THREADS_SANITIZED
    GTEST_SKIP() << "the thread sanitizer needs this call for itself";
#endif
    const eFault fault("mmap", ENOMEM);
    EXPECT_THROW(StringToWideChar("a\x80", 99999), std::bad_alloc);
    EXPECT_TRUE(fault.Struck());
}

TEST_F(CodePage, ThatTheSystemDoesNotKnowIsNoError) {
    const eReports reports;
    EXPECT_EQ(L"a\xfffd", StringToWideChar("a\x80", 99999));
    EXPECT_TRUE(reports.errors().empty());
}
