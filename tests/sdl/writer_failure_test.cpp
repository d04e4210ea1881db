// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include <qzl_io/sdl.h>

#include "support/reports.h"
#include "support/temp_folder.h"

// What a writer tells after Close.

TEST(WriterFailure, SaysNothingWhenTheWholeTextHasArrived) {
    const eTempFolder folder;
    const eReports reports;
    eSDLWriter writer(eFileName(folder.Name("file")));
    EXPECT_FALSE(writer.Failure());
    writer << 1 << "text";
    writer.Close();
    EXPECT_FALSE(writer.Failure());
    ASSERT_TRUE(writer.Open(eFileNameW(folder.NameW(L"other"))));
    writer << 2;
    writer.Close();
    EXPECT_FALSE(writer.Failure());
    IO::eMemoryStream stream;
    writer.Open(&stream);
    writer << 3;
    writer.Close();
    EXPECT_FALSE(writer.Failure());
    EXPECT_EQ("1 \"text\"", folder.Read("file"));
    EXPECT_FALSE(eSDLWriter().Failure());
    EXPECT_TRUE(reports.warnings().empty());
}

TEST(WriterFailure, TellsWhyAFileCouldNotBeOpenedUntilTheNextIs) {
    const eTempFolder folder;
    const eReports reports;
    const std::string name = folder.Name("no/file");
    const auto check = [&name](const eSDLWriter& writer) {
        EXPECT_NE(writer.Failure().number, 0);
        const std::string beginning = "\"" + name + "\" cannot be saved: ";
        EXPECT_EQ(writer.Failure().text.substr(0, beginning.size()), beginning);
    };
    check(eSDLWriter(eFileNameW(folder.NameW(L"no/file"))));
    eSDLWriter writer{eFileName(name)};
    check(writer);
    writer << "a text that is dropped";
    check(eSDLWriter(writer));
    writer.Close();
    check(writer);
    EXPECT_TRUE(reports.warnings().empty()) << "the application has been told by Opened";
    ASSERT_TRUE(writer.Open(eFileName(folder.Name("file"))));
    EXPECT_FALSE(writer.Failure());
}

TEST(WriterFailure, OfAStreamIsWhatTheStreamTells) {
    const eReports reports;
    unsigned char bytes[8] = {};
    IO::eBufferStream stream(bytes, sizeof bytes, 0);
    stream.Clear();
    eSDLWriter writer(&stream);
    writer << "a text that is too long";
    const eSDLWriter copy(writer);
    writer.Close();
    EXPECT_EQ(writer.Failure().text, "The stream had no room for all bytes.");
    EXPECT_EQ(copy.Failure().text, stream.Failure().text);
    EXPECT_TRUE(reports.warnings().empty());
}

TEST(WriterFailure, IsThereWhenClosingThrows) {
    const eReports reports(eReports::Throws);
    unsigned char bytes[8] = {};
    IO::eBufferStream stream(bytes, sizeof bytes, 0);
    stream.Clear();
    eSDLWriter writer(&stream);
    writer << "a text that is too long";
    EXPECT_THROW(writer.Close(), xError::eException);
    EXPECT_TRUE(writer.Failure());
}

TEST(WriterFailure, OfAFileThatCannotBeReplacedNamesItAndIsWarnedOfOnce) {
    const eTempFolder folder;
    const eReports reports;
    const std::string name = folder.Name("sub/file");
    folder.Write("sub/file", "old");
    eSDLWriter writer{eFileName(name)};
    writer << "new";
    const eSDLWriter copy(writer);
    std::filesystem::remove_all(folder.Path() / "sub");
    writer.Close();
    EXPECT_NE(writer.Failure().number, 0);
    const std::string beginning = "\"" + name + "\" cannot be saved: ";
    EXPECT_EQ(writer.Failure().text.substr(0, beginning.size()), beginning);
    EXPECT_EQ(copy.Failure().text, writer.Failure().text);
    EXPECT_EQ(MessagesOf(reports.warnings()), std::vector<std::string>{writer.Failure().text});
    writer.Close();
    EXPECT_EQ(reports.warnings().size(), 1u);
}
