// SPDX-License-Identifier: BSL-1.0
#include <cerrno>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include "services/real_tree.h"
#include "support/platform/posix/as_nobody.h"
#include "support/platform/posix/fault.h"

// What permissions refuse, told by the operations on trees. The work runs in a process that is subject to them, and
// returns the number of the first promise that is not kept.

namespace {

namespace fs = std::filesystem;
namespace Path = IO::System::Path;
using IO::System::eTreeResult;
using IO::System::eTreeStep;

class TreeFailures : public eRealTree<eNarrow> {
protected:
    TreeFailures() { Allow("", 0777); }

    void Allow(const std::string& name, mode_t mode) const { ASSERT_EQ(0, ::chmod(At(name).c_str(), mode)); }
};

bool Is(const eTreeResult& result, std::size_t at, const eFileName& name, eTreeStep step, int reason) {
    return result.failures.size() > at && result.failures[at].name == name && result.failures[at].step == step &&
           result.failures[at].reason.number == reason;
}

} // namespace

TEST_F(TreeFailures, OfADeletionAreTheEntriesThatStayAndNotTheFoldersAboveThem) {
    MakeFile("root/a/kept");
    MakeFile("root/b/gone");
    MakeFile("root/sealed/file");
    Allow("root", 0777);
    Allow("root/a", 0555);
    Allow("root/b", 0777);
    Allow("root/sealed", 0);
    const int broken = AsNobody([&] {
        const eTreeResult result = Path::DeleteTree(Named("root"));
        if (result || result.failed != 2 || result.cancelled || result.done.files != 1 || result.done.folders != 1)
            return 1;
        const bool keptFirst = result.failures[0].name == Named("root/a/kept");
        if (!Is(result, keptFirst ? 0 : 1, Named("root/a/kept"), eTreeStep::Remove, EACCES))
            return 2;
        return Is(result, keptFirst ? 1 : 0, Named("root/sealed"), eTreeStep::Open, EACCES) ? 0 : 3;
    });
    Allow("root/sealed", 0777);
    EXPECT_EQ(0, broken);
    EXPECT_EQ((eNames{"a/", "a/kept", "sealed/", "sealed/file"}), Tree("root"));
}

TEST_F(TreeFailures, OfACopyAreTheSourcesEntriesAndWhatStaysInTheTarget) {
    MakeFile("from/open", "open");
    MakeFile("from/secret", "secret");
    MakeFile("from/sealed/file");
    MakeFile("to/locked/old");
    Allow("from/secret", 0);
    Allow("from/sealed", 0);
    Allow("to", 0777);
    Allow("to/locked", 0555);
    const int broken = AsNobody([&] {
        const eTreeResult result = Path::CopyTree(Named("from"), Named("to"));
        if (result.failed != 3 || result.done.files != 1 || result.done.bytes != 4)
            return 1;
        if (!Is(result, 0, Named("to/locked/old"), eTreeStep::Remove, EACCES))
            return 2;
        const bool fileFirst = result.failures[1].step == eTreeStep::Copy;
        if (!Is(result, fileFirst ? 1 : 2, Named("from/secret"), eTreeStep::Copy, EACCES))
            return 3;
        return Is(result, fileFirst ? 2 : 1, Named("from/sealed"), eTreeStep::Open, EACCES) ? 0 : 4;
    });
    Allow("from/sealed", 0777);
    EXPECT_EQ(0, broken);
    EXPECT_EQ("open", Content("to/open"));
}

TEST_F(TreeFailures, OfAPurgeAreEmptyFoldersThatStay) {
    MakeFolder("root/locked/empty");
    MakeFile("root/full/file");
    Allow("root", 0777);
    Allow("root/locked", 0555);
    EXPECT_EQ(0, AsNobody([&] {
                  const eTreeResult result = Path::PurgeTree(Named("root"));
                  if (result.failed != 1 || result.done.folders != 0)
                      return 1;
                  return Is(result, 0, Named("root/locked/empty"), eTreeStep::Remove, EACCES) ? 0 : 2;
              }));
}

TEST_F(TreeFailures, PipesAndSocketsThatACopyLeavesOutAreTold) {
    MakeFolder("from");
    ASSERT_EQ(0, ::mkfifo(At("from/pipe").c_str(), 0600));
    const eTreeResult result = Path::CopyTree(Named("from"), Named("to"));
    EXPECT_EQ(1u, result.failed);
    EXPECT_TRUE(Is(result, 0, Named("from/pipe"), eTreeStep::Copy, ENOTSUP));
    EXPECT_EQ("The file could not be copied: Operation not supported.", result.failures.at(0).reason.text);
}

TEST_F(TreeFailures, AreCountedWithoutEndAndKeptUpToALimit) {
    constexpr unsigned long long kMany = eTreeResult::kMostFailures + 200;
    for (unsigned long long number = 0; number < kMany; ++number)
        MakeFile("root/file" + std::to_string(number), "");
    Allow("root", 0555);
    EXPECT_EQ(0, AsNobody([&] {
                  const eTreeResult result = Path::DeleteTree(Named("root"));
                  if (result.failed != kMany)
                      return 1;
                  return result.failures.size() == eTreeResult::kMostFailures ? 0 : 2;
              }));
}

TEST_F(TreeFailures, WithLongNamesAreKeptUpToALimitOfCharacters) {
    constexpr unsigned long long kMany = 400;
    std::string folder = "root";
    for (int level = 0; level < 14; ++level)
        folder += "/" + std::string(240, 'n');
    for (unsigned long long number = 0; number < kMany; ++number)
        MakeFile(folder + "/" + std::to_string(number), "");
    Allow(folder, 0555);
    EXPECT_EQ(0, AsNobody([&] {
                  const eTreeResult result = Path::DeleteTree(Named("root"));
                  unsigned long long characters = 0;
                  for (const auto& failure : result.failures)
                      characters += failure.name.size();
                  if (result.failed != kMany || result.failures.size() < 100)
                      return 1;
                  return characters <= eTreeResult::kMostCharacters && result.failures.size() < kMany ? 0 : 2;
              }));
}

TEST_F(TreeFailures, NameEntriesWithBytesThatAreNoCharacters) {
    MakeFile("root/a\xff", "");
    Allow("root", 0555);
    EXPECT_EQ(0, AsNobody([&] {
                  const eTreeResult narrow = Path::DeleteTree(Named("root"));
                  const auto wide = IO::System::PathW::DeleteTree(eFileNameW(eWide::OfPath(At("root"))));
                  if (narrow.failures.size() != 1 || narrow.failures[0].name != Named("root/a\xff"))
                      return 1;
                  return wide.failures.size() == 1 && wide.failures[0].name.str().ends_with(L"/a\xdcff") ? 0 : 2;
              }));
}

TEST_F(TreeFailures, OfARecursiveSearchAreCountedAsFoldersThatWereNotRead) {
    MakeFile("root/open/file");
    MakeFile("root/sealed/file");
    Allow("root/sealed", 0);
    const int broken = AsNobody([&] {
        IO::eTreeSearch search(Named("root"), "*");
        int entries = 0;
        for (; search.Valid(); search.Next())
            ++entries;
        return entries == 3 && search.Unread() == 1 ? 0 : 1;
    });
    Allow("root/sealed", 0777);
    EXPECT_EQ(0, broken);
}

TEST_F(TreeFailures, BeyondTheFirstThousandAreCounted) {
    if (!eFault::ReachesLibraries())
        GTEST_SKIP() << "the libraries' calls do not pass through the test program";
    for (int file = 0; file <= 1000; ++file)
        MakeFile("root/" + std::to_string(file));
    const eFault fault("unlinkat", EIO, 1, eFault::kAlways);
    const eTreeResult result = Path::DeleteTree(Named("root"));
    EXPECT_EQ(result.failed, 1001u);
    EXPECT_EQ(result.failures.size(), 1000u);
}

TEST_F(TreeFailures, OfASearchAreTheFoldersThatTheSystemDoesNotOpen) {
    if (!eFault::ReachesLibraries())
        GTEST_SKIP() << "the libraries' calls do not pass through the test program";
    MakeFile("root/a/file");
    MakeFile("root/b/file");
    IO::eTreeSearch search(Named("root"), "*");
    const eFault fault("openat", EIO, 1, eFault::kAlways);
    int entries = 0;
    for (; search.Valid(); search.Next())
        ++entries;
    EXPECT_EQ(entries, 2);
    EXPECT_EQ(search.Unread(), 2u);
}
