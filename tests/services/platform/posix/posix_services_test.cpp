// SPDX-License-Identifier: BSL-1.0
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/current_folder.h"
#include "support/platform/posix/as_nobody.h"
#include "support/platform/posix/closed_input.h"
#include "support/platform/posix/fault.h"
#include "support/platform/posix/open_descriptors.h"
#include "support/platform/posix/umask.h"

#include "../../real_tree.h"

// Trees with features of this system: symbolic links, permissions, pipes, names that are not text.

namespace {

namespace fs = std::filesystem;

template <class Width>
class PosixServices : public eRealTree<Width> {
protected:
    void MakeLink(std::string_view target, std::string_view link) const { fs::create_symlink(target, this->At(link)); }
    std::string LinkText(std::string_view link) const { return fs::read_symlink(this->At(link)).string(); }
    bool IsLink(std::string_view name) const { return fs::is_symlink(fs::symlink_status(this->At(name))); }
};
TYPED_TEST_SUITE(PosixServices, eWidths, eWidthNames);

// --- Descriptors ---

TYPED_TEST(PosixServices, WorkWhereStandardInputIsClosed) {
    this->MakeFile("from/sub/file");
    this->MakeFolder("from/empty/inner");
    {
        const eClosedInput closed;
        TypeParam::Copy(this->Folder("from/"), this->Folder("to/"));
        TypeParam::PurgeEmpty(this->Folder("to/"));
        EXPECT_TRUE(TypeParam::CopyFile(this->Named("from/sub/file"), this->Named("copy")));
        TypeParam::Delete(this->Folder("from/"), true);
        using Search = typename TypeParam::Search;
        EXPECT_TRUE(Search(this->Folder("to/"), typename TypeParam::Name(TypeParam::Of("*"))).Valid());
        EXPECT_EQ(OpenDescriptors(), closed.Open());
    }
    EXPECT_EQ((eNames{"copy", "to/", "to/sub/", "to/sub/file"}), this->Tree(""));
    EXPECT_EQ("content", this->Content("to/sub/file"));
    EXPECT_EQ("content", this->Content("copy"));
}

// --- Links ---

TYPED_TEST(PosixServices, DeletionOfALinkWithAShortNameRemovesTheLinkAlone) {
    this->MakeFile("outside/file");
    const eCurrentFolder current(this->At(""));
    for (const char* const name : {"l", "l/", "l/."}) {
        fs::create_directory_symlink("outside", "l");
        TypeParam::Delete(typename TypeParam::Name(TypeParam::Of(name)), true);
        EXPECT_EQ((eNames{"outside/", "outside/file"}), this->Tree("")) << name;
    }
}

TYPED_TEST(PosixServices, DeletionRemovesLinksAndNeverWhatTheyPointTo) {
    this->MakeFile("outside/file", "precious");
    this->MakeFile("root/sub/file");
    this->MakeLink("../outside", "root/relative");
    this->MakeLink(this->At("outside").string(), "root/sub/absolute");
    this->MakeLink("../outside/file", "root/to file");
    this->MakeLink("nowhere", "root/broken");
    this->MakeLink("..", "root/sub/cycle");
    this->MakeLink(".", "root/self");
    TypeParam::Delete(this->Named("root"), true);
    EXPECT_EQ((eNames{"outside/", "outside/file"}), this->Tree(""));
    EXPECT_EQ("precious", this->Content("outside/file"));
}

TYPED_TEST(PosixServices, DeletionOfALinkToAFolderRemovesTheLinkAlone) {
    this->MakeFile("outside/file");
    for (const bool recursive : {true, false}) {
        for (const char* ending : {"", "/", "//", "/.", "/./", "//.//"}) {
            this->MakeLink("outside", "link");
            typename TypeParam::Name name = this->Named("link").str() + TypeParam::Of(ending);
            TypeParam::Delete(name, recursive);
            EXPECT_FALSE(this->Exists("link")) << ending;
            EXPECT_EQ((eNames{"outside/", "outside/file"}), this->Tree(""));
        }
    }
}

TYPED_TEST(PosixServices, DeletionOfALinkToAnEmptyFolderSparesTheFolder) {
    for (const bool recursive : {true, false}) {
        this->MakeFolder("outside");
        this->MakeLink("outside", "link");
        TypeParam::Delete(this->Folder("link"), recursive);
        EXPECT_EQ(eNames{"outside/"}, this->Tree(""));
    }
}

TYPED_TEST(PosixServices, DeletionOfALinkToAFileOrToNothingLeavesIt) {
    this->MakeFile("file");
    this->MakeLink("file", "to file");
    this->MakeLink("nothing", "to nothing");
    TypeParam::Delete(this->Named("to file"), true);
    TypeParam::Delete(this->Named("to nothing"), true);
    EXPECT_EQ((eNames{"file", "to file", "to nothing"}), this->Tree(""));
}

TYPED_TEST(PosixServices, CopyingRecreatesLinksAndFollowsNone) {
    this->MakeFile("outside/file");
    this->MakeFile("from/sub/file");
    this->MakeLink("../outside", "from/to folder");
    this->MakeLink("sub/file", "from/to file");
    this->MakeLink("nowhere", "from/broken");
    this->MakeLink("..", "from/sub/cycle");
    TypeParam::Copy(this->Named("from"), this->Named("to"));
    EXPECT_EQ((eNames{"broken", "sub/", "sub/cycle", "sub/file", "to file", "to folder"}), this->Tree("to"));
    EXPECT_EQ("../outside", this->LinkText("to/to folder"));
    EXPECT_EQ("sub/file", this->LinkText("to/to file"));
    EXPECT_EQ("nowhere", this->LinkText("to/broken"));
    EXPECT_EQ("..", this->LinkText("to/sub/cycle"));
}

TYPED_TEST(PosixServices, CopyingToALinkReplacesTheLinkAndSparesItsTarget) {
    this->MakeFile("outside/file");
    this->MakeFile("from/new");
    for (const char* to : {"to", "to/", "to/.", "to//.//"}) {
        this->MakeLink("outside", "to");
        TypeParam::Copy(this->Named("from"), this->Named(to));
        EXPECT_EQ((eNames{"from/", "from/new", "outside/", "outside/file", "to/", "to/new"}), this->Tree("")) << to;
        EXPECT_FALSE(this->IsLink("to"));
        TypeParam::Delete(this->Named("to"), true);
    }
}

TYPED_TEST(PosixServices, CopyingFromALinkCopiesTheFolderThatWasNamed) {
    this->MakeFile("outside/file");
    this->MakeLink("outside", "from");
    TypeParam::Copy(this->Named("from"), this->Named("to"));
    EXPECT_EQ(eNames{"file"}, this->Tree("to"));
    EXPECT_TRUE(this->IsLink("from"));
}

TYPED_TEST(PosixServices, PurgingLeavesLinksAndWhatTheyPointToAlone) {
    this->MakeFolder("outside/empty");
    this->MakeFolder("root/empty");
    this->MakeFolder("root/sub");
    this->MakeLink("../outside", "root/link");
    this->MakeLink("../../outside", "root/sub/link");
    this->MakeLink("nowhere", "root/broken");
    TypeParam::PurgeEmpty(this->Folder("root"));
    EXPECT_EQ((eNames{"outside/", "outside/empty/", "root/", "root/broken", "root/link", "root/sub/", "root/sub/link"}),
              this->Tree(""));
}

TYPED_TEST(PosixServices, SearchShowsALinkToAFolderAsSubfolderAndAnyOtherAsFile) {
    this->MakeFile("outside/file", "12345");
    this->MakeFolder("root");
    this->MakeLink("../outside", "root/folder");
    this->MakeLink("../outside/file", "root/file");
    this->MakeLink("nowhere", "root/broken");
    for (const char* name : {"folder", "file", "broken"}) {
        const typename TypeParam::Search search(this->Folder("root"), TypeParam::Of(name));
        EXPECT_TRUE(search.IsLink()) << name;
        EXPECT_EQ(name == std::string("folder"), search.IsSubfolder()) << name;
        EXPECT_EQ(name != std::string("folder"), search.IsFile()) << name;
        EXPECT_EQ(0u, search.Size()) << name;
        EXPECT_NE(0u, search.ModifyTime().Ticks()) << name;
    }
}

TYPED_TEST(PosixServices, ALinkThatVanishesBeforeItIsAskedAboutIsAFileWithoutSize) {
    this->MakeFolder("root/folder");
    this->MakeLink("folder", "root/link");
    const typename TypeParam::Search search(this->Folder("root"), TypeParam::Of("link"));
    ASSERT_TRUE(search.Valid());
    fs::remove(this->At("root/link"));
    EXPECT_TRUE(search.IsFile());
    EXPECT_FALSE(search.IsSubfolder());
    EXPECT_FALSE(search.IsLink());
    EXPECT_EQ(0u, search.Size());
    EXPECT_EQ(IO::eFileTime(), search.ModifyTime());
}

// --- A folder replaced by a link while a walk is in it ---

// Exchanges the folder and a link to the outside as fast as possible during its lifetime.
class eExchanger {
public:
    eExchanger(const fs::path& folder, const fs::path& link)
        : thread([this, folder, link] {
              while (!done) {
                  ::renameat2(AT_FDCWD, folder.c_str(), AT_FDCWD, link.c_str(), RENAME_EXCHANGE);
                  ++exchanges;
              }
          }) {
        while (exchanges == 0)
            std::this_thread::yield();
    }
    ~eExchanger() {
        done = true;
        thread.join();
    }

private:
    std::atomic<bool> done = false;
    std::atomic<int> exchanges = 0;
    std::thread thread;
};

TYPED_TEST(PosixServices, DeletionIsNotLedOutByAFolderThatBecomesALink) {
    for (int number = 0; number < 50; ++number)
        this->MakeFile("outside/inner/" + std::to_string(number));
    const eNames outside = this->Tree("outside");
    for (int round = 0; round < 40; ++round) {
        this->MakeFolder("root");
        for (int number = 0; number < 20; ++number)
            this->MakeFile("root/folder/inner/" + std::to_string(number));
        this->MakeLink("../outside", "root/link");
        {
            const eExchanger exchanger(this->At("root/folder"), this->At("root/link"));
            TypeParam::Delete(this->Named("root"), true);
        }
        ASSERT_EQ(outside, this->Tree("outside")) << round;
        TypeParam::Delete(this->Named("root"), true);
        ASSERT_FALSE(this->Exists("root")) << round;
    }
}

TYPED_TEST(PosixServices, CopyingIsNotLedOutByATargetThatBecomesALink) {
    this->MakeFile("outside/inner/file", "precious");
    this->MakeFile("from/sub/inner/file", "new");
    this->MakeFolder("to");
    this->MakeFolder("swap");
    const eExchanger exchanger(this->At("to/sub"), this->At("swap/sub"));
    for (int round = 0; round < 400; ++round) {
        TypeParam::Delete(this->Named("swap/sub"), true);
        std::error_code taken;
        fs::create_symlink("../outside", this->At("swap/sub"), taken);
        TypeParam::Copy(this->Named("from"), this->Named("to"));
        ASSERT_EQ((eNames{"inner/", "inner/file"}), this->Tree("outside")) << round;
        ASSERT_EQ("precious", this->Content("outside/inner/file")) << round;
    }
}

TYPED_TEST(PosixServices, PurgingIsNotLedOutByAFolderThatBecomesALink) {
    this->MakeFolder("outside/inner/empty");
    this->MakeFolder("outside/empty/empty");
    const eNames outside = this->Tree("outside");
    for (const char* exchanged : {"root", "root/inner"}) {
        this->MakeFolder("root/inner");
        this->MakeLink(this->At("outside").string(), "link");
        {
            const eExchanger exchanger(this->At(exchanged), this->At("link"));
            for (int round = 0; round < 400; ++round) {
                TypeParam::PurgeEmpty(this->Folder("root"));
                ASSERT_EQ(outside, this->Tree("outside")) << round;
                std::error_code taken;
                fs::create_directories(this->At("root/inner/empty"), taken);
            }
        }
        for (const char* name : {"root", "link"})
            fs::remove_all(this->At(name));
    }
}

TYPED_TEST(PosixServices, PurgingLeavesALinkToAFolderAlone) {
    this->MakeFolder("outside/empty");
    this->MakeLink("outside", "root");
    TypeParam::PurgeEmpty(this->Folder("root"));
    EXPECT_EQ((eNames{"outside/", "outside/empty/", "root"}), this->Tree(""));
}

// --- Depth and descriptors ---

// Creates nested folders whose full names would be too long.
void MakeDeep(const fs::path& root, int depth) {
    fs::create_directories(root);
    int folder = ::open(root.c_str(), O_RDONLY | O_DIRECTORY);
    for (int level = 0; level < depth; ++level) {
        ASSERT_EQ(0, ::mkdirat(folder, "down", 0777));
        const int next = ::openat(folder, "down", O_RDONLY | O_DIRECTORY);
        const int file = ::openat(next, "file", O_CREAT | O_WRONLY, 0666);
        ::close(file);
        ::close(folder);
        folder = next;
    }
    ::close(folder);
}

TYPED_TEST(PosixServices, TreesOfAnyDepthNeedFewDescriptors) {
    constexpr int kDepth = 1000;
    MakeDeep(this->At("root"), kDepth);
    rlimit limit{};
    ASSERT_EQ(0, ::getrlimit(RLIMIT_NOFILE, &limit));
    const rlimit few{100, limit.rlim_max};
    ASSERT_EQ(0, ::setrlimit(RLIMIT_NOFILE, &few));
    TypeParam::Copy(this->Named("root"), this->Named("copy"));
    TypeParam::Delete(this->Named("root"), true);
    const bool rootGone = !this->Exists("root");
    TypeParam::PurgeEmpty(this->Folder("copy"));
    const bool copyKept = this->Exists("copy/down/down/down/file");
    TypeParam::Delete(this->Named("copy"), true);
    const bool copyGone = !this->Exists("copy");
    ASSERT_EQ(0, ::setrlimit(RLIMIT_NOFILE, &limit));
    EXPECT_TRUE(rootGone);
    EXPECT_TRUE(copyKept);
    EXPECT_TRUE(copyGone);
}

TYPED_TEST(PosixServices, NothingStaysOpen) {
    this->MakeFile("root/a/b/file");
    this->MakeLink("a", "root/link");
    const int before = OpenDescriptors();
    {
        typename TypeParam::Search first(this->Folder("root"), TypeParam::Of("*.*"));
        typename TypeParam::Search second(first);
        second.Begin(this->Folder("root"), TypeParam::Of("none"));
        second = first;
        first.End();
        TypeParam::Copy(this->Named("root"), this->Named("copy"));
        TypeParam::PurgeEmpty(this->Folder("copy"));
        TypeParam::Delete(this->Named("copy"), true);
        TypeParam::CopyFile(this->Named("root/a/b/file"), this->Named("no/such"));
        TypeParam::Size(this->Named("root/a/b/file"));
        EXPECT_EQ(before + 1, OpenDescriptors());
    }
    EXPECT_EQ(before, OpenDescriptors());
}

// --- Permissions ---

TYPED_TEST(PosixServices, WhatMayNotBeRemovedStaysWithItsParentsAndTheRestGoes) {
    this->MakeFile("root/a/sealed/kept");
    this->MakeFile("root/a/gone/file");
    this->MakeFile("root/gone");
    for (const char* folder : {"", "root", "root/a", "root/a/gone"})
        ASSERT_EQ(0, ::chmod(this->At(folder).c_str(), 0777));
    ASSERT_EQ(0, ::chmod(this->At("root/a/sealed").c_str(), 0555));
    EXPECT_EQ(kHeldInChild, AsNobody([&] {
                  TypeParam::Delete(this->Named("root"), true);
                  return 0;
              }));
    ASSERT_EQ(0, ::chmod(this->At("root/a/sealed").c_str(), 0777));
    EXPECT_EQ((eNames{"root/", "root/a/", "root/a/sealed/", "root/a/sealed/kept"}), this->Tree(""));
}

TYPED_TEST(PosixServices, AFolderThatMayNotBeListedHasNoEntriesAndStays) {
    this->MakeFile("root/closed/file");
    this->MakeFolder("root/closed and empty");
    for (const char* folder : {"", "root"})
        ASSERT_EQ(0, ::chmod(this->At(folder).c_str(), 0777));
    for (const char* folder : {"root/closed", "root/closed and empty"})
        ASSERT_EQ(0, ::chmod(this->At(folder).c_str(), 0));
    EXPECT_EQ(kHeldInChild, AsNobody([&] {
                  using Search = typename TypeParam::Search;
                  const bool listed = Search(this->Folder("root/closed"), TypeParam::Of("*.*")).Valid();
                  TypeParam::Copy(this->Named("root/closed"), this->Named("copy"));
                  TypeParam::Delete(this->Named("root"), true);
                  return listed ? 1 : 0;
              }));
    ASSERT_EQ(0, ::chmod(this->At("root/closed").c_str(), 0777));
    EXPECT_EQ((eNames{"copy/", "root/", "root/closed/", "root/closed/file"}), this->Tree(""));
}

TYPED_TEST(PosixServices, AccessTellsWhatThisProcessMayDo) {
    this->MakeFile("file");
    ASSERT_EQ(0, ::chmod(this->At("").c_str(), 0755));
    struct eRow {
        mode_t permissions;
        bool write, read;
    };
    for (const eRow& row :
         {eRow{0444, false, true}, eRow{0222, true, false}, eRow{0666, true, true}, eRow{0, false, false}}) {
        ASSERT_EQ(0, ::chmod(this->At("file").c_str(), row.permissions));
        const int status = AsNobody([&] {
            const auto may = [&](int mode) { return TypeParam::MayAccess(this->Named("file"), mode); };
            const bool right = may(0) && may(2) == row.write && may(4) == row.read && may(6) == (row.write && row.read);
            const bool sized = (TypeParam::Size(this->Named("file")) != 0) == row.read;
            return right && sized ? 0 : 1;
        });
        EXPECT_EQ(0, status) << row.permissions;
    }
}

TYPED_TEST(PosixServices, AccessAsksForTheUserThatTheProcessActsAs) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root may act as another user";
    this->MakeFile("file");
    ASSERT_EQ(0, ::chmod(this->At("").c_str(), 0755));
    ASSERT_EQ(0, ::chmod(this->At("file").c_str(), 0600));
    ASSERT_EQ(0, ::seteuid(65534));
    const bool read = TypeParam::MayAccess(this->Named("file"), 4);
    const bool exists = TypeParam::MayAccess(this->Named("file"), 0);
    ASSERT_EQ(0, ::seteuid(0));
    EXPECT_FALSE(read);
    EXPECT_TRUE(exists);
}

TYPED_TEST(PosixServices, AccessAndSizeFollowLinks) {
    this->MakeFile("file", "0123456789abcdef");
    this->MakeLink("file", "link");
    this->MakeLink("nothing", "broken");
    EXPECT_TRUE(TypeParam::MayAccess(this->Named("link"), 6));
    EXPECT_EQ(16u, TypeParam::Size(this->Named("link")));
    EXPECT_FALSE(TypeParam::MayAccess(this->Named("broken"), 0));
    EXPECT_EQ(0u, TypeParam::Size(this->Named("broken")));
    EXPECT_FALSE(TypeParam::CopyFile(this->Named("broken"), this->Named("copy")));
    EXPECT_FALSE(this->Exists("copy"));
}

TYPED_TEST(PosixServices, CopyThatIsRefusedLeavesTheTargetAsItWas) {
    this->MakeFile("from", "new");
    this->MakeFile("to", "old");
    ASSERT_EQ(0, ::chmod(this->At("").c_str(), 0755));
    ASSERT_EQ(0, ::chmod(this->At("to").c_str(), 0444));
    EXPECT_EQ(1, AsNobody([&] { return TypeParam::CopyFile(this->Named("from"), this->Named("to")) ? 1 : 0; }));
    EXPECT_EQ("old", this->Content("to"));
}

TYPED_TEST(PosixServices, CopyThatFindsNoRoomLeavesNoPartialTarget) {
    for (const std::size_t size : {200'000u, 60'000u}) {
        this->MakeFile("from", std::string(size, 'x'));
        const pid_t child = ::fork();
        if (child == 0) {
            const rlimit small{size / 3, size / 3};
            ::setrlimit(RLIMIT_FSIZE, &small);
            ::signal(SIGXFSZ, SIG_IGN);
            ::_exit(TypeParam::CopyFile(this->Named("from"), this->Named("to")) ? 1 : 0);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_EQ(1, WEXITSTATUS(status)) << size;
        EXPECT_FALSE(this->Exists("to")) << size;
    }
}

// --- Permissions of copied folders ---

mode_t ModeOf(const fs::path& name) {
    struct stat facts {};
    EXPECT_EQ(0, ::lstat(name.c_str(), &facts)) << name;
    return facts.st_mode & 07777;
}

TYPED_TEST(PosixServices, ACopiedFolderHasTheSourcesPermissionsUnderTheUmask) {
    this->MakeFile("from/sub/file");
    this->MakeFolder("from/empty");
    for (const mode_t mask : {0022u, 0077u, 0000u}) {
        for (const mode_t mode : {0700u, 0755u, 0777u, 0770u, 01777u, 0500u}) {
            const eUmask umask(mask);
            for (const char* name : {"from", "from/sub", "from/empty"})
                ASSERT_EQ(0, ::chmod(this->At(name).c_str(), mode));
            TypeParam::Copy(this->Named("from"), this->Named("to"));
            for (const char* name : {"to", "to/sub", "to/empty"})
                EXPECT_EQ(mode & ~mask, ModeOf(this->At(name))) << name << ' ' << mode << ' ' << mask;
            ASSERT_EQ(eNames({"empty/", "sub/", "sub/file"}), this->Tree("to"));
            for (const char* name : {"to", "to/sub", "to/empty", "from", "from/sub", "from/empty"})
                ASSERT_EQ(0, ::chmod(this->At(name).c_str(), 0700));
        }
    }
}

TYPED_TEST(PosixServices, ACopiedFolderIsFilledWhateverItsOwnerMayDoInTheEnd) {
    this->MakeFile("from/sub/inner/file");
    this->MakeFolder("to");
    for (const char* name : {"from", "from/sub", "from/sub/inner"})
        ASSERT_EQ(0, ::chmod(this->At(name).c_str(), 0555));
    for (const char* name : {"", "to"})
        ASSERT_EQ(0, ::chmod(this->At(name).c_str(), 0777));
    EXPECT_EQ(kHeldInChild, AsNobody([&] {
                  TypeParam::Copy(this->Named("from"), this->Named("to/copy"));
                  return 0;
              }));
    EXPECT_EQ((eNames{"sub/", "sub/inner/", "sub/inner/file"}), this->Tree("to/copy"));
    for (const char* name : {"", "/sub", "/sub/inner"}) {
        EXPECT_EQ(0555u, ModeOf(this->At("to/copy" + std::string(name))));
        for (const char* root : {"from", "to/copy"})
            ASSERT_EQ(0, ::chmod(this->At(root + std::string(name)).c_str(), 0777));
    }
}

TYPED_TEST(PosixServices, ACopyIsAtNoTimeOpenToMoreThanItsSource) {
    if (!eFault::ReachesLibraries())
        GTEST_SKIP() << "the libraries' calls do not pass through the test program";
    this->MakeFile("from/sub/file");
    for (const char* name : {"from", "from/sub", "from/sub/file"})
        ASSERT_EQ(0, ::chmod(this->At(name).c_str(), 0700));
    for (int call = 1;; ++call) {
        TypeParam::Delete(this->Named("to"), true);
        const eFault look("", call, [&] {
            for (const char* name : {"to", "to/sub", "to/sub/file"}) {
                struct stat facts {};
                if (::lstat(this->At(name).c_str(), &facts) == 0) {
                    EXPECT_EQ(0u, facts.st_mode & 077) << name;
                }
            }
        });
        TypeParam::Copy(this->Named("from"), this->Named("to"));
        if (!look.Struck())
            break;
    }
    EXPECT_TRUE(this->Exists("to/sub/file"));
}

// --- Other kinds of files ---

TYPED_TEST(PosixServices, PipesAndDevicesAreNeitherWaitedForNorCopied) {
    this->MakeFolder("from");
    ASSERT_EQ(0, ::mkfifo(this->At("from/pipe").c_str(), 0666));
    this->MakeFile("from/file");
    EXPECT_TRUE(TypeParam::CopyFile(this->Named("from/pipe"), this->Named("copy of pipe")));
    EXPECT_FALSE(this->Exists("copy of pipe"));
    EXPECT_TRUE(TypeParam::CopyFile(this->Named("from/file"), this->Named("from/pipe")));
    EXPECT_EQ(0u, TypeParam::Size(this->Named("from/pipe")));
    EXPECT_TRUE(TypeParam::CopyFile(TypeParam::Of("/dev/zero"), this->Named("zeros")));
    EXPECT_FALSE(this->Exists("zeros"));
    TypeParam::Copy(this->Named("from"), this->Named("to"));
    EXPECT_EQ(eNames{"file"}, this->Tree("to"));
    EXPECT_TRUE(typename TypeParam::Search(this->Folder("from"), TypeParam::Of("pipe")).IsFile());
    TypeParam::Delete(this->Named("from"), true);
    EXPECT_FALSE(this->Exists("from"));
}

TYPED_TEST(PosixServices, CopyThroughALinkOntoItselfLeavesTheFileWhole) {
    this->MakeFile("real", "precious");
    this->MakeLink("real", "link");
    fs::create_hard_link(this->At("real"), this->At("hard"));
    for (const char* other : {"link", "hard"}) {
        EXPECT_TRUE(TypeParam::CopyFile(this->Named("real"), this->Named(other)));
        EXPECT_TRUE(TypeParam::CopyFile(this->Named(other), this->Named("real")));
        EXPECT_EQ("precious", this->Content("real")) << other;
    }
}

// --- Names ---

TYPED_TEST(PosixServices, NamesThatAreNoTextAreFoundCopiedAndDeleted) {
    const std::vector<std::string> names = {
        "caf\xE9",          "\xFF\xFE", "\xC3",        "a\xE2\x82z", "\xED\xA0\x80",
        "\xF5\x80\x80\x80", "\xC0\xAF", "back\\slash", "tab\there",  std::string(255, '\xB5')};
    for (const std::string& name : names)
        this->MakeFile("root/" + name + (name.size() < 250 ? "/file" : ""), "x");
    std::size_t found = 0;
    for (typename TypeParam::Search search(this->Folder("root"), TypeParam::Of("*.*")); search.Valid(); search.Next())
        found += search.IsSubfolder() || (search.IsFile() && search.Size() == 1);
    EXPECT_EQ(names.size(), found);
    TypeParam::Copy(this->Named("root"), this->Named("copy"));
    EXPECT_EQ(this->Tree("root"), this->Tree("copy"));
    TypeParam::Delete(this->Named("copy"), true);
    EXPECT_FALSE(this->Exists("copy"));
    for (const std::string& name : names)
        if (name.size() < 250)
            fs::remove(this->At("root/" + name + "/file"));
    TypeParam::PurgeEmpty(this->Folder("root"));
    EXPECT_EQ(eNames{std::string(255, '\xB5')}, this->Tree("root"));
}

TYPED_TEST(PosixServices, AFoundNameThatIsNoTextLeadsBackToItsFile) {
    this->MakeFile("root/caf\xE9", "1234");
    typename TypeParam::Search search(this->Folder("root"), TypeParam::Of("caf*"));
    ASSERT_TRUE(search.IsFile());
    const typename TypeParam::Name name = this->Folder("root").str() + search.Name();
    EXPECT_EQ(4u, TypeParam::Size(name));
    EXPECT_TRUE(TypeParam::DeleteFile(name));
    EXPECT_EQ(eNames(), this->Tree("root"));
}

TYPED_TEST(PosixServices, AQuestionMarkStandsForOneCharacterOfAnyLength) {
    this->MakeFile("root/a\xC3\xA4"
                   "b");
    this->MakeFile("root/a\xE6\x97\xA5"
                   "b");
    this->MakeFile("root/axxb");
    int found = 0;
    for (typename TypeParam::Search search(this->Folder("root"), TypeParam::Of("a?b")); search.Valid(); search.Next())
        ++found;
    EXPECT_EQ(2, found);
}

TYPED_TEST(PosixServices, NamesOf255BytesWorkEverywhere) {
    const std::string name(255, 'n');
    this->MakeFile("root/" + name + "/" + name, "x");
    TypeParam::Copy(this->Named("root"), this->Named("copy"));
    EXPECT_EQ((eNames{name + "/", name + "/" + name}), this->Tree("copy"));
    typename TypeParam::Search search(this->Folder("copy/" + name), TypeParam::Of("*.*"));
    while (search.Valid() && !search.IsFile())
        search.Next();
    EXPECT_EQ(TypeParam::Of(std::string_view(name)), search.Name());
    EXPECT_TRUE(TypeParam::Create(this->Named("made/" + name)));
    EXPECT_FALSE(TypeParam::Create(this->Named("made/" + name + "n")));
    TypeParam::Delete(this->Named("copy"), true);
    EXPECT_FALSE(this->Exists("copy"));
}

TYPED_TEST(PosixServices, AFolderNamedByThreeDotsIsASubfolder) {
    this->MakeFolder("root/...");
    typename TypeParam::Search search(this->Folder("root"), TypeParam::Of("..."));
    EXPECT_TRUE(search.IsSubfolder());
    EXPECT_FALSE(search.IsFile());
}

TYPED_TEST(PosixServices, AColonInANameIsALetterLikeAnyOther) {
    EXPECT_TRUE(TypeParam::Create(this->Named("a:b/c:d/e")));
    EXPECT_EQ((eNames{"a:b/", "a:b/c:d/", "a:b/c:d/e/"}), this->Tree(""));
}

TYPED_TEST(PosixServices, WorkingDirIsTheFolderOfTheRunningProgram) {
    EXPECT_EQ(TypeParam::OfPath(fs::read_symlink("/proc/self/exe").parent_path()) + TypeParam::Of("/"),
              TypeParam::WorkingDir());
}

} // namespace
