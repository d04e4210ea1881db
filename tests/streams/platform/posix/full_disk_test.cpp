#include <gtest/gtest.h>

#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include <qzl_io/streams.h>

#include "../../probe.h"
#include "support/reports.h"
#include "support/temp_folder.h"

namespace Mode = IO::StreamMode;

TEST(FullDisk, AFailingWriteIsNotReportedAndSetsBad) {
    const eReports reports;
    const std::string text(100000, 'x');
    for (const std::size_t size : {10u, 40000u, 100000u}) {
        IO::eFileStream stream(eFileName("/dev/full"), Mode::Read | Mode::Write | Mode::Errors);
        ASSERT_TRUE(stream.IsOpen());
        stream.Write(text.data(), size);
        EXPECT_EQ(stream.Position(), size);
        stream.Flush();
        EXPECT_TRUE(stream.Enabled(Mode::Bad)) << size;
        stream.Close();
    }
    EXPECT_TRUE(reports.errors().empty());
}

TEST(FullDisk, ADirectWriteThatFailsSetsBadAtOnce) {
    IO::eFileStream stream(eFileName("/dev/full"), Mode::Read | Mode::Write);
    const std::string text(100000, 'x');
    stream.Write(text.data(), text.size());
    EXPECT_TRUE(stream.Enabled(Mode::Bad));
}

TEST(FullDisk, WhatCannotBeCutSetsBad) {
    const eReports reports;
    IO::eFileStream stream(eFileName("/dev/null"), Mode::Write | Mode::Errors);
    ASSERT_TRUE(stream.IsOpen());
    stream.Trunc();
    EXPECT_TRUE(stream.Enabled(Mode::Bad));
    EXPECT_TRUE(reports.errors().empty());
}

TEST(FullDisk, AFileThatMayNotBeWrittenDoesNotOpenForWriting) {
    if (geteuid() == 0)
        GTEST_SKIP() << "root may write everything";
    const eTempFolder folder;
    const std::string name = folder.Write("file", "abc");
    chmod(name.c_str(), 0444);
    EXPECT_FALSE(IO::eFileStream(name, Mode::Write).IsOpen());
    EXPECT_TRUE(IO::eFileStream(name, Mode::Read).IsOpen());
}

TEST(FullDisk, AFileInAMissingFolderCannotBeCreated) {
    const eTempFolder folder;
    EXPECT_FALSE(IO::eFileStream(folder.Name("missing/file"), 518 & ~Mode::Errors).IsOpen());
}
