// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <qzl_io/streams.h>

#include "support/platform/posix/fault.h"
#include "support/platform/posix/open_descriptors.h"
#include "support/reports.h"
#include "support/temp_folder.h"

// File streams on a system that fails now and then, or that would make them wait.

namespace Mode = IO::StreamMode;

namespace {

class FileFault : public testing::Test {
protected:
    void SetUp() override {
        if (!eFault::ReachesLibraries())
            GTEST_SKIP() << "the libraries' calls do not pass through the test program";
    }

    eTempFolder folder;
};

class FilePipe : public testing::Test {
protected:
    FilePipe() : name(folder.Name("pipe")) { EXPECT_EQ(0, ::mkfifo(name.c_str(), 0666)); }

    eTempFolder folder;
    const std::string name;
};

} // namespace

// --- Failures ---

TEST_F(FileFault, AReadThatTheSystemRefusesSetsBad) {
    const eFileName name(folder.Write("file", std::string(100'000, 'x')));
    IO::eFileStream stream(name, Mode::Read);
    std::string text(100'000, '?');
    const eFault fault("pread", EIO);
    stream.Read(text.data(), text.size());
    EXPECT_TRUE(fault.Struck());
    EXPECT_TRUE(stream.Enabled(Mode::Bad));
}

// A device is opened without waiting for it, and then told to wait.
TEST_F(FileFault, ADeviceThatDoesNotWaitForItsBytesIsNotOpened) {
    const int before = OpenDescriptors();
    {
        const eFault fault("fcntl", EIO);
        EXPECT_FALSE(IO::eFileStream("/dev/zero", Mode::Read).IsOpen());
        EXPECT_TRUE(fault.Struck());
    }
    EXPECT_EQ(before, OpenDescriptors());
    EXPECT_TRUE(IO::eFileStream("/dev/zero", Mode::Read).IsOpen());
}

TEST_F(FileFault, AFileWhoseLengthTheSystemDoesNotTellIsNotOpened) {
    const std::string name = folder.Write("file", "0123456789");
    const int before = OpenDescriptors();
    for (const int mode : {0x0001, 0x0002, 0x0003}) {
        for (int call = 1;; ++call) {
            const eFault fault("fstat", EIO, call);
            IO::eFileStream stream(eFileName(name), mode);
            if (!fault.Struck())
                break;
            EXPECT_FALSE(stream.IsOpen()) << mode << ' ' << call;
            EXPECT_TRUE(stream.Enabled(Mode::Failed));
            EXPECT_TRUE(stream.Eos());
            EXPECT_EQ(before, OpenDescriptors());
            stream.Seek(0, IO::eSeekDir::End);
            stream << 7;
            stream.Close();
            EXPECT_EQ("0123456789", folder.Read("file"));
        }
    }
}

TEST_F(FileFault, AFailedOpeningIsReportedAndRepeatedWhereErrorsIsSet) {
    const eFileName name(folder.Write("file", "0123456789"));
    const eReports reports;
    const eFault fault("fstat", EIO, 1, 3);
    IO::eFileStreamW stream(eFileNameW(folder.NameW(L"file")), Mode::Read | Mode::Errors);
    EXPECT_TRUE(stream.IsOpen());
    EXPECT_EQ(10u, stream.Size());
    ASSERT_EQ(3u, reports.errors().size());
    EXPECT_EQ(folder.Name("file") + " - open error!", reports.errors().front().message);
}

TEST_F(FileFault, AnInterruptedCallIsMadeAgain) {
    const std::string content(100'000, 'x');
    const std::string name = folder.Write("file", content);
    for (const char* function : {"openat", "fstat", "fcntl", "pread", "pwrite", "ftruncate", "copy_file_range"}) {
        SCOPED_TRACE(function);
        for (int call = 1;; ++call) {
            const std::string copyName = folder.Name("copy");
            const eFault fault(function, EINTR, call, 2);
            {
                IO::eFileStream from(eFileName(name), Mode::Read), to(eFileName(copyName), 0x0207),
                    zeros("/dev/zero", 1);
                EXPECT_TRUE(from.IsOpen() && to.IsOpen() && zeros.IsOpen());
                from.CopyTo(to, content.size() - 10);
                to << 7;
                to.Trunc();
                EXPECT_FALSE(from.Enabled(Mode::Bad) || to.Enabled(Mode::Bad));
            }
            const bool struck = fault.Struck();
            EXPECT_EQ(content.substr(10) + std::string("\7\0\0\0", 4), folder.Read("copy"));
            if (!struck) {
                EXPECT_LT(1, call) << "the function is not called at all";
                break;
            }
        }
    }
}

// --- Files that would block until another process acts ---

TEST_F(FilePipe, IsNotOpenedForReadingWithOrWithoutAWriter) {
    const int before = OpenDescriptors();
    for (const bool withWriter : {false, true}) {
        const int writer = withWriter ? ::open(name.c_str(), O_RDWR | O_CLOEXEC) : -1;
        EXPECT_FALSE(IO::eFileStream(eFileName(name), Mode::Read).IsOpen());
        EXPECT_FALSE(IO::eFileStreamW(eFileNameW(folder.NameW(L"pipe")), Mode::Read).IsOpen());
        const std::unique_ptr<IO::eStream> stream(IO::GetStream(eFileName(name), 1));
        ASSERT_NE(nullptr, stream);
        EXPECT_FALSE(stream->IsOpen());
        EXPECT_TRUE(stream->Eos());
        ::close(writer);
    }
    EXPECT_EQ(before, OpenDescriptors());
}

TEST_F(FilePipe, IsNotOpenedForReadingByALinkOrTheNameOfADescriptor) {
    std::filesystem::create_symlink("pipe", folder.Path() / "link");
    EXPECT_FALSE(IO::eFileStream(eFileName(folder.Name("link")), Mode::Read).IsOpen());
    const int end = ::open(name.c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_FALSE(IO::eFileStream(eFileName("/proc/self/fd/" + std::to_string(end)), Mode::Read).IsOpen());
    ::close(end);
}

TEST_F(FilePipe, TakesWhatIsWrittenInOrder) {
    const int reader = ::open(name.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    IO::eFileStream stream(eFileName(name), Mode::Write);
    ASSERT_TRUE(stream.IsOpen());
    stream << 0x64636261;
    stream.Flush();
    char text[8] = {};
    EXPECT_EQ(4, ::read(reader, text, sizeof text));
    EXPECT_STREQ("abcd", text);
    stream.Close();
    ::close(reader);
}

TEST(FileDevice, IsOpenedForReadingAndThenWaitsAsUsual) {
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (terminal < 0 || ::grantpt(terminal) != 0 || ::unlockpt(terminal) != 0)
        GTEST_SKIP() << "no terminal to be had";
    for (const char* name : {"/dev/null", "/dev/zero", static_cast<const char*>(::ptsname(terminal))}) {
        SCOPED_TRACE(name);
        const int next = ::dup(terminal);
        ::close(next);
        const IO::eFileStream stream(eFileName(name), Mode::Read);
        EXPECT_TRUE(stream.IsOpen());
        EXPECT_EQ(0u, stream.Size());
        EXPECT_EQ(0, ::fcntl(next, F_GETFL) & O_NONBLOCK);
    }
    ::close(terminal);
}

TEST(FileDevice, AFileThatShowsNoSizeIsOpened) {
    EXPECT_TRUE(IO::eFileStream(eFileName("/proc/self/status"), Mode::Read).IsOpen());
}

// --- A lease: opening the file blocks until the holder releases it ---

namespace {

// Holds a lease on the file in a separate process, which releases it a moment after the request.
class eLeaseHolder {
public:
    explicit eLeaseHolder(const std::string& name) {
        int ready[2] = {};
        EXPECT_EQ(0, ::pipe2(ready, O_CLOEXEC));
        child = ::fork();
        if (child == 0)
            Hold(name.c_str(), ready[1]);
        ::close(ready[1]);
        char answer = 0;
        held = ::read(ready[0], &answer, 1) == 1 && answer == 'y';
        ::close(ready[0]);
    }
    ~eLeaseHolder() {
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
    }

    bool Holds() const { return held; }

private:
    [[noreturn]] static void Hold(const char* name, int ready) {
        sigset_t asked;
        sigemptyset(&asked);
        sigaddset(&asked, SIGIO);
        ::sigprocmask(SIG_BLOCK, &asked, nullptr);
        const int file = ::open(name, O_RDWR | O_CLOEXEC);
        const bool leased = ::fcntl(file, F_SETLEASE, F_WRLCK) == 0;
        int received = 0;
        if (::write(ready, leased ? "y" : "n", 1) == 1 && leased && ::sigwait(&asked, &received) == 0) {
            ::usleep(20'000);
            ::fcntl(file, F_SETLEASE, F_UNLCK);
        }
        for (;;)
            ::pause();
    }

    pid_t child = -1;
    bool held = false;
};

} // namespace

TEST(FileLease, IsWaitedForAsByEveryProgram) {
    const eTempFolder folder;
    const std::string name = folder.Write("file", "0123456789");
    for (const int mode : {0x0001, 0x0002}) {
        const eLeaseHolder holder(name);
        if (!holder.Holds())
            GTEST_SKIP() << "the file system gives no leases";
        IO::eFileStream stream(eFileName(name), mode);
        EXPECT_TRUE(stream.IsOpen());
        EXPECT_EQ(10u, stream.Size());
    }
}

// --- Every call in turn ---

TEST_F(FileFault, WhateverFailsIsSeenInTheFlags) {
    const std::string old(100'000, 'o'), part(40'000, 'n');
    const std::string expected = old.substr(0, 10) + std::string("\7\0\0\0", 4) + old.substr(14, 69'986) + part;
    for (const int error : {EINTR, EIO, ENOSPC, EACCES, ENOMEM, EMFILE}) {
        for (int call = 1;; ++call) {
            SCOPED_TRACE("call " + std::to_string(call) + ", error " + std::to_string(error));
            const std::string name = folder.Write("file", old);
            const int before = OpenDescriptors();
            std::string read(50'000, '?');
            bool good = false, struck = false;
            {
                const eFault fault("", error, call);
                IO::eFileStream stream(eFileName(name), Mode::Read | Mode::Write);
                if (stream.IsOpen()) {
                    stream.Read(read.data(), read.size());
                    stream.Seek(10, IO::eSeekDir::Begin);
                    stream << 7;
                    stream.Seek(70'000, IO::eSeekDir::Begin);
                    stream.Write(part.data(), part.size());
                    stream.Flush();
                }
                good = stream.IsOpen() && !stream.Enabled(Mode::Bad);
                stream.Close();
                struck = fault.Struck();
            }
            EXPECT_EQ(before, OpenDescriptors());
            const std::string content = folder.Read("file");
            EXPECT_TRUE(good || (struck && error != EINTR));
            if (good) {
                EXPECT_TRUE(content == expected && read == old.substr(0, read.size()));
            }
            if (!struck)
                break;
        }
    }
}
