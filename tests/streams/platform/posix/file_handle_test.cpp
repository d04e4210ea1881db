// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// The unit under test is compiled here with its system calls renamed, so that each can be interrupted, cut short or
// refused; and in a namespace of its own, beside the unit in the library, which other tests call.

namespace {

struct eSystem {
    int interruptions = 0;              // calls that are interrupted before one is served
    std::size_t most = ~std::size_t{0}; // bytes served by one call
    std::size_t room = ~std::size_t{0}; // bytes of the file before the disk is full
    std::size_t bad = ~std::size_t{0};  // the first byte that cannot be read
    bool sequential = false;            // the file has no positions
    int calls = 0;
    std::string file;
    std::string stream;
};

eSystem theSystem;

bool Interrupts() {
    ++theSystem.calls;
    if (theSystem.interruptions-- > 0) {
        errno = EINTR;
        return true;
    }
    return false;
}

int simulated_openat(int, const char*, int, mode_t = 0) {
    return Interrupts() ? -1 : 77;
}

int simulated_close(int) {
    Interrupts();
    errno = EINTR;
    return -1;
}

int simulated_fstat(int handle, struct stat* facts) {
    if (handle < 0)
        return -1;
    facts->st_mode = S_IFREG;
    facts->st_dev = 1;
    facts->st_ino = static_cast<ino_t>(handle);
    facts->st_size = static_cast<off_t>(theSystem.file.size());
    return 0;
}

int simulated_ftruncate(int, off_t length) {
    if (Interrupts())
        return -1;
    theSystem.file.resize(static_cast<std::size_t>(length));
    return 0;
}

ssize_t simulated_pread(int, void* target, std::size_t n, off_t at) {
    if (Interrupts())
        return -1;
    const auto from = std::min(static_cast<std::size_t>(at), theSystem.file.size());
    if (from >= theSystem.bad) {
        errno = EIO;
        return -1;
    }
    n = std::min({n, theSystem.most, theSystem.file.size() - from, theSystem.bad - from});
    std::memcpy(target, theSystem.file.data() + from, n);
    return static_cast<ssize_t>(n);
}

ssize_t simulated_pwrite(int, const void* source, std::size_t n, off_t at) {
    if (Interrupts())
        return -1;
    if (theSystem.sequential) {
        errno = ESPIPE;
        return -1;
    }
    const auto from = static_cast<std::size_t>(at);
    n = std::min({n, theSystem.most, theSystem.room - std::min(theSystem.room, from)});
    if (n == 0) {
        errno = ENOSPC;
        return -1;
    }
    theSystem.file.resize(std::max(theSystem.file.size(), from + n));
    std::memcpy(theSystem.file.data() + from, source, n);
    return static_cast<ssize_t>(n);
}

ssize_t simulated_copy_file_range(int, off_t* from, int, off_t* to, std::size_t n, unsigned) {
    if (Interrupts())
        return -1;
    if (theSystem.sequential) {
        errno = EINVAL;
        return -1;
    }
    const auto at = std::min(static_cast<std::size_t>(*from), theSystem.file.size());
    n = std::min({n, theSystem.most, theSystem.file.size() - at});
    theSystem.stream.resize(std::max(theSystem.stream.size(), static_cast<std::size_t>(*to) + n));
    theSystem.stream.replace(static_cast<std::size_t>(*to), n, theSystem.file, at, n);
    *from += static_cast<off_t>(n);
    *to += static_cast<off_t>(n);
    return static_cast<ssize_t>(n);
}

ssize_t simulated_write(int, const void* source, std::size_t n) {
    n = std::min(n, theSystem.most);
    theSystem.stream.append(static_cast<const char*>(source), n);
    return static_cast<ssize_t>(n);
}

} // namespace

#define Platform SimulatedPlatform
#define openat simulated_openat
#define close simulated_close
#define fstat simulated_fstat
#define ftruncate simulated_ftruncate
#define pread simulated_pread
#define pwrite simulated_pwrite
#define write simulated_write
#define copy_file_range simulated_copy_file_range
#include "platform/posix/descriptor.cpp"
#include "platform/posix/file_handle.cpp"
#include "platform/posix/native_name.cpp"
#undef openat
#undef close
#undef fstat
#undef ftruncate
#undef pread
#undef pwrite
#undef write
#undef copy_file_range
#undef Platform

namespace Platform = IO::SimulatedPlatform;

namespace {

class FileHandle : public testing::Test {
protected:
    FileHandle() { theSystem = eSystem(); }
};

} // namespace

TEST_F(FileHandle, OpeningIsRepeatedAfterAnInterruption) {
    for (const int flags : {0x8000, 0x8102}) {
        theSystem = eSystem();
        theSystem.interruptions = 3;
        EXPECT_EQ(Platform::OpenFile("name", flags), 77);
        EXPECT_EQ(theSystem.calls, 4);
    }
}

TEST_F(FileHandle, ClosingIsNeverRepeated) {
    EXPECT_TRUE(Platform::CloseFile(77));
    EXPECT_EQ(theSystem.calls, 1);
}

TEST_F(FileHandle, ReadingSurvivesInterruptionAndShortCounts) {
    theSystem.file = "0123456789";
    for (const std::size_t most : {1u, 3u, 100u}) {
        theSystem.interruptions = 2;
        theSystem.most = most;
        std::string target(20, '?');
        unsigned long long arrived = 0;
        EXPECT_TRUE(Platform::ReadAt(77, target.data(), 20, 2, &arrived));
        EXPECT_EQ(arrived, 8u);
        EXPECT_EQ(target, "23456789" + std::string(12, '?')) << most;
        EXPECT_TRUE(Platform::ReadAt(77, target.data(), 4, 5, &arrived));
        EXPECT_EQ(arrived, 4u);
        EXPECT_EQ(target.substr(0, 4), "5678");
    }
}

TEST_F(FileHandle, ARefusedReadIsToldFromOneAtTheEndOfTheFile) {
    theSystem.file = "0123456789";
    std::string target(20, '?');
    unsigned long long arrived = 0;
    EXPECT_TRUE(Platform::ReadAt(77, target.data(), 20, 10, &arrived));
    EXPECT_EQ(arrived, 0u);
    EXPECT_EQ(Platform::TakeRefusal(), 0);
    theSystem.bad = 5;
    EXPECT_FALSE(Platform::ReadAt(77, target.data(), 20, 2, &arrived));
    EXPECT_EQ(arrived, 3u);
    EXPECT_EQ(Platform::TakeRefusal(), EIO);
    EXPECT_EQ(Platform::TakeRefusal(), 0);
    EXPECT_EQ(Platform::RefusalText(EIO), "Input/output error");
    EXPECT_EQ(Platform::RefusalText(0), "");
}

TEST_F(FileHandle, WritingSurvivesInterruptionAndShortCounts) {
    for (const std::size_t most : {1u, 3u, 100u}) {
        theSystem = eSystem();
        theSystem.interruptions = 2;
        theSystem.most = most;
        EXPECT_TRUE(Platform::WriteAt(77, "0123456789", 10, 2));
        EXPECT_EQ(theSystem.file, std::string(2, '\0') + "0123456789") << most;
    }
}

TEST_F(FileHandle, AFullDiskEndsAWriteWithWhatFits) {
    theSystem.room = 6;
    theSystem.most = 4;
    EXPECT_FALSE(Platform::WriteAt(77, "0123456789", 10, 0));
    EXPECT_EQ(theSystem.file, "012345");
}

TEST_F(FileHandle, WhatHasNoPositionsGetsTheBytesInOrder) {
    theSystem.sequential = true;
    theSystem.most = 4;
    EXPECT_TRUE(Platform::WriteAt(77, "0123456789", 10, 0));
    EXPECT_TRUE(Platform::WriteAt(77, "abc", 3, 10));
    EXPECT_EQ(theSystem.stream, "0123456789abc");
}

TEST_F(FileHandle, CopyingSurvivesInterruptionAndShortCounts) {
    for (const std::size_t most : {1u, 3u, 100u}) {
        theSystem = eSystem();
        theSystem.file = "0123456789";
        theSystem.stream = "abcdef";
        theSystem.interruptions = 2;
        theSystem.most = most;
        EXPECT_EQ(Platform::CopyBetween(77, 2, 78, 4, 5), 5u);
        EXPECT_EQ(theSystem.stream, "abcd23456") << most;
        EXPECT_EQ(Platform::CopyBetween(77, 8, 78, 0, 5), 2u) << "the source ends";
        EXPECT_EQ(theSystem.stream, "89cd23456") << most;
    }
}

TEST_F(FileHandle, ACopyThatTheSystemCannotMakeCountsNoBytes) {
    theSystem.sequential = true;
    EXPECT_EQ(Platform::CopyBetween(77, 0, 78, 0, 5), 0u);
    EXPECT_EQ(theSystem.calls, 1);
}

TEST_F(FileHandle, TwoHandlesOfOneFileAreRecognisedAndDoubtCountsAsOne) {
    EXPECT_TRUE(Platform::MayBeOneFile(77, 77));
    EXPECT_FALSE(Platform::MayBeOneFile(77, 78));
    EXPECT_TRUE(Platform::MayBeOneFile(77, -1));
    EXPECT_TRUE(Platform::MayBeOneFile(-1, 78));
}

TEST_F(FileHandle, SettingTheLengthIsRepeatedAfterAnInterruption) {
    theSystem.file = "0123456789";
    theSystem.interruptions = 2;
    EXPECT_TRUE(Platform::SetFileLength(77, 4));
    EXPECT_EQ(theSystem.file, "0123");
    unsigned long long length = 0;
    EXPECT_TRUE(Platform::FileLength(77, &length));
    EXPECT_EQ(length, 4u);
}
