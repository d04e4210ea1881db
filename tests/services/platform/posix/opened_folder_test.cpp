// SPDX-License-Identifier: BSL-1.0
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <dirent.h>
#include <unistd.h>

// The units under test are compiled here, so that a folder can be replaced between any two of their steps, and with
// listings that do not tell the kind of their entries, as on some file systems.

namespace {

struct eListing {
    bool untold = false;
    std::function<void()> afterwards = [] {};
};

eListing theListing;

bool noLinks = false;

int simulated_symlinkat(const char* target, int folder, const char* name) {
    if (noLinks) {
        errno = EPERM;
        return -1;
    }
    return symlinkat(target, folder, name);
}

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
#define symlinkat simulated_symlinkat
#include "platform/posix/folder.cpp"
#undef symlinkat
#include "platform/posix/listing.cpp"
#include "platform/posix/real_place.cpp"
#include "platform/posix/replacement.cpp"

#include <gtest/gtest.h>

#include "support/temp_folder.h"

#include "files/tree.h"

namespace {

namespace fs = std::filesystem;
using IO::Platform::eAnswer;
using IO::Platform::eEntry;
using IO::Platform::eEntryKind;
using IO::Platform::eFolder;
using IO::Platform::eNamedLink;

class OpenedFolder : public testing::Test {
protected:
    OpenedFolder() {
        theListing = eListing();
        noLinks = false;
        for (const char* name : {"from", "to", "outside"})
            fs::create_directory(temp.Path() / name);
        temp.Write("outside/file", "precious");
    }

    std::unique_ptr<eFolder> Open(std::string_view name) const {
        std::unique_ptr<eFolder> opened;
        EXPECT_EQ(eAnswer::Done, IO::Platform::OpenFolder(temp.Name(name).c_str(), eNamedLink::Refuse, &opened));
        return opened;
    }

    eTempFolder temp;
    const eEntry file{eEntryKind::File, "file"};
    const eEntry sub{eEntryKind::Folder, "sub"};
};

} // namespace

TEST_F(OpenedFolder, CopiesNoFileThatHasBecomeALink) {
    const auto from = Open("from"), to = Open("to");
    fs::create_symlink("../outside/file", temp.Path() / "from/file");
    from->CopyFileTo(*to, file, eNamedLink::Refuse, {});
    EXPECT_FALSE(temp.Exists("to/file"));
}

TEST_F(OpenedFolder, CopiesInPlaceOfALinkOrSecondNameInTheTargetAndNotToItsFile) {
    const auto from = Open("from"), to = Open("to");
    temp.Write("from/file", "other");
    fs::create_hard_link(temp.Path() / "outside/file", temp.Path() / "to/file");
    from->CopyFileTo(*to, file, eNamedLink::Refuse, {});
    EXPECT_EQ("precious", temp.Read("outside/file"));
    EXPECT_EQ("other", temp.Read("to/file"));
    fs::remove(temp.Path() / "to/file");
    fs::create_symlink("../outside/file", temp.Path() / "to/file");
    from->CopyFileTo(*to, file, eNamedLink::Refuse, {});
    EXPECT_EQ("precious", temp.Read("outside/file"));
    EXPECT_FALSE(fs::is_symlink(temp.Path() / "to/file"));
    EXPECT_EQ("other", temp.Read("to/file"));
}

TEST_F(OpenedFolder, EntersNoFolderThatHasBecomeALink) {
    const auto from = Open("from");
    fs::create_directory_symlink("../outside", temp.Path() / "from/sub");
    std::unique_ptr<eFolder> opened;
    EXPECT_EQ(eAnswer::Refused, from->Enter(sub, &opened));
    EXPECT_EQ(nullptr, opened);
}

TEST_F(OpenedFolder, WakesOnlyAsTheFolderThatItWas) {
    const auto from = Open("from");
    std::unique_ptr<eFolder> made;
    ASSERT_EQ(eAnswer::Done, from->Make(sub, *from, &made));
    temp.Write("from/other", "x");
    eEntry entry;
    ASSERT_TRUE(from->Next(&entry));
    std::unique_ptr<eFolder> child;
    ASSERT_EQ(eAnswer::Done, from->Enter(sub, &child));
    from->Rest();
    fs::rename(temp.Path() / "from/sub", temp.Path() / "outside/sub");
    from->Wake(*child);
    from->RemoveFile(file);
    EXPECT_FALSE(from->Next(&entry));
    EXPECT_EQ(eAnswer::Refused, from->Make({eEntryKind::Folder, "new"}, *from, &made));
    EXPECT_TRUE(temp.Exists("outside/file"));
    fs::rename(temp.Path() / "outside/sub", temp.Path() / "from/sub");
    from->Wake(*child);
    EXPECT_TRUE(from->Next(&entry));
    EXPECT_EQ(eAnswer::Done, from->Make({eEntryKind::Folder, "new"}, *from, &made));
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

TEST_F(OpenedFolder, IsSearchedCorrectlyWhereTheListingDoesNotTellWhatAnEntryIs) {
    fs::create_directory(temp.Path() / "from/folder");
    fs::create_directory_symlink("folder", temp.Path() / "from/link");
    temp.Write("from/file", "x");
    theListing.untold = true;
    using eKind = std::pair<bool, bool>; // a folder, a link
    std::map<std::string, eKind> kinds;
    IO::Platform::eListedEntry<char> entry;
    const auto listing = IO::Platform::FirstEntry(temp.Name("from/*").c_str(), &entry);
    ASSERT_NE(nullptr, listing);
    do {
        ASSERT_TRUE(entry.kindPending);
        IO::Platform::CompleteKind(*listing, &entry);
        kinds[entry.name.c_str()] = {entry.isFolder, entry.isLink};
    } while (IO::Platform::NextEntry(*listing, &entry));
    EXPECT_EQ((std::map<std::string, eKind>{{".", {true, false}},
                                            {"..", {true, false}},
                                            {"file", {false, false}},
                                            {"folder", {true, false}},
                                            {"link", {true, true}}}),
              kinds);
}

// Some file systems from elsewhere do not support links.
TEST_F(OpenedFolder, CopiesTheContentOfFileLinksWhereNoLinksCanBeMade) {
    fs::create_directory(temp.Path() / "outside/inner");
    fs::create_symlink("../outside/file", temp.Path() / "from/to file");
    fs::create_symlink("../outside/inner", temp.Path() / "from/to folder");
    fs::create_symlink("nowhere", temp.Path() / "from/to nothing");
    fs::create_symlink("/dev/null", temp.Path() / "from/to device");
    noLinks = true;
    IO::System::ePatience patience;
    IO::System::CopyContents(*Open("from"), *Open("to"), patience);
    EXPECT_FALSE(fs::is_symlink(temp.Path() / "to/to file"));
    EXPECT_EQ("precious", temp.Read("to/to file"));
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(temp.Path() / "to"))
        names.push_back(entry.path().filename().string());
    EXPECT_EQ(std::vector<std::string>{"to file"}, names);
}

TEST_F(OpenedFolder, IsKnownByItsNumbers) {
    const auto from = Open("from"), same = Open("from"), to = Open("to");
    EXPECT_TRUE(from->Id().IsNumbered());
    EXPECT_TRUE(AreOneFolder(from->Id(), same->Id()));
    EXPECT_FALSE(AreOneFolder(from->Id(), to->Id()));
}
