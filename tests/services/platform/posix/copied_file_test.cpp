// SPDX-License-Identifier: BSL-1.0
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <qzl_io/system.h>

#include "support/platform/posix/as_nobody.h"
#include "support/platform/posix/fault.h"
#include "support/platform/posix/umask.h"

#include "../../real_tree.h"

// The target of a copy on this system: permissions, links to it, other names, kinds of files, holes.

namespace {

namespace fs = std::filesystem;

class CopiedFile : public eRealTree<eNarrow> {
protected:
    bool Copy(std::string_view from, std::string_view to) const {
        return IO::System::File::Copy(Named(from), Named(to));
    }
    struct stat Facts(std::string_view name) const {
        struct stat facts {};
        EXPECT_EQ(0, ::lstat(At(name).c_str(), &facts)) << name;
        return facts;
    }
    mode_t Mode(std::string_view name) const { return Facts(name).st_mode & 07777; }
    void SetMode(std::string_view name, mode_t mode) const { ASSERT_EQ(0, ::chmod(At(name).c_str(), mode)); }
    void MakeLink(std::string_view target, std::string_view link) const { fs::create_symlink(target, At(link)); }
};

} // namespace

// --- Permissions ---

TEST_F(CopiedFile, IsNewWithTheSourcesPermissionsUnderTheUmask) {
    MakeFile("from/file");
    for (const mode_t mask : {0022u, 0077u, 0000u}) {
        for (const mode_t mode : {0600u, 0644u, 0444u, 0755u, 0777u, 0200u, 04755u}) {
            const eUmask umask(mask);
            fs::remove(At("to"));
            fs::remove_all(At("tree"));
            SetMode("from/file", mode);
            if (::access(At("from/file").c_str(), R_OK) != 0)
                continue;
            EXPECT_TRUE(Copy("from/file", "to"));
            IO::System::Path::Copy(Named("from"), Named("tree"));
            EXPECT_EQ(mode & 0777 & ~mask, Mode("to"));
            EXPECT_EQ(mode & 0777 & ~mask, Mode("tree/file"));
        }
    }
}

TEST_F(CopiedFile, KeepsThePermissionsOfAnExistingTarget) {
    MakeFile("from", "new");
    MakeFile("to");
    for (const mode_t source : {0666u, 0755u, 0400u}) {
        for (const mode_t target : {0600u, 0644u, 0640u, 0777u}) {
            SetMode("from", source);
            SetMode("to", target);
            EXPECT_TRUE(Copy("from", "to"));
            EXPECT_EQ("new", Content("to"));
            EXPECT_EQ(target, Mode("to"));
        }
    }
}

TEST_F(CopiedFile, KeepsTheOwnerOfAnExistingTarget) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root gives files away";
    MakeFile("from", "new");
    MakeFile("to", "old");
    ASSERT_EQ(0, ::chown(At("to").c_str(), 1234, 4321));
    EXPECT_TRUE(Copy("from", "to"));
    EXPECT_EQ("new", Content("to"));
    EXPECT_EQ(1234u, Facts("to").st_uid);
    EXPECT_EQ(4321u, Facts("to").st_gid);
}

TEST_F(CopiedFile, KeepsTheAttributesOfAnExistingTarget) {
    MakeFile("from", "new");
    MakeFile("to", "old");
    if (::setxattr(At("to").c_str(), "user.colour", "red", 3, 0) != 0)
        GTEST_SKIP() << "the file system keeps no attributes";
    EXPECT_TRUE(Copy("from", "to"));
    char value[8] = {};
    EXPECT_EQ(3, ::getxattr(At("to").c_str(), "user.colour", value, sizeof value));
    EXPECT_STREQ("red", value);
}

TEST_F(CopiedFile, ReplacesTheTargetAtTheEndOfAsManyLinksAsTheSystemFollows) {
    MakeFile("from", "new");
    MakeFile("link0", "old");
    for (int link = 1; link <= 40; ++link)
        fs::create_symlink("link" + std::to_string(link - 1), At("link" + std::to_string(link)));
    const ino_t before = Facts("link0").st_ino;
    EXPECT_TRUE(Copy("from", "link40"));
    EXPECT_EQ("new", Content("link0"));
    EXPECT_NE(before, Facts("link0").st_ino);
}

TEST_F(CopiedFile, IsWrittenInPlaceWhereTheTargetMayBeWrittenButNotReplaced) {
    SetMode("", 0755);
    struct eRow {
        const char* promise;
        mode_t folder, file;
    };
    for (const eRow& row : {eRow{"the folder takes no new file", 0555, 0666}, eRow{"the owner is another", 0777, 0666},
                            eRow{"the sticky bit protects files of others", 01777, 0666}}) {
        SCOPED_TRACE(row.promise);
        MakeFile("folder/from", "new");
        MakeFile("folder/to", "something older");
        const ino_t before = Facts("folder/to").st_ino;
        SetMode("folder/to", row.file);
        SetMode("folder", row.folder);
        EXPECT_EQ(1, AsNobody([&] { return Copy("folder/from", "folder/to") ? 1 : 0; }));
        SetMode("folder", 0755);
        EXPECT_EQ("new", Content("folder/to"));
        if (::geteuid() == 0) {
            EXPECT_EQ(before, Facts("folder/to").st_ino);
        }
        EXPECT_EQ((eNames{"folder/", "folder/from", "folder/to"}), Tree(""));
    }
}

TEST_F(CopiedFile, LeavesATargetThatItCannotReplaceForAnyOtherReason) {
    if (!eFault::ReachesLibraries())
        GTEST_SKIP() << "the libraries' calls do not pass through the test program";
    for (const int error : {EIO, ENOSPC}) {
        MakeFile("from", "new");
        MakeFile("to", "something older");
        const eFault fault("renameat", error);
        Copy("from", "to");
        EXPECT_TRUE(fault.Struck());
        EXPECT_EQ("something older", Content("to"));
    }
    EXPECT_EQ((eNames{"from", "to"}), Tree(""));
}

TEST_F(CopiedFile, IsWrittenInPlaceWhereItIsMountedByItself) {
    if (!eFault::ReachesLibraries())
        GTEST_SKIP() << "the libraries' calls do not pass through the test program";
    for (const auto& [function, error] : {std::pair{"renameat", EBUSY}, {"openat", EROFS}}) {
        bool inPlace = false;
        bool struck = true;
        for (int call = 1; struck; ++call) {
            MakeFile("from", "new");
            MakeFile("to", "something older");
            const ino_t before = Facts("to").st_ino;
            {
                const eFault fault(function, error, call);
                EXPECT_TRUE(Copy("from", "to"));
                struck = fault.Struck();
            }
            inPlace = inPlace || (struck && Content("to") == "new" && Facts("to").st_ino == before);
            EXPECT_EQ((eNames{"from", "to"}), Tree(""));
        }
        EXPECT_TRUE(inPlace) << function;
    }
}

// --- One step ---

TEST_F(CopiedFile, TakesTheTargetsPlaceInOneStep) {
    MakeFile("from", "new");
    MakeFile("to", "old");
    std::ifstream reader(At("to"));
    EXPECT_TRUE(Copy("from", "to"));
    EXPECT_EQ("new", Content("to"));
    EXPECT_EQ("old", std::string(std::istreambuf_iterator<char>(reader), {})) << "an open file keeps the old content";
    EXPECT_EQ((eNames{"from", "to"}), Tree(""));
}

TEST_F(CopiedFile, ReplacesWhatLinksLeadToAndNoLink) {
    for (const char* first : {"sub/second", "../elsewhere/../elsewhere/third"}) {
        fs::remove_all(At("elsewhere"));
        MakeFile("from", "new");
        MakeFile("real", "old");
        MakeFolder("elsewhere/sub");
        MakeLink(first, "elsewhere/first");
        MakeLink("../third", "elsewhere/sub/second");
        MakeLink(At("real").string(), "elsewhere/third");
        EXPECT_TRUE(Copy("from", "elsewhere/first"));
        EXPECT_EQ("new", Content("real"));
        EXPECT_EQ(first, fs::read_symlink(At("elsewhere/first")));
        EXPECT_EQ((eNames{"elsewhere/", "elsewhere/first", "elsewhere/sub/", "elsewhere/sub/second", "elsewhere/third",
                          "from", "real"}),
                  Tree(""));
    }
}

TEST_F(CopiedFile, MakesWhatALinkToNothingNames) {
    MakeFile("from", "new");
    MakeFolder("sub");
    MakeLink("sub/made", "link");
    EXPECT_TRUE(Copy("from", "link"));
    EXPECT_EQ("new", Content("sub/made"));
    EXPECT_TRUE(fs::is_symlink(At("link")));
}

TEST_F(CopiedFile, IsNotMadeWhereLinksLeadNowhere) {
    MakeFile("from", "new");
    MakeLink("missing/made", "into nowhere");
    MakeLink("round", "round");
    for (const char* to : {"into nowhere", "round", "missing/to", "from/to", "to/"})
        EXPECT_TRUE(Copy("from", to)) << to;
    EXPECT_EQ((eNames{"from", "into nowhere", "round"}), Tree(""));
}

TEST_F(CopiedFile, IsSeenUnderEveryNameOfTheTarget) {
    MakeFile("from", "new");
    fs::last_write_time(At("from"), fs::file_time_type::clock::now() - std::chrono::hours(1000));
    for (const char* old : {"older and longer", "o"}) {
        MakeFile("to", old);
        fs::create_hard_link(At("to"), At("other"));
        EXPECT_TRUE(Copy("from", "to"));
        EXPECT_EQ("new", Content("to"));
        EXPECT_EQ("new", Content("other"));
        EXPECT_EQ(fs::last_write_time(At("from")), fs::last_write_time(At("to")));
        fs::remove(At("other"));
    }
}

TEST_F(CopiedFile, MayHaveANameOf255Characters) {
    const std::string name(255, 'n');
    MakeFile("from", "new");
    EXPECT_TRUE(Copy("from", name));
    EXPECT_TRUE(Copy("from", name));
    EXPECT_EQ("new", Content(name));
    EXPECT_EQ((eNames{"from", name}), Tree(""));
}

// --- Stopped ---

TEST_F(CopiedFile, StoppedLeavesNoTargetAndNothingBesides) {
    MakeFile("from", std::string(9'000'000, 'x'));
    struct eRow {
        const char* target;
        eNames left;
    };
    const eRow rows[] = {{"new", {"from", "hard", "link", "other", "real"}},
                         {"real", {"from", "hard", "link", "other"}},
                         {"link", {"from", "hard", "link", "other"}},
                         {"hard", {"from", "link", "other", "real"}}};
    for (const char* function : {"", "copy_file_range"}) {
        for (const eRow& row : rows) {
            for (const char* name : {"real", "hard", "other", "link", "new"})
                fs::remove(At(name));
            MakeFile("real", "old");
            MakeFile("hard", "old");
            fs::create_hard_link(At("hard"), At("other"));
            MakeLink("real", "link");
            bool cancel = *function == 0;
            const eFault duringTheCopy(function, 2, [&] { cancel = true; });
            EXPECT_TRUE(IO::System::File::CopyEx(Named("from"), Named(row.target), &cancel));
            EXPECT_TRUE(cancel);
            EXPECT_EQ(row.left, Tree("")) << row.target;
        }
    }
}

TEST_F(CopiedFile, WithHolesStopsToo) {
    MakeFile("from", "x");
    fs::resize_file(At("from"), 9'000'000);
    bool cancel = true;
    EXPECT_TRUE(IO::System::File::CopyEx(Named("from"), Named("to"), &cancel));
    EXPECT_EQ((eNames{"from"}), Tree(""));
    cancel = false;
    EXPECT_TRUE(IO::System::File::CopyEx(Named("from"), Named("to"), &cancel));
    EXPECT_EQ(9'000'000u, Content("to").size());
}

// --- Other kinds of files ---

TEST_F(CopiedFile, GoesToAPipeThatIsRead) {
    const std::string content(300'000, 'x');
    MakeFile("from", content);
    ASSERT_EQ(0, ::mkfifo(At("pipe").c_str(), 0666));
    const int pipe = ::open(At("pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_EQ(0, ::fcntl(pipe, F_SETFL, 0));
    std::string arrived;
    std::thread reader([&] {
        std::string part(65536, 0);
        while (arrived.size() < content.size()) {
            const ssize_t count = ::read(pipe, part.data(), part.size());
            if (count > 0)
                arrived.append(part, 0, static_cast<std::size_t>(count));
            else
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    EXPECT_TRUE(Copy("from", "pipe"));
    reader.join();
    ::close(pipe);
    EXPECT_EQ(content, arrived);
    EXPECT_TRUE(fs::is_fifo(At("pipe")));
}

TEST_F(CopiedFile, ToAPipeWhoseReaderGoesAwayEndsTheCopyAlone) {
    MakeFile("from", std::string(1'000'000, 'x'));
    ASSERT_EQ(0, ::mkfifo(At("pipe").c_str(), 0666));
    const int pipe = ::open(At("pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    std::thread reader([pipe] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        ::close(pipe);
    });
    EXPECT_TRUE(Copy("from", "pipe"));
    reader.join();
    sigset_t pending;
    ASSERT_EQ(0, ::sigpending(&pending));
    EXPECT_EQ(0, sigismember(&pending, SIGPIPE));
}

TEST_F(CopiedFile, GoesToADevice) {
    MakeFile("from", "new");
    EXPECT_TRUE(IO::System::File::Copy(Named("from"), eFileName("/dev/null")));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    MakeLink("/dev/null", "link");
    bool cancel = true;
    EXPECT_TRUE(IO::System::File::CopyEx(Named("from"), Named("link"), &cancel));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(CopiedFile, ThatShowsNoSizeComesWhole) {
    int copies = 0;
    for (const char* name : {"/proc/filesystems", "/proc/kallsyms"}) {
        std::ifstream file(name);
        const std::string content(std::istreambuf_iterator<char>(file), {});
        if (content.empty())
            continue;
        ++copies;
        EXPECT_TRUE(IO::System::File::Copy(eFileName(name), Named("copy")));
        EXPECT_TRUE(content == Content("copy")) << name;
    }
    if (copies == 0)
        GTEST_SKIP() << "no such file may be read";
}

// --- Holes ---

TEST_F(CopiedFile, KeepsItsHoles) {
    constexpr off_t kSize = 16 << 20;
    struct eRow {
        const char* promise;
        std::vector<off_t> data;
    };
    for (const eRow& row : {eRow{"nothing but a hole", {}}, eRow{"at its end", {0}}, eRow{"at its start", {kSize - 4}},
                            eRow{"all over", {5, 1 << 20, 10 << 20, kSize - 4}}}) {
        SCOPED_TRACE(row.promise);
        fs::remove_all(At("from"));
        fs::remove_all(At("to"));
        MakeFile("from/file", "");
        const int file = ::open(At("from/file").c_str(), O_WRONLY | O_CLOEXEC);
        ASSERT_EQ(0, ::ftruncate(file, kSize));
        for (const off_t at : row.data)
            EXPECT_EQ(4, ::pwrite(file, "data", 4, at));
        ASSERT_EQ(0, ::fsync(file));
        ::close(file);
        const blkcnt_t blocks = Facts("from/file").st_blocks;
        if (blocks > kSize / 1024)
            GTEST_SKIP() << "the file system has no holes";
        MakeFile("to/file", "old");
        EXPECT_TRUE(Copy("from/file", "to/file"));
        EXPECT_EQ(kSize, Facts("to/file").st_size);
        EXPECT_LE(Facts("to/file").st_blocks, blocks + 64);
        EXPECT_TRUE(Content("from/file") == Content("to/file"));
        IO::System::Path::Copy(Named("from"), Named("tree"));
        EXPECT_LE(Facts("tree/file").st_blocks, blocks + 64);
        EXPECT_TRUE(Content("from/file") == Content("tree/file"));
    }
}

TEST_F(CopiedFile, IsWholeWhereTheSystemDoesNotTellOfHoles) {
    if (!eFault::ReachesLibraries())
        GTEST_SKIP() << "the libraries' calls do not pass through the test program";
    MakeFile("from", "");
    fs::resize_file(At("from"), 3 << 20);
    std::ofstream(At("from"), std::ios::in).seekp(1 << 20) << "data";
    for (const int question : {1, 2, 5}) {
        fs::remove(At("to"));
        const eFault fault("lseek", EINVAL, question);
        EXPECT_TRUE(Copy("from", "to"));
        EXPECT_TRUE(fault.Struck());
        EXPECT_TRUE(Content("from") == Content("to")) << question;
    }
}
