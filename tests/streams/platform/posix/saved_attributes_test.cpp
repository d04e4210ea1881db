// SPDX-License-Identifier: BSL-1.0
// Saving files that have more than an owner and a mode: attributes, and lists of who has access.
#include <gtest/gtest.h>

#include <cerrno>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <sys/stat.h>
#include <sys/xattr.h>

#include "streams/platform/posix/saved_file.h"
#include "support/platform/posix/fault.h"

namespace {

using eAttributes = std::map<std::string, std::string>;

constexpr char kAccessList[] = "system.posix_acl_access";
constexpr char kListForNewFiles[] = "system.posix_acl_default";

// Lets the user 12 read what belongs to somebody else: the version of the form, then the kind, the rights and the
// number of each entry.
std::string ListWithReader() {
    std::string list("\2\0\0\0", 4);
    const std::string nobody(4, '\xFF');
    const auto add = [&](char kind, char rights, const std::string& number) {
        list += std::string{kind, '\0', rights, '\0'} + number;
    };
    add(0x01, 6, nobody);
    add(0x02, 4, std::string("\x0C\0\0\0", 4));
    add(0x04, 0, nobody);
    add(0x10, 4, nobody);
    add(0x20, 0, nobody);
    return list;
}

class SavedAttributes : public SavedFile {
protected:
    // False if the file system does not keep the attribute, or if this process may not set it.
    bool Set(const std::string& name, const char* attribute, std::string_view value) const {
        return ::setxattr(folder.Name(name).c_str(), attribute, value.data(), value.size(), 0) == 0;
    }

    eAttributes All(const std::string& name) const {
        const std::string file = folder.Name(name);
        std::vector<char> names(4096), value(4096);
        const ssize_t size = ::listxattr(file.c_str(), names.data(), names.size());
        eAttributes all;
        for (const char* at = names.data(); at < names.data() + size; at += std::string_view(at).size() + 1) {
            const ssize_t length = ::getxattr(file.c_str(), at, value.data(), value.size());
            EXPECT_LE(0, length) << at;
            all[at] = std::string(value.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
        }
        return all;
    }
};

class AttributeFault : public SavedAttributes {
protected:
    void SetUp() override {
        if (!eFault::ReachesLibraries())
            GTEST_SKIP() << "the libraries' calls do not pass through the test program";
    }

    // Saves "file" once with each call of the function failing: all but the last save, which is without a fault, write
    // to the same file.
    void ExpectWrittenInPlace(const char* function) const {
        std::vector<bool> inPlace;
        const int failures = FailEachCall(function, EIO, [&] {
            const eAttributes before = All("file");
            const ino_t number = Facts("file").st_ino;
            EXPECT_TRUE(Save("file", "new"));
            EXPECT_EQ("new", folder.Read("file"));
            EXPECT_EQ((std::set<std::string>{"file"}), Entries());
            EXPECT_EQ(before, All("file"));
            inPlace.push_back(number == Facts("file").st_ino);
        });
        ASSERT_LT(0, failures) << function;
        std::vector<bool> expected(static_cast<std::size_t>(failures), true);
        expected.push_back(false);
        EXPECT_EQ(expected, inPlace) << function;
    }
};

} // namespace

TEST_F(SavedAttributes, OfTheTargetStay) {
    folder.Write("file", "old");
    if (!Set("file", "user.colour", "red") || !Set("file", "user.empty", ""))
        GTEST_SKIP() << "the file system keeps no attributes";
    const eAttributes before = All("file");
    ASSERT_TRUE(Save("file", "new"));
    EXPECT_EQ(before, All("file"));
    EXPECT_EQ("new", folder.Read("file"));
}

TEST_F(SavedAttributes, ThatSayWhoHasAccessStay) {
    folder.Write("file", "old");
    if (!Set("file", kAccessList, ListWithReader()))
        GTEST_SKIP() << "the file system keeps no access lists";
    const mode_t mode = Facts("file").st_mode;
    ASSERT_TRUE(Save("file", "new"));
    EXPECT_EQ(ListWithReader(), All("file")[kAccessList]);
    EXPECT_EQ(mode, Facts("file").st_mode);
    EXPECT_EQ("new", folder.Read("file"));
}

TEST_F(SavedAttributes, ThatVouchForTheOldContentGo) {
    // The second revision of the form, with all programs' rights left out.
    const std::string noCapability = std::string("\1\0\0\2", 4) + std::string(16, '\0');
    const eAttributes vouching = {{"security.capability", noCapability}, {"security.ima", "x"}, {"security.evm", "x"}};
    bool tried = false;
    for (const auto& [attribute, value] : vouching) {
        SCOPED_TRACE(attribute);
        folder.Write("file", "old");
        if (!Set("file", attribute.c_str(), value))
            continue;
        tried = true;
        ASSERT_TRUE(Save("file", "new"));
        EXPECT_EQ(0u, All("file").count(attribute));
    }
    if (!tried)
        GTEST_SKIP() << "only root sets such attributes, where the file system keeps them";
}

TEST_F(SavedAttributes, AListForNewFilesDoesNotChangeWhoHasAccessToTheTarget) {
    folder.Write("file", "old");
    if (!Set("", kListForNewFiles, ListWithReader()))
        GTEST_SKIP() << "the file system keeps no access lists";
    const mode_t mode = Facts("file").st_mode;
    ASSERT_TRUE(Save("file", "new"));
    EXPECT_EQ(0u, All("file").count(kAccessList));
    EXPECT_EQ(mode, Facts("file").st_mode);
}

TEST_F(AttributeFault, AnAttributeThatCannotBeCopiedIsLeftOut) {
    for (const char* const function : {"fgetxattr", "fsetxattr"}) {
        folder.Write("file", "old");
        if (!Set("file", "user.colour", "red"))
            GTEST_SKIP() << "the file system keeps no attributes";
        const eFault fault(function, EPERM, 1, eFault::kAlways);
        ASSERT_TRUE(Save("file", "new"));
        EXPECT_TRUE(fault.Struck());
        EXPECT_EQ(0u, All("file").count("user.colour"));
        EXPECT_EQ("new", folder.Read("file"));
    }
}

TEST_F(AttributeFault, AFileWhoseAccessCannotBeCopiedIsWrittenInPlace) {
    folder.Write("file", "old");
    if (!Set("file", kAccessList, ListWithReader()))
        GTEST_SKIP() << "the file system keeps no access lists";
    for (const char* const function : {"flistxattr", "fgetxattr", "fsetxattr"})
        ExpectWrittenInPlace(function);
    ASSERT_TRUE(Set("", kListForNewFiles, ListWithReader()));
    ExpectWrittenInPlace("fremovexattr");
    EXPECT_EQ(ListWithReader(), All("file")[kAccessList]);
}

TEST_F(AttributeFault, AFileSystemWithoutAttributesIsNoObstacle) {
    folder.Write("file", "old");
    for (const int error : {ENOTSUP, ENOSYS}) {
        const eFault fault("flistxattr", error, 1, eFault::kAlways);
        const ino_t number = Facts("file").st_ino;
        ASSERT_TRUE(Save("file", "new"));
        EXPECT_TRUE(fault.Struck());
        EXPECT_NE(number, Facts("file").st_ino);
    }
}
