// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include <io.h>
#include <windows.h>

#include <qzl_io/streams.h>

#include "support/platform/windows/import_table.h"
#include "support/temp_folder.h"

// What a file stream tells and does when Windows refuses to read, write or close.

namespace Mode = IO::StreamMode;

namespace {

decltype(&::_read) systemsRead;
decltype(&::_write) systemsWrite;
decltype(&::_close) systemsClose;

int FailingRead(int, void*, unsigned int) {
    _doserrno = ERROR_CRC;
    return -1;
}

int FailingWrite(int, const void*, unsigned int) {
    _doserrno = ERROR_DISK_FULL;
    return -1;
}

int FailingClose(int handle) {
    systemsClose(handle);
    _doserrno = ERROR_NETNAME_DELETED;
    return -1;
}

void ExpectFailure(const IO::eStream& stream, int number, const std::string& beginning) {
    EXPECT_EQ(stream.Failure().number, number);
    EXPECT_EQ(stream.Failure().text.substr(0, beginning.size()), beginning);
    EXPECT_GT(stream.Failure().text.size(), beginning.size() + 1);
    EXPECT_TRUE(stream.Enabled(Mode::Bad | Mode::Failed));
}

} // namespace

TEST(LostBytes, AFileThatIsMissingIsToldWithTheSystemsNumber) {
    const eTempFolder folder;
    const IO::eFileStream stream(folder.Name("missing"), Mode::Read);
    ExpectFailure(stream, ERROR_FILE_NOT_FOUND, "The file could not be opened: ");
    const IO::eFileStreamW wide(folder.NameW(L"no/folder"), Mode::Read);
    ExpectFailure(wide, ERROR_PATH_NOT_FOUND, "The file could not be opened: ");
}

TEST(LostBytes, ARefusedWriteIsToldWithTheSystemsNumber) {
    const eTempFolder folder;
    IO::eFileStream stream(folder.Name("file"), Mode::Write);
    stream << 1;
    {
        const eReplacedCall failing("qzl_io.dll", "_write", &FailingWrite, &systemsWrite);
        stream.Flush();
    }
    ExpectFailure(stream, ERROR_DISK_FULL, "Not all bytes could be written to the file: ");
    stream.Disable(Mode::Bad);
    stream.Flush();
    EXPECT_FALSE(stream.Failure());
    EXPECT_EQ(folder.Read("file"), std::string("\1\0\0\0", 4));
}

TEST(LostBytes, ARefusedCloseIsToldOfAStreamThatWrites) {
    const eTempFolder folder;
    for (const int mode : {0x0002, 0x0001}) {
        IO::eFileStream stream(folder.Write("file", "0123"), mode);
        const eReplacedCall failing("qzl_io.dll", "_close", &FailingClose, &systemsClose);
        stream.Close();
        if (mode == Mode::Write)
            ExpectFailure(stream, ERROR_NETNAME_DELETED, "Not all bytes could be written to the file: ");
        else
            EXPECT_FALSE(stream.Failure());
    }
}

TEST(LostBytes, RefusedReadsNeverChangeBytesThatAreNotWritten) {
    const eTempFolder folder;
    const std::string old(100'000, 'o');
    for (const int mode : {0x0002, 0x0003}) {
        IO::eFileStream stream(folder.Write("file", old), mode);
        {
            const eReplacedCall failing("qzl_io.dll", "_read", &FailingRead, &systemsRead);
            stream.Seek(50'000, IO::eSeekDir::Begin);
            stream.GetInt64();
            stream << 0x64636261;
            stream.Flush();
            ExpectFailure(stream, ERROR_CRC, "The file could not be read to its end: ");
        }
        stream.Close();
        EXPECT_TRUE(folder.Read("file") == old.substr(0, 50'008) + "abcd" + old.substr(50'012));
    }
}
