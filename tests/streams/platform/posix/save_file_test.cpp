// SPDX-License-Identifier: BSL-1.0
// Saving on a system whose files have owners, permissions and several kinds of names, and that fails now and then.
#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <qzl_io/streams.h>

#include "streams/platform/posix/saved_file.h"
#include "streams/whole_document.h"
#include "support/long_tests.h"
#include "support/platform/posix/as_nobody.h"
#include "support/platform/posix/closed_input.h"
#include "support/platform/posix/fault.h"
#include "support/platform/posix/open_descriptors.h"
#include "support/rounds.h"

namespace fs = std::filesystem;

TEST_F(SavedFile, KeepsItsPermissionsAndItsOwner) {
    for (const mode_t mode : {0600u, 0640u, 0644u, 0755u, 0666u}) {
        folder.Write("file", "old");
        ASSERT_EQ(0, ::chmod(folder.Name("file").c_str(), mode));
        const bool given = ::geteuid() != 0 || ::chown(folder.Name("file").c_str(), 12, 34) == 0;
        ASSERT_TRUE(given);
        const struct stat before = Facts("file");
        ASSERT_TRUE(Save("file", "new"));
        const struct stat after = Facts("file");
        EXPECT_EQ(mode, after.st_mode & 07777);
        EXPECT_EQ(before.st_uid, after.st_uid);
        EXPECT_EQ(before.st_gid, after.st_gid);
        EXPECT_EQ("new", folder.Read("file"));
        fs::remove(folder.Path() / "file");
    }
}

TEST_F(SavedFile, IsSavedWhereStandardInputIsClosed) {
    folder.Write("document", "old");
    {
        const eClosedInput closed;
        IO::eSaveFile save(Name("document"));
        ASSERT_TRUE(save.IsOpen());
        save.Write("new", 3);
        EXPECT_TRUE(save.Commit());
        EXPECT_EQ(OpenDescriptors(), closed.Open());
    }
    EXPECT_EQ(folder.Read("document"), "new");
}

TEST_F(SavedFile, HasThePermissionsOfANewFileWhereItIsNew) {
    const mode_t mask = ::umask(027);
    EXPECT_TRUE(Save("file", "new"));
    ::umask(mask);
    EXPECT_EQ(0640u, Facts("file").st_mode & 07777);
}

TEST_F(SavedFile, IsWhatALinkNames) {
    fs::create_directory(folder.Path() / "elsewhere");
    folder.Write("elsewhere/file", "old");
    fs::create_symlink("elsewhere/file", folder.Path() / "link");
    fs::create_symlink("link", folder.Path() / "linkToLink");
    ASSERT_TRUE(Save("linkToLink", "new"));
    EXPECT_EQ("new", folder.Read("elsewhere/file"));
    EXPECT_TRUE(fs::is_symlink(folder.Path() / "link"));
    EXPECT_TRUE(fs::is_symlink(folder.Path() / "linkToLink"));
    EXPECT_EQ((std::set<std::string>{"elsewhere", "link", "linkToLink"}), Entries());
}

TEST_F(SavedFile, ComesIntoBeingWhereALinkToNothingLeads) {
    fs::create_symlink("missing", folder.Path() / "link");
    {
        IO::eSaveFile abandoned(Name("link"));
        abandoned << 'a';
    }
    EXPECT_EQ((std::set<std::string>{"link"}), Entries());
    ASSERT_TRUE(Save("link", "new"));
    EXPECT_EQ("new", folder.Read("missing"));
    EXPECT_TRUE(fs::is_symlink(folder.Path() / "link"));
}

TEST_F(SavedFile, ALoopOfLinksIsRefused) {
    fs::create_symlink("b", folder.Path() / "a");
    fs::create_symlink("a", folder.Path() / "b");
    IO::eSaveFile file(Name("a"));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_TRUE(file.Failure());
}

TEST_F(SavedFile, AReadOnlyTargetAndAFolderWithoutPermissionAreRefusedWithTheReason) {
    folder.Write("readOnly", "old");
    ::chmod(folder.Name("readOnly").c_str(), 0444);
    folder.Write("closed/file", "old");
    ::chmod(folder.Name("closed/file").c_str(), 0666);
    ::chmod(folder.Name("closed").c_str(), 0555);
    ::chmod(folder.Path().c_str(), 0777);
    const int held = AsNobody([this] {
        for (const char* name : {"readOnly", "closed/file", "closed/new"}) {
            IO::eSaveFile file(Name(name));
            if (file.IsOpen() || file.Commit() || file.Failure().text.find("Permission denied") == std::string::npos)
                return 1;
        }
        return kHeldInChild;
    });
    EXPECT_EQ(kHeldInChild, held);
    EXPECT_EQ("old", folder.Read("readOnly"));
    EXPECT_EQ("old", folder.Read("closed/file"));
    ::chmod(folder.Name("closed").c_str(), 0755);
}

TEST_F(SavedFile, AFileOfSomebodyElseIsWrittenInPlaceSoThatItStaysTheirs) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can make a file of somebody else's";
    folder.Write("file", "the old document, which is longer");
    ::chmod(folder.Name("file").c_str(), 0666);
    ::chmod(folder.Path().c_str(), 0777);
    const struct stat before = Facts("file");
    EXPECT_EQ(kHeldInChild, AsNobody([this] { return Save("file", "new") ? kHeldInChild : 1; }));
    const struct stat after = Facts("file");
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_EQ(before.st_uid, after.st_uid);
    EXPECT_EQ("new", folder.Read("file"));
    EXPECT_EQ((std::set<std::string>{"file"}), Entries());
}

TEST_F(SavedFile, DevicesAndPipesAreWrittenTo) {
    EXPECT_TRUE(Save("../../../../../../../../dev/null", "anything"));
    ASSERT_EQ(0, ::mkfifo(folder.Name("pipe").c_str(), 0666));
    const int reader = ::open(folder.Name("pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_TRUE(Save("pipe", "document"));
    char text[16] = {};
    EXPECT_EQ(8, ::read(reader, text, sizeof(text)));
    EXPECT_STREQ("document", text);
    ::close(reader);
    EXPECT_EQ((std::set<std::string>{"pipe"}), Entries());
    IO::eSaveFile full(eFileName("/dev/full"));
    full << 1;
    EXPECT_FALSE(full.Commit());
    EXPECT_NE(std::string::npos, full.Failure().text.find("No space left")) << full.Failure().text;
}

TEST_F(SavedFile, ALinkPlantedBesideTheTargetIsNotFollowed) {
    folder.Write("victim", "precious");
    fs::create_symlink("victim", folder.Path() / ".file.saving");
    ASSERT_TRUE(Save("file", "new"));
    EXPECT_EQ("new", folder.Read("file"));
    EXPECT_EQ("precious", folder.Read("victim"));
}

// A save holds the folder in which it began, whatever has that folder's name when it ends.
TEST_F(SavedFile, IsInTheFolderInWhichItBeganThoughALinkHasTakenTheFoldersName) {
    struct eRow {
        const char* meaning;
        bool exists, hasSecondName;
    };
    for (const eRow& row : {eRow{"one name", true, false}, eRow{"new", false, false}, eRow{"two names", true, true}}) {
        SCOPED_TRACE(row.meaning);
        for (const char* const name : {"docs", "outside"})
            fs::create_directory(folder.Path() / name);
        folder.Write("outside/file", "precious");
        if (row.exists)
            folder.Write("docs/file", "old");
        if (row.hasSecondName)
            fs::create_hard_link(folder.Path() / "docs/file", folder.Path() / "docs/other");
        {
            IO::eSaveFile file(Name("docs/file"));
            file.Write("new", 3);
            fs::rename(folder.Path() / "docs", folder.Path() / "moved");
            fs::create_directory_symlink("outside", folder.Path() / "docs");
            EXPECT_TRUE(file.Commit()) << file.Failure().text;
        }
        EXPECT_EQ("new", folder.Read("moved/file"));
        EXPECT_EQ("precious", folder.Read("outside/file"));
        {
            const IO::eSaveFile notCommitted(Name("moved/file"));
            fs::rename(folder.Path() / "moved", folder.Path() / "moved again");
        }
        const auto count = [this](const char* name) {
            return std::distance(fs::directory_iterator(folder.Path() / name), fs::directory_iterator());
        };
        EXPECT_EQ(1, count("outside"));
        EXPECT_EQ(row.hasSecondName ? 2 : 1, count("moved again"));
        Clear();
    }
}

TEST_F(SavedFile, MayHaveAnyNameThatTheSystemTakes) {
    for (const std::string& name :
         {std::string("two\nlines"), std::string("tab\t"), std::string(" blanks "), std::string("-rf"),
          std::string("..."), std::string("..hidden"), std::string("a:b"), std::string("*?\"|<>"),
          std::string("\xff\xfe not UTF-8"), std::string("file.unsaved"), std::string(".file.saving"),
          std::string(255, 'n'), std::string(127, '\xc3') + "\xa9", std::string("con"), std::string("$(file)")}) {
        SCOPED_TRACE(name);
        EXPECT_TRUE(Save(name, "old"));
        EXPECT_TRUE(Save(name, "new"));
        EXPECT_EQ("new", folder.Read(name));
        EXPECT_EQ(std::set<std::string>{name}, Entries());
        fs::remove(folder.Path() / name);
    }
}

TEST_F(SavedFile, NamesOfNoFileAreRefusedWithAReason) {
    folder.Write("file", "precious");
    fs::create_directory(folder.Path() / "docs");
    fs::create_directory_symlink("missing/", folder.Path() / "link");
    const std::set<std::string> before = Entries();
    for (const std::string& name :
         {std::string(), std::string("."), std::string(".."), std::string("docs"), std::string("docs/"),
          std::string("docs/."), std::string("docs/.."), std::string("file/"), std::string("file/x"),
          std::string("missing/"), std::string("missing/x"), std::string("link"), std::string("link/"),
          std::string(256, 'n'), std::string(5000, 'n')}) {
        SCOPED_TRACE(name);
        errno = 0;
        IO::eSaveFile file(Name(name));
        EXPECT_FALSE(file.IsOpen());
        EXPECT_FALSE(file.Commit());
        EXPECT_EQ(std::string::npos, file.Failure().text.find("cannot be saved."))
            << "no reason: " << file.Failure().text;
        EXPECT_NE(std::string::npos, file.Failure().text.find("cannot be saved: ")) << file.Failure().text;
        EXPECT_EQ(before, Entries());
    }
}

// In a folder that everybody may write to, another user plants whatever the next save may meet.
TEST_F(SavedFile, NamesPlantedByAnotherUserLeadNowhereElse) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can act as another user";
    ASSERT_EQ(0, ::chmod(folder.Path().c_str(), 01777));
    folder.Write("shared/precious", "precious");
    ASSERT_EQ(0, ::chmod(folder.Name("shared").c_str(), 01777));
    for (const char* const target : {"shared/file", "shared/missing"}) {
        if (target == std::string("shared/file"))
            folder.Write(target, "old");
        const std::string first = folder.Name("shared/." + std::string(target + 7) + ".saving");
        const std::string precious = folder.Name("shared/precious");
        ASSERT_EQ(kHeldInChild, AsNobody([&] {
                      const bool planted = ::symlink(precious.c_str(), first.c_str()) == 0 &&
                                           ::mkfifo((first + "1").c_str(), 0666) == 0 &&
                                           ::mkdir((first + "2").c_str(), 0777) == 0 &&
                                           ::symlink("nothing", (first + "3").c_str()) == 0;
                      return planted ? kHeldInChild : 1;
                  }));
        EXPECT_TRUE(Save(target, "new"));
        EXPECT_EQ("new", folder.Read(target));
        EXPECT_EQ("precious", folder.Read("shared/precious"));
        EXPECT_FALSE(folder.Exists("shared/nothing"));
        EXPECT_TRUE(S_ISREG(Facts(target).st_mode));
        EXPECT_EQ(0u, Facts(target).st_uid);
    }
}

TEST_F(SavedFile, WhatAnotherProgramIsWritingIsNotTakenForLeftOver) {
    int ready[2];
    ASSERT_EQ(0, ::pipe(ready));
    const pid_t child = ::fork();
    if (child == 0) {
        IO::eSaveFile file(Name("file"));
        file << "theirs";
        file.Flush();
        const bool told = ::write(ready[1], "x", 1) == 1;
        ::pause();
        ::_exit(told ? 0 : 1);
    }
    char signal;
    ASSERT_EQ(1, ::read(ready[0], &signal, 1));
    EXPECT_TRUE(Save("file", "ours"));
    EXPECT_TRUE(folder.Exists(".file.saving"));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_EQ("ours", folder.Read("file"));
    EXPECT_TRUE(Save("file", "later"));
    EXPECT_EQ((std::set<std::string>{"file"}), Entries());
    ::close(ready[0]);
    ::close(ready[1]);
}

namespace {

// Saves without end; sizes from 1 KB to 20 MB.
[[noreturn]] void SaveForever(const eFileName& name, unsigned seed) {
    for (std::mt19937 random(seed);; ++seed) {
        IO::eSaveFile file(name, seed % 2 ? IO::eSaveEnd::OnDisk : IO::eSaveEnd::InMemory);
        const std::string document = WholeDocument(seed, std::size_t{1000} << random() % 15);
        file.Write(document.data(), document.size());
        if (!file.Commit())
            ::_exit(1);
    }
}

} // namespace

TEST_F(SavedFile, AKilledProgramLosesNoDocument) {
    ASSERT_TRUE(Save("file", WholeDocument(0, 1000)));
    const int kills = LongTests() ? 1000 : 60;
    std::mt19937 random(2026);
    std::set<char> seen;
    for (int round = 0; round < kills; ++round) {
        const pid_t child = ::fork();
        if (child == 0)
            SaveForever(Name("file"), static_cast<unsigned>(round));
        ::usleep(static_cast<useconds_t>(random() % 30'000));
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the program ended by itself in round " << round;
        const std::string document = folder.Read("file");
        ASSERT_TRUE(IsWhole(document)) << round;
        seen.insert(document.back());
    }
    EXPECT_LT(5u, seen.size()) << "hardly anything was saved between the kills";
    EXPECT_TRUE(Save("file", "last"));
    EXPECT_EQ((std::set<std::string>{"file"}), Entries());
}

TEST_F(SavedFile, IsSavedByEachOfThoseThatSaveItAtOnce) {
    constexpr int kSaves = 300;
    std::vector<std::thread> threads;
    std::atomic<int> saved = 0;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&] {
            for (int save = 0; save < kSaves; ++save) {
                IO::eSaveFile file(Name("file"), IO::eSaveEnd::InMemory);
                file.Write("new", 3);
                saved += file.Commit();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(4 * kSaves, saved);
    EXPECT_EQ((std::set<std::string>{"file"}), Entries());
}

TEST_F(SavedFile, TwoProgramsThatSaveAtOnceDoNotMix) {
    ASSERT_TRUE(Save("file", WholeDocument(0, 1000)));
    pid_t children[2];
    for (unsigned number = 0; number < 2; ++number) {
        children[number] = ::fork();
        if (children[number] == 0)
            SaveForever(Name("file"), number * 1000);
    }
    for (eRounds looks(300, 300, 5); looks.Next();) {
        ASSERT_TRUE(IsWhole(folder.Read("file")));
        ::usleep(2000);
    }
    for (const pid_t child : children) {
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
    }
    EXPECT_TRUE(IsWhole(folder.Read("file")));
    EXPECT_TRUE(Save("file", "last"));
}

// --- Faults ---

namespace {

class SaveFault : public SavedFile {
protected:
    void SetUp() override {
        if (!eFault::ReachesLibraries())
            GTEST_SKIP() << "the libraries' calls do not pass through the test program";
    }

    struct eAttempt {
        bool saved = false;
        bool struck = false;
        std::string failure;
    };

    // Saves the document to "file" while the call of that number fails.
    eAttempt SaveWithFault(const std::string& document, int error, int call) const {
        const eFault fault("", error, call);
        IO::eSaveFile file(Name("file"));
        file.Write(document.data(), document.size());
        const bool saved = file.Commit();
        return {saved, fault.Struck(), file.Failure().text};
    }
};

constexpr int kErrors[] = {EINTR, EIO, ENOSPC, EACCES, EMFILE};

} // namespace

TEST_F(SaveFault, EveryFailingCallLeavesTheOldDocumentOrTheNewOne) {
    const std::string document(200'000, 'n');
    for (const int error : kErrors)
        for (int call = 1;; ++call) {
            SCOPED_TRACE(std::to_string(error) + " at call " + std::to_string(call));
            folder.Write("file", "old");
            const int before = OpenDescriptors();
            const auto [saved, struck, failure] = SaveWithFault(document, error, call);
            EXPECT_EQ(before, OpenDescriptors());
            const std::string content = folder.Read("file");
            EXPECT_TRUE(content == "old" || content == document) << content.size();
            EXPECT_TRUE(!saved || content == document);
            EXPECT_EQ(saved, failure.empty());
            EXPECT_TRUE(error != EINTR || saved) << failure;
            const bool kept = folder.Exists("file.unsaved");
            EXPECT_EQ(kept, failure.find("file.unsaved\"") != std::string::npos) << failure;
            EXPECT_TRUE(!kept || folder.Read("file.unsaved") == document);
            fs::remove(folder.Path() / "file.unsaved");
            EXPECT_EQ((std::set<std::string>{"file"}), Entries()) << failure;
            Clear();
            if (!struck)
                break;
        }
}

TEST_F(SaveFault, WhatIsNotCommittedIsNotWrittenToTheDisk) {
    const eFault fault("pwrite", EIO, 1);
    {
        IO::eSaveFile file(Name("file"));
        file.Write("document", 8);
    }
    EXPECT_FALSE(fault.Struck());
    EXPECT_FALSE(folder.Exists("file"));
}

TEST_F(SaveFault, AFileWithTwoNamesIsWholeOrItsDocumentIsKept) {
    const std::string document(200'000, 'n');
    for (const int error : kErrors)
        for (int call = 1;; ++call) {
            SCOPED_TRACE(std::to_string(error) + " at call " + std::to_string(call));
            folder.Write("file", "old");
            fs::create_hard_link(folder.Path() / "file", folder.Path() / "other");
            const auto [saved, struck, failure] = SaveWithFault(document, error, call);
            const std::string content = folder.Read("file");
            EXPECT_EQ(content, folder.Read("other"));
            EXPECT_TRUE(!saved || content == document);
            EXPECT_EQ(saved, failure.empty());
            if (content != "old" && content != document) {
                ASSERT_TRUE(folder.Exists("file.unsaved"));
                EXPECT_EQ(document, folder.Read("file.unsaved"));
            }
            Clear();
            if (!struck)
                break;
        }
}

TEST_F(SaveFault, WhatCannotBeKeptUnderALastingNameIsNotWrittenInPlace) {
    folder.Write("file", "old");
    fs::create_hard_link(folder.Path() / "file", folder.Path() / "other");
    const eFault fault("renameat2", EIO);
    IO::eSaveFile file(Name("file"));
    file << 'n';
    EXPECT_FALSE(file.Commit());
    EXPECT_EQ("old", folder.Read("other"));
    EXPECT_EQ("n", folder.Read(".file.saving"));
    EXPECT_NE(std::string::npos, file.Failure().text.find("/.file.saving\".")) << file.Failure().text;
    EXPECT_NE(std::string::npos, file.Failure().text.find("Input/output error")) << file.Failure().text;
}

// The document that is given up is never put over another one, whether or not the file system can tell by itself.
TEST_F(SaveFault, DocumentsThatAreKeptHaveNamesOfTheirOwn) {
    for (const int error : {0, EINVAL, ENOSYS}) {
        const eFault noRefusal(error == 0 ? "none" : "renameat2", error, 1, eFault::kAlways);
        for (const char* const kept : {"file.unsaved", "file.unsaved1", "file.unsaved2"}) {
            folder.Write("file", "old");
            IO::eSaveFile file(Name("file"));
            file << 'n';
            const int begun = OpenDescriptors();
            // A folder has taken the target's name meanwhile.
            fs::remove(folder.Path() / "file");
            fs::create_directory(folder.Path() / "file");
            EXPECT_FALSE(file.Commit());
            fs::remove(folder.Path() / "file");
            EXPECT_GT(begun, OpenDescriptors());
            EXPECT_NE(std::string::npos, file.Failure().text.find(std::string("/") + kept + "\"."))
                << file.Failure().text;
            EXPECT_EQ("n", folder.Read(kept));
        }
        EXPECT_EQ((std::set<std::string>{"file.unsaved", "file.unsaved1", "file.unsaved2"}), Entries());
        Clear();
    }
}

// A power failure loses what has not been flushed since, in any order: so the order of the calls is what matters.
TEST_F(SaveFault, TheDocumentIsOnTheDiskBeforeItReplacesTheTargetAndTheFolderIsAfterwards) {
    const auto calls = [this](const std::string& target, IO::eSaveEnd end) {
        const eFault watch("", 0, 0);
        {
            IO::eSaveFile file(Name(target), end);
            file << std::string(100'000, 'n');
            EXPECT_TRUE(file.Commit());
        }
        std::string changes;
        for (const std::string& call : watch.Trace())
            if (call == "pwrite" || call == "write" || call == "copy_file_range" || call == "ftruncate" ||
                call == "fsync" || call.starts_with("rename") || call == "unlinkat")
                changes += (changes.ends_with(call) ? "" : " " + call);
        return changes;
    };
    folder.Write("file", "old");
    EXPECT_EQ(" pwrite fsync renameat fsync", calls("file", IO::eSaveEnd::OnDisk));
    EXPECT_EQ(" pwrite fsync renameat fsync", calls("missing", IO::eSaveEnd::OnDisk));
    EXPECT_EQ(" pwrite renameat", calls("file", IO::eSaveEnd::InMemory));
    fs::create_hard_link(folder.Path() / "file", folder.Path() / "other");
    EXPECT_EQ(" pwrite fsync renameat2 fsync copy_file_range ftruncate fsync unlinkat",
              calls("file", IO::eSaveEnd::OnDisk));
}

// The system lets no file grow past the limit.
TEST_F(SavedFile, AFullDiskAtEveryByteLeavesTheOldDocument) {
    const std::string document(40'000, 'n');
    folder.Write("file", "old");
    const int held = AsNobody([this, &document] {
        ::signal(SIGXFSZ, SIG_IGN);
        for (rlim_t limit = 0; limit < document.size(); limit += limit < 100 || limit > 39'900 ? 1 : 97) {
            const rlimit size{limit, RLIM_INFINITY};
            ::setrlimit(RLIMIT_FSIZE, &size);
            IO::eSaveFile file(Name("file"));
            file.Write(document.data(), document.size());
            if (file.Commit() || !file.Failure())
                return 1;
        }
        return kHeldInChild;
    });
    ::chmod(folder.Path().c_str(), 0777);
    EXPECT_EQ(kHeldInChild, held);
    EXPECT_EQ("old", folder.Read("file"));
    EXPECT_EQ((std::set<std::string>{"file"}), Entries());
}
