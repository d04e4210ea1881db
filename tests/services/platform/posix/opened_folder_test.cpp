// The units under test are compiled here, so that a folder can be exchanged between any two of their steps.
#include "platform/posix/entries.cpp"
#include "platform/posix/file_copy.cpp"
#include "platform/posix/folder.cpp"

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include <support/temp_folder.h>

namespace {

namespace fs = std::filesystem;
using IO::Platform::eEntry;
using IO::Platform::eEntryKind;
using IO::Platform::eFolder;
using IO::Platform::eNamedLink;

class OpenedFolder : public testing::Test {
protected:
    OpenedFolder() {
        for (const char* name : {"from", "to", "outside"})
            fs::create_directory(temp.Path() / name);
        temp.Write("outside/file", "precious");
    }

    std::unique_ptr<eFolder> Open(std::string_view name) const {
        return IO::Platform::OpenFolder(temp.Name(name).c_str(), eNamedLink::Refuse);
    }

    eTempFolder temp;
    const eEntry file{eEntryKind::File, "file"};
    const eEntry sub{eEntryKind::Folder, "sub"};
};

} // namespace

TEST_F(OpenedFolder, CopiesNoFileThatHasBecomeALink) {
    const auto from = Open("from"), to = Open("to");
    fs::create_symlink("../outside/file", temp.Path() / "from/file");
    from->CopyFileTo(*to, file);
    EXPECT_FALSE(temp.Exists("to/file"));
}

TEST_F(OpenedFolder, CopiesThroughNoLinkInTheTarget) {
    const auto from = Open("from"), to = Open("to");
    temp.Write("from/file", "other");
    fs::create_symlink("../outside/file", temp.Path() / "to/file");
    from->CopyFileTo(*to, file);
    EXPECT_EQ("precious", temp.Read("outside/file"));
}

TEST_F(OpenedFolder, EntersNoFolderThatHasBecomeALink) {
    const auto from = Open("from");
    fs::create_directory_symlink("../outside", temp.Path() / "from/sub");
    EXPECT_EQ(nullptr, from->Enter(sub));
}

TEST_F(OpenedFolder, WakesOnlyAsTheFolderThatItWas) {
    const auto from = Open("from");
    ASSERT_TRUE(from->MakeFolder(sub));
    const auto child = from->Enter(sub);
    ASSERT_NE(nullptr, child);
    from->Rest();
    fs::rename(temp.Path() / "from/sub", temp.Path() / "outside/sub");
    from->Wake(*child);
    from->RemoveFile(file);
    EXPECT_FALSE(from->MakeFolder({eEntryKind::Folder, "new"}));
    EXPECT_TRUE(temp.Exists("outside/file"));
    fs::rename(temp.Path() / "outside/sub", temp.Path() / "from/sub");
    from->Wake(*child);
    EXPECT_TRUE(from->MakeFolder({eEntryKind::Folder, "new"}));
    EXPECT_TRUE(temp.Exists("from/new"));
}
