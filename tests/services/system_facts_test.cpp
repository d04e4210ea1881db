// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <thread>

#include <gtest/gtest.h>

#include "machine/windows_name.h"
#include "platform/pure/assignments.h"
#include "real_tree.h"

namespace {

using IO::System::AssignedTo;
using IO::System::WindowsName;

} // namespace

TEST(WindowsName, FollowsTheBuildWhereVersionsAreTheSame) {
    struct eRow {
        unsigned major, minor, build;
        std::string_view workstation, server;
    };
    for (const eRow& row : {eRow{10, 0, 10240, "Windows 10", "Windows Server 2016"},
                            {10, 0, 17762, "Windows 10", "Windows Server 2016"},
                            {10, 0, 17763, "Windows 10", "Windows Server 2019"},
                            {10, 0, 20348, "Windows 10", "Windows Server 2022"},
                            {10, 0, 21999, "Windows 10", "Windows Server 2022"},
                            {10, 0, 22000, "Windows 11", "Windows Server 2022"},
                            {10, 0, 26100, "Windows 11", "Windows Server 2025"},
                            {6, 3, 9600, "Windows 8.1", "Windows Server 2012 R2"},
                            {6, 2, 9200, "Windows 8", "Windows Server 2012"},
                            {6, 1, 7601, "Windows 7", "Windows Server 2008 R2"},
                            {6, 0, 6002, "Windows Vista", "Windows Server 2008"},
                            {5, 1, 2600, "Windows", "Windows"},
                            {11, 0, 30000, "Windows", "Windows"}}) {
        EXPECT_EQ(row.workstation, WindowsName(row.major, row.minor, row.build, false)) << row.build;
        EXPECT_EQ(row.server, WindowsName(row.major, row.minor, row.build, true)) << row.build;
    }
}

TEST(Assignments, AreReadAsTheShellReadsThem) {
    struct eRow {
        std::string_view file, value;
    };
    for (const eRow& row : {eRow{"N=plain", "plain"},
                            {"N=\"two words\"\n", "two words"},
                            {"N='two words'\r\n", "two words"},
                            {"A=1\n  N=2\nB=3", "2"},
                            {"N=1\nN=2\n", "2"},
                            {"#N=1\n", ""},
                            {"MN=1\nNM=2\nN 3", ""},
                            {"N=a\\ b c", "a b"},
                            {"N=\"a\\\"b\\\\c\\$d\"", "a\"b\\c$d"},
                            {"N='a\\b'", "a\\b"},
                            {"N=a\"b c\"'d e'f", "ab cd ef"},
                            {"N=\"open", "open"},
                            {"N=end\\", "end\\"},
                            {"N=", ""},
                            {"N", ""},
                            {"", ""}})
        EXPECT_EQ(row.value, AssignedTo("N", row.file)) << row.file;
}

TEST(SystemFacts, TellOfThisSystem) {
    const IO::System::eSystemFacts facts = IO::System::SystemFacts("test");
    if (kHasDrives) {
        EXPECT_TRUE(facts.name.starts_with("Windows")) << facts.name;
        EXPECT_GE(facts.build, 7600u);
        EXPECT_TRUE(facts.version.ends_with("." + std::to_string(facts.build))) << facts.version;
        EXPECT_EQ("", facts.distribution);
        EXPECT_EQ(36u, facts.machineId.size());
    } else {
        EXPECT_EQ("Linux", facts.name);
        EXPECT_EQ(0u, facts.build);
        EXPECT_NE("", facts.version);
        EXPECT_NE("", facts.distribution);
    }
    EXPECT_NE("", facts.architecture);
    EXPECT_NE("", facts.machineArchitecture);
    EXPECT_GE(facts.processors, std::thread::hardware_concurrency());
    EXPECT_GE(facts.memory, 1ull << 28);
    EXPECT_LE(facts.memory, 1ull << 50);
    const auto isIdDigit = [](char letter) {
        return (letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'f') || letter == '-';
    };
    EXPECT_TRUE(std::all_of(facts.machineId.begin(), facts.machineId.end(), isIdDigit)) << facts.machineId;
}

TEST(SystemFacts, HaveTheSameIdForTheSameApplicationEachTime) {
    EXPECT_EQ(IO::System::SystemFacts("a").machineId, IO::System::SystemFacts("a").machineId);
}

namespace {

template <class Width>
class UserFolders : public eRealTree<Width> {
protected:
    static auto Of(IO::System::eUserFolder folder) {
        if constexpr (sizeof(typename Width::Char) == 1)
            return IO::System::UserFolder(folder);
        else
            return IO::System::UserFolderW(folder);
    }
    static bool GetSpace(const typename Width::Name& name, IO::System::eSpace* space) {
        if constexpr (sizeof(typename Width::Char) == 1)
            return IO::System::GetSpace(name, space);
        else
            return IO::System::GetSpaceW(name, space);
    }
};
TYPED_TEST_SUITE(UserFolders, eWidths, eWidthNames);

} // namespace

TYPED_TEST(UserFolders, AreAbsoluteFoldersWithForwardSlashes) {
    using IO::System::eUserFolder;
    for (const auto folder : {eUserFolder::Settings, eUserFolder::Data, eUserFolder::Cache, eUserFolder::Temporary,
                              eUserFolder::Documents}) {
        const auto name = this->Of(folder);
        EXPECT_TRUE(name.IsPath());
        EXPECT_TRUE(kHasDrives ? name.size() > 3 && name.str()[1] == ':' && name.str()[2] == '/' : name.IsRoot());
        EXPECT_FALSE(name.GetUnpath().IsPath());
    }
    EXPECT_TRUE(TypeParam::MayAccess(this->Of(eUserFolder::Temporary), IO::System::File::Write));
    EXPECT_TRUE(this->Of(static_cast<eUserFolder>(99)).empty());
}

TYPED_TEST(UserFolders, TheRoomOfAFileAndOfItsFolderIsThatOfTheirVolume) {
    this->MakeFile("folder/file");
    IO::System::eSpace ofFile, ofFolder;
    ASSERT_TRUE(this->GetSpace(this->Named("folder/file"), &ofFile));
    ASSERT_TRUE(this->GetSpace(this->Folder("folder"), &ofFolder));
    EXPECT_EQ(ofFile.total, ofFolder.total);
    EXPECT_GT(ofFile.total, 0u);
    EXPECT_LE(ofFile.free, ofFile.total);
}

TYPED_TEST(UserFolders, TheRoomOfWhatDoesNotExistIsUnknown) {
    IO::System::eSpace space{1, 2};
    EXPECT_FALSE(this->GetSpace(this->Named("missing"), &space));
    EXPECT_FALSE(this->GetSpace(typename TypeParam::Name(), &space));
    EXPECT_EQ(1u, space.free);
    EXPECT_EQ(2u, space.total);
}
