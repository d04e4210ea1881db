// The units under test are compiled here, so that a folder can be exchanged between any two of their steps, and with
// listings that do not tell what their entries are, as those of some file systems.
#include <filesystem>
#include <functional>
#include <map>
#include <string>

#include <dirent.h>

namespace {

struct eListing {
    bool untold = false;
    std::function<void()> afterwards = [] {};
};

eListing theListing;

ssize_t simulated_getdents64(int folder, void* entries, std::size_t size) {
    const ssize_t count = getdents64(folder, entries, size);
    auto* const bytes = static_cast<char*>(entries);
    for (ssize_t at = 0; theListing.untold && at < count;) {
        auto* const entry = reinterpret_cast<dirent64*>(bytes + at);
        entry->d_type = DT_UNKNOWN;
        at += entry->d_reclen;
    }
    theListing.afterwards();
    return count;
}

} // namespace

#define getdents64 simulated_getdents64
#include "platform/posix/entries.cpp"
#undef getdents64
#include "platform/posix/copy_content.cpp"
#include "platform/posix/descriptor.cpp"
#include "platform/posix/file_copy.cpp"
#include "platform/posix/folder.cpp"
#include "platform/posix/listing.cpp"
#include "platform/posix/real_place.cpp"
#include "platform/posix/replacement.cpp"

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
        theListing = eListing();
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
    temp.Write("from/other", "x");
    eEntry entry;
    ASSERT_TRUE(from->Next(&entry));
    const auto child = from->Enter(sub);
    ASSERT_NE(nullptr, child);
    from->Rest();
    fs::rename(temp.Path() / "from/sub", temp.Path() / "outside/sub");
    from->Wake(*child);
    from->RemoveFile(file);
    EXPECT_FALSE(from->Next(&entry));
    EXPECT_FALSE(from->MakeFolder({eEntryKind::Folder, "new"}));
    EXPECT_TRUE(temp.Exists("outside/file"));
    fs::rename(temp.Path() / "outside/sub", temp.Path() / "from/sub");
    from->Wake(*child);
    EXPECT_TRUE(from->Next(&entry));
    EXPECT_TRUE(from->MakeFolder({eEntryKind::Folder, "new"}));
    EXPECT_TRUE(temp.Exists("from/new"));
}

TEST_F(OpenedFolder, AsksWhatAnEntryIsWhereTheListingDoesNotTell) {
    fs::create_directory(temp.Path() / "from/folder");
    fs::create_directory_symlink("folder", temp.Path() / "from/link");
    for (const char* name : {"from/file", "from/gone"})
        temp.Write(name, "x");
    theListing.untold = true;
    theListing.afterwards = [this] { fs::remove(temp.Path() / "from/gone"); };
    std::map<std::string, eEntryKind> kinds;
    const auto from = Open("from");
    for (eEntry entry; from->Next(&entry);)
        kinds[static_cast<const char*>(entry.name)] = entry.kind;
    EXPECT_EQ((std::map<std::string, eEntryKind>{{"file", eEntryKind::File},
                                                 {"folder", eEntryKind::Folder},
                                                 {"gone", eEntryKind::File},
                                                 {"link", eEntryKind::Link}}),
              kinds);
}

TEST_F(OpenedFolder, IsSearchedRightlyWhereTheListingDoesNotTellWhatAnEntryIs) {
    fs::create_directory(temp.Path() / "from/folder");
    fs::create_directory_symlink("folder", temp.Path() / "from/link");
    temp.Write("from/file", "x");
    theListing.untold = true;
    using eRecord = IO::eSearchRecord<char>;
    std::map<std::string, unsigned int> attributes;
    eRecord record;
    const auto search = IO::Platform::FirstEntry(temp.Name("from/*").c_str(), &record);
    ASSERT_NE(nullptr, search);
    do {
        ASSERT_TRUE(record.kindPending);
        IO::Platform::CompleteKind(*search, &record);
        attributes[record.name] = record.attributes;
    } while (IO::Platform::NextEntry(*search, &record));
    EXPECT_EQ((std::map<std::string, unsigned int>{{".", eRecord::Directory},
                                                   {"..", eRecord::Directory},
                                                   {"file", 0},
                                                   {"folder", eRecord::Directory},
                                                   {"link", eRecord::Directory | eRecord::ReparsePoint}}),
              attributes);
}
