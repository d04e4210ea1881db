// SPDX-License-Identifier: BSL-1.0
// The temporary file beside the target: what stands at its name, what other programs do to it, and what the system
// refuses.
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <qzl_io/streams.h>

#include "streams/platform/posix/saved_file.h"
#include "support/platform/posix/as_nobody.h"
#include "support/platform/posix/fault.h"
#include "support/platform/posix/open_descriptors.h"

namespace fs = std::filesystem;

namespace {

constexpr char kBeside[] = ".file.saving";

class SavedBeside : public SavedFile {
protected:
    // Tells why the document was not saved; empty if it was.
    std::string Refusal(const std::string& name, IO::eSaveEnd end = IO::eSaveEnd::OnDisk) const {
        IO::eSaveFile file(Name(name), end);
        file << 'n';
        return file.Commit() ? "" : file.Failure().text;
    }

    void Remove(const char* name) const { fs::remove(folder.Path() / name); }
};

class BesideFault : public SavedBeside {
protected:
    void SetUp() override {
        if (!eFault::ReachesLibraries())
            GTEST_SKIP() << "the libraries' calls do not pass through the test program";
    }
};

// What an attempt to save "file" leaves there, and whether that is still the same file.
struct eResult {
    bool saved;
    bool inPlace;
    std::string kept;

    bool operator==(const eResult&) const = default;
};

void PrintTo(const eResult& result, std::ostream* out) {
    *out << (result.saved ? "saved" : "not saved") << (result.inPlace ? " in place" : "") << ", kept \"" << result.kept
         << '"';
}

} // namespace

// --- Its name ---

TEST_F(SavedBeside, FindsAFreeNameAmongThoseOfOthers) {
    fs::create_directory(folder.Path() / kBeside);
    ASSERT_EQ(0, ::mkfifo(folder.Name(".file.saving1").c_str(), 0666));
    fs::create_symlink("missing", folder.Path() / ".file.saving2");
    const std::set<std::string> others = Entries();
    EXPECT_EQ("", Refusal("file"));
    Remove("file");
    EXPECT_EQ(others, Entries());
}

TEST_F(SavedBeside, WithoutAFreeNameNothingIsSaved) {
    fs::create_directory(folder.Path() / kBeside);
    for (int number = 1; number < 100; ++number)
        fs::create_directory(folder.Name(kBeside + std::to_string(number)));
    EXPECT_NE(std::string::npos, Refusal("file").find("cannot be saved: File exists"));
    EXPECT_FALSE(folder.Exists("file"));
    Remove(".file.saving99");
    EXPECT_EQ("", Refusal("file"));
}

TEST_F(SavedBeside, ALeftOverThatOthersLockIsTheirs) {
    folder.Write(kBeside, "theirs");
    const int other = ::open(folder.Name(kBeside).c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(0, ::flock(other, LOCK_EX));
    EXPECT_EQ("", Refusal("file"));
    EXPECT_EQ("theirs", folder.Read(kBeside));
    ::close(other);
    EXPECT_EQ("", Refusal("file"));
    EXPECT_FALSE(folder.Exists(kBeside));
}

// Each row is what happens right before the first call of a function.
TEST_F(BesideFault, OtherProgramsAreSurvived) {
    const struct {
        const char* promise;
        const char* function;
        bool leftOver;
        std::function<void()> happens;
    } rows[] = {
        {"a new file is removed as a leftover", "flock", false, [this] { Remove(kBeside); }},
        {"a new file is exchanged for another", "flock", false,
         [this] {
             Remove(kBeside);
             folder.Write(kBeside, "theirs");
         }},
        {"a leftover is removed by somebody else", "flock", true, [this] { Remove(kBeside); }},
        {"a leftover becomes a folder", "flock", true,
         [this] {
             Remove(kBeside);
             fs::create_directory(folder.Path() / kBeside);
         }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.promise);
        folder.Write("file", "old");
        if (row.leftOver)
            folder.Write(kBeside, "half");
        {
            const int before = OpenDescriptors();
            const eFault fault(row.function, 1, row.happens);
            EXPECT_EQ("", Refusal("file"));
            EXPECT_TRUE(fault.Struck());
            EXPECT_EQ(before, OpenDescriptors());
        }
        EXPECT_EQ("n", folder.Read("file"));
        fs::remove(folder.Path() / kBeside);
        EXPECT_EQ((std::set<std::string>{"file"}), Entries());
    }
}

TEST_F(BesideFault, ALeftOverThatCannotBeRemovedIsPassedOver) {
    for (const char* const function : {"openat", "fstat", "fstatat", "flock", "unlinkat"}) {
        const int failures = FailEachCall(function, EACCES, [this] {
            folder.Write(kBeside, "half");
            const std::string refusal = Refusal("file");
            EXPECT_EQ(refusal.empty(), folder.Exists("file")) << refusal;
            Remove(kBeside);
            Remove("file");
        });
        EXPECT_LT(0, failures) << function;
        EXPECT_TRUE(Entries().empty()) << function;
    }
}

TEST_F(BesideFault, AFileSystemWithoutLocksIsNoObstacle) {
    for (const int error : {ENOTSUP, ENOSYS, ENOLCK}) {
        const eFault fault("flock", error, 1, eFault::kAlways);
        EXPECT_EQ("", Refusal("file"));
        EXPECT_EQ((std::set<std::string>{"file"}), Entries());
    }
}

// --- Taking the target's place ---

TEST_F(BesideFault, ATargetThatMayOnlyBeWrittenIsWrittenInPlaceAndAnyOtherIsLeftAlone) {
    const struct {
        int error;
        eResult result;
    } rows[] = {
        {EACCES, {true, true, ""}},   {EPERM, {true, true, ""}}, {EBUSY, {true, true, ""}},
        {EXDEV, {true, true, ""}},    {EIO, {false, true, "n"}}, {EROFS, {false, true, "n"}},
        {ENOSPC, {false, true, "n"}},
    };
    for (const auto& row : rows)
        for (const auto end : {IO::eSaveEnd::OnDisk, IO::eSaveEnd::InMemory}) {
            folder.Write("file", "old");
            const ino_t number = Facts("file").st_ino;
            const eFault fault("renameat", row.error);
            const std::string refusal = Refusal("file", end);
            const std::string kept = folder.Exists("file.unsaved") ? folder.Read("file.unsaved") : "";
            EXPECT_EQ(row.result, (eResult{refusal.empty(), number == Facts("file").st_ino, kept})) << row.error;
            EXPECT_EQ(row.result.saved ? "n" : "old", folder.Read("file"));
            Remove("file.unsaved");
        }
}

TEST_F(BesideFault, ADocumentForAMissingTargetIsKeptWhateverTheSystemSays) {
    for (const int error : {EACCES, EPERM, EBUSY, EXDEV, EIO}) {
        const eFault fault("renameat", error);
        EXPECT_NE(std::string::npos, Refusal("file").find("/file.unsaved\".")) << error;
        EXPECT_EQ((std::set<std::string>{"file.unsaved"}), Entries());
        Remove("file.unsaved");
    }
}

TEST_F(BesideFault, ADocumentIsNamedWithoutItsFolderWhereTheSystemDoesNotTellIt) {
    fs::create_hard_link(folder.Write("file", "old"), folder.Name("other"));
    const eFault noFolder("readlink", EACCES, 1, eFault::kAlways);
    IO::eSaveFile file(Name("file"));
    file << 'n';
    {
        const eFault fault("ftruncate", EIO);
        EXPECT_FALSE(file.Commit());
    }
    EXPECT_NE(std::string::npos, file.Failure().text.find("The document is in \"")) << file.Failure().text;
}

// A folder with a mask that lets nobody list it is flushed with its whole file system.
TEST_F(SavedBeside, AFolderThatMayBeEnteredButNotReadIsSavedTo) {
    folder.Write("closed/file", "old");
    ::chmod(folder.Name("closed/file").c_str(), 0666);
    ::chmod(folder.Name("closed").c_str(), 0333);
    ::chmod(folder.Path().c_str(), 0777);
    EXPECT_EQ(kHeldInChild, AsNobody([this] {
                  return Refusal("closed/new").empty() && Refusal("closed/file").empty() ? kHeldInChild : 1;
              }));
    ::chmod(folder.Name("closed").c_str(), 0755);
    EXPECT_EQ("n", folder.Read("closed/new"));
    EXPECT_EQ("n", folder.Read("closed/file"));
}

TEST_F(BesideFault, AFolderThatCannotBeFlushedByItselfIsNoObstacle) {
    const eFault fault("fsync", EINVAL, 2);
    EXPECT_EQ("", Refusal("file"));
    EXPECT_TRUE(fault.Struck());
}

TEST_F(BesideFault, AnOwnerOrAGroupThatANewFileCannotHaveMakesTheTargetWrittenInPlace) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can make a file of somebody else's";
    for (const auto& [user, group] : {std::pair<uid_t, gid_t>{12, ::getegid()}, {::geteuid(), 34}}) {
        folder.Write("file", "old");
        ASSERT_EQ(0, ::chown(folder.Name("file").c_str(), user, group));
        const ino_t number = Facts("file").st_ino;
        const eFault fault("fchown", EPERM);
        EXPECT_EQ("", Refusal("file"));
        EXPECT_EQ(number, Facts("file").st_ino);
        EXPECT_EQ(user, Facts("file").st_uid);
        EXPECT_EQ(group, Facts("file").st_gid);
        EXPECT_EQ("n", folder.Read("file"));
        Remove("file");
    }
}

// --- The target ---

TEST_F(SavedBeside, APipeMayGetItsReaderWhileTheDocumentIsWritten) {
    ASSERT_EQ(0, ::mkfifo(folder.Name("pipe").c_str(), 0666));
    for (const auto end : {IO::eSaveEnd::OnDisk, IO::eSaveEnd::InMemory}) {
        IO::eSaveFile file(Name("pipe"), end);
        const int reader = ::open(folder.Name("pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        file << 'n';
        EXPECT_TRUE(file.Commit()) << file.Failure().text;
        char bytes[8] = {};
        EXPECT_EQ(1, ::read(reader, bytes, sizeof bytes));
        EXPECT_STREQ("n", bytes);
        ::close(reader);
    }
}

TEST_F(BesideFault, ADeviceThatCannotBeFlushedIsWrittenAndOneThatFailsIsReported) {
    const eFileName device("/dev/null");
    const auto saved = [&device](const char* function, int error, int call) {
        const eFault fault(function, error, call);
        IO::eSaveFile file(device);
        file << 'n';
        const bool done = file.Commit();
        EXPECT_TRUE(fault.Struck()) << function;
        EXPECT_EQ(done, !file.Failure());
        return done;
    };
    EXPECT_TRUE(saved("fsync", EINVAL, 1));
    EXPECT_TRUE(saved("fsync", EROFS, 1));
    EXPECT_FALSE(saved("fsync", EIO, 1));
    EXPECT_FALSE(saved("fstat", EIO, 1));
    EXPECT_FALSE(saved("openat", EIO, 1));
    EXPECT_FALSE(saved("openat", EIO, 2));
    // The first file that is closed is the one by which the target was looked at.
    EXPECT_FALSE(saved("close", EIO, 2));
}

// Between the look at the target and the look at its place.
TEST_F(BesideFault, ATargetThatMovesAwayMeanwhileKeepsItsContent) {
    folder.Write("file", "old");
    const eFault fault("readlinkat", 1, [this] { fs::rename(folder.Name("file"), folder.Name("moved")); });
    EXPECT_EQ("", Refusal("file"));
    EXPECT_EQ("old", folder.Read("moved"));
    EXPECT_EQ("n", folder.Read("file"));
    EXPECT_EQ((std::set<std::string>{"file", "moved"}), Entries());
}

TEST_F(BesideFault, ATargetThatIsNeverFoundAtItsPlaceIsRefused) {
    folder.Write("file", "old");
    const eFault fault("fstatat", EACCES, 1, eFault::kAlways);
    EXPECT_NE(std::string::npos, Refusal("file").find("cannot be saved: Stale file handle"));
    EXPECT_EQ("old", folder.Read("file"));
    EXPECT_EQ((std::set<std::string>{"file"}), Entries());
}

TEST_F(BesideFault, ANameThatBecomesALoopOfLinksMeanwhileIsRefused) {
    const eFault fault("readlinkat", 1, [this] { fs::create_symlink("file", folder.Name("file")); });
    EXPECT_NE(std::string::npos, Refusal("file").find("cannot be saved: Too many levels of symbolic links"));
}

// Another program holds a lease on the file, or seems to.
TEST_F(BesideFault, OnlyAFileIsWaitedForWhenItIsInUse) {
    fs::create_directory(folder.Path() / "sub");
    folder.Write("file", "old");
    const auto refusal = [this](const char* name) {
        const eFault fault("openat", EWOULDBLOCK);
        return Refusal(name);
    };
    EXPECT_EQ("", refusal("file"));
    EXPECT_NE(std::string::npos, refusal("sub").find("cannot be saved: Resource temporarily unavailable"));
    EXPECT_EQ("", refusal("missing"));
}
