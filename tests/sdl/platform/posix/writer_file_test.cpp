// SPDX-License-Identifier: BSL-1.0
// What a writer makes of files that are no plain files, or that cannot be saved.
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <qzl_io/sdl.h>

#include "support/platform/posix/as_nobody.h"
#include "support/platform/posix/fault.h"
#include "support/reports.h"
#include "support/temp_folder.h"

TEST(WriterFile, AFullDiskIsOneWarningWithFileAndReason) {
    const eReports reports;
    {
        eSDLWriter writer(eFileName("/dev/full"));
        ASSERT_TRUE(writer.Opened());
        for (int count = 0; count < 100'000; ++count)
            writer << "a string that is lost" << endl;
    }
    ASSERT_EQ(1u, reports.warnings().size());
    EXPECT_EQ("\"/dev/full\" was not saved: No space left on device.", reports.warnings()[0].message);
    EXPECT_EQ("internal/src/bios/qzl_io/sdl_writer", reports.warnings()[0].file);
    EXPECT_EQ(100, reports.warnings()[0].line);
    EXPECT_EQ("internal/src/bios/qzl_io/sdl_writer", reports.warnings()[0].file);
    EXPECT_TRUE(reports.errors().empty());
}

TEST(WriterFile, APipeThatTakesNoMoreIsOneWarning) {
    if (!eFault::ReachesLibraries())
        GTEST_SKIP() << "the libraries' calls do not pass through the test program";
    const eTempFolder folder;
    const eReports reports;
    ASSERT_EQ(0, ::mkfifo(folder.Name("pipe").c_str(), 0666));
    const int reader = ::open(folder.Name("pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    eSDLWriter writer(eFileName(folder.Name("pipe")));
    ASSERT_TRUE(writer.Opened());
    writer << "text";
    {
        const eFault fault("write", EPIPE);
        writer.Close();
        EXPECT_TRUE(fault.Struck());
    }
    ::close(reader);
    EXPECT_EQ(EPIPE, writer.Failure().number);
    EXPECT_EQ('"' + folder.Name("pipe") + "\" was not saved: Broken pipe.", writer.Failure().text);
    EXPECT_EQ(MessagesOf(reports.warnings()), std::vector<std::string>{writer.Failure().text});
    EXPECT_TRUE(reports.errors().empty());
}

TEST(WriterFile, AFileWithTwoNamesThatCannotBeWrittenIsOneWarningThatSaysWhereTheDocumentIs) {
    if (!eFault::ReachesLibraries())
        GTEST_SKIP() << "the libraries' calls do not pass through the test program";
    const eTempFolder folder;
    const eReports reports;
    const std::string name = folder.Write("file", "old");
    std::filesystem::create_hard_link(folder.Path() / "file", folder.Path() / "other");
    eSDLWriter writer{eFileName(name)};
    writer << "text";
    {
        const eFault fault("ftruncate", EIO);
        writer.Close();
        EXPECT_TRUE(fault.Struck());
    }
    EXPECT_EQ(EIO, writer.Failure().number);
    EXPECT_EQ('"' + name + "\" was not saved: Input/output error. The document is in \"" + name + ".unsaved\".",
              writer.Failure().text);
    EXPECT_EQ(MessagesOf(reports.warnings()), std::vector<std::string>{writer.Failure().text});
    EXPECT_EQ("\"text\"", folder.Read("file.unsaved"));
}

TEST(WriterFile, AnOpeningThatIsRefusedTellsTheReason) {
    const eTempFolder folder;
    const eSDLWriter writer(eFileName(folder.Name("missing/file")));
    EXPECT_FALSE(writer.Opened());
    EXPECT_EQ(ENOENT, writer.Failure().number);
}

TEST(WriterFile, APipeIsWrittenTo) {
    const eTempFolder folder;
    ASSERT_EQ(0, ::mkfifo(folder.Name("pipe").c_str(), 0666));
    const int reader = ::open(folder.Name("pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    {
        eSDLWriter writer(eFileName(folder.Name("pipe")));
        ASSERT_TRUE(writer.Opened());
        writer << "text";
    }
    char text[16] = {};
    EXPECT_EQ(6, ::read(reader, text, sizeof(text)));
    EXPECT_STREQ("\"text\"", text);
    ::close(reader);
}

TEST(WriterFile, AFileWithTwoNamesAndOneByALinkKeepThem) {
    const eTempFolder folder;
    folder.Write("file", "the old document, which is longer");
    std::filesystem::create_hard_link(folder.Path() / "file", folder.Path() / "other");
    std::filesystem::create_symlink("file", folder.Path() / "link");
    {
        eSDLWriter writer(eFileName(folder.Name("link")));
        writer << "text";
    }
    EXPECT_EQ("\"text\"", folder.Read("file"));
    EXPECT_EQ("\"text\"", folder.Read("other"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.Path() / "link"));
}

TEST(WriterFile, AReadOnlyFileAndAFolderWithoutPermissionDoNotOpen) {
    const eTempFolder folder;
    folder.Write("readOnly", "old");
    folder.Write("closed/file", "old");
    ::chmod(folder.Name("readOnly").c_str(), 0444);
    ::chmod(folder.Name("closed/file").c_str(), 0666);
    ::chmod(folder.Name("closed").c_str(), 0555);
    ::chmod(folder.Path().c_str(), 0777);
    EXPECT_EQ(kHeldInChild, AsNobody([&folder] {
                  for (const char* name : {"readOnly", "closed/file", "closed/new"})
                      if (eSDLWriter(eFileName(folder.Name(name))).Opened())
                          return 1;
                  return kHeldInChild;
              }));
    EXPECT_EQ("old", folder.Read("readOnly"));
    EXPECT_EQ("old", folder.Read("closed/file"));
    ::chmod(folder.Name("closed").c_str(), 0755);
}
