// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include <sys/stat.h>

#include <qzl_io/streams.h>

#include "support/platform/posix/as_nobody.h"
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

TEST(FilePermissions, AFileThatMayNotBeWrittenIsOpenedForReadingAlone) {
    const eTempFolder folder;
    const std::string name = folder.Write("file", "abc");
    for (const std::string& path : {folder.Name(), name})
        ASSERT_EQ(0, chmod(path.c_str(), path == name ? 0444 : 0755));
    EXPECT_EQ(kHeldInChild, AsNobody([&] {
                  const bool written = IO::eFileStream(name, Mode::Write).IsOpen();
                  return IO::eFileStream(name, Mode::Read).IsOpen() && !written ? 0 : 1;
              }));
}
