// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <string>
#include <type_traits>

#include <windows.h>

#include <gtest/gtest.h>

#include <qzl_io/streams.h>
#include <qzl_io/system.h>

#include "support/platform/windows/strict_names.h"
#include "support/reports.h"
#include "support/temp_folder.h"

// File streams with names that are special on this system.

namespace {

template <class Stream>
class FileStreamNames : public testing::Test {
protected:
    using Name = std::conditional_t<std::is_same_v<Stream, IO::eFileStream>, eFileName, eFileNameW>;

    ~FileStreamNames() override { IO::System::Path::Delete(temp.Name("tree"), true); }

    static Name Of(const std::string& name) { return Name({name.begin(), name.end()}); }

    void ExpectWrittenAndReadBack(const Name& name) {
        {
            Stream stream(name, IO::StreamMode::Write | IO::StreamMode::Create);
            ASSERT_TRUE(stream.IsOpen());
            stream << 1 << 2;
        }
        Stream stream(name, IO::StreamMode::Read);
        ASSERT_TRUE(stream.IsOpen());
        EXPECT_EQ(8u, stream.Size());
        EXPECT_EQ(1, stream.GetInt32());
        EXPECT_EQ(2, stream.GetInt32());
    }

    eTempFolder temp;
};

using eStreams = testing::Types<IO::eFileStream, IO::eFileStreamW>;
TYPED_TEST_SUITE(FileStreamNames, eStreams, );

TYPED_TEST(FileStreamNames, MayBeLong) {
    const eStrictNames strict;
    std::string folder = this->temp.Name("tree/");
    while (folder.size() < 2000)
        folder += std::string(99, 'd') + "/";
    ASSERT_TRUE(IO::System::Path::Create(folder));
    this->ExpectWrittenAndReadBack(this->Of(folder + "file"));
    for (const std::size_t length : {246u, 247u, 248u, 258u, 259u, 260u, 261u}) {
        const std::string start = this->temp.Name("tree/");
        SCOPED_TRACE(length);
        this->ExpectWrittenAndReadBack(this->Of(start + std::string(length - start.size(), 'f')));
    }
}

TYPED_TEST(FileStreamNames, MayEndInDotsAndBlanks) {
    const eStrictNames strict;
    ASSERT_TRUE(IO::System::Path::Create(this->temp.Name("tree/folder.")));
    for (const char* name : {"file.", "file ", "file", "folder./file", "..."}) {
        SCOPED_TRACE(name);
        this->ExpectWrittenAndReadBack(this->Of(this->temp.Name("tree/") + name));
    }
    EXPECT_EQ(8u, IO::System::File::Size(this->temp.Name("tree/file.")));
}

TYPED_TEST(FileStreamNames, OfDevicesStayThose) {
    const eStrictNames strict;
    TypeParam stream(this->Of("nul"), IO::StreamMode::Write);
    EXPECT_TRUE(stream.IsOpen());
    EXPECT_EQ(L"nul", strict.Given().back());
}

TYPED_TEST(FileStreamNames, AreReportedAsTheyWereGiven) {
    const eReports reports(eReports::Throws);
    const std::string name = this->temp.Name("missing./file");
    EXPECT_THROW(TypeParam(this->Of(name), IO::StreamMode::Read | IO::StreamMode::Errors), xError::eException);
    ASSERT_EQ(1u, reports.errors().size());
    EXPECT_EQ(name + " - open error!", reports.errors().front().message);
}

} // namespace
