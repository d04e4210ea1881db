// SPDX-License-Identifier: BSL-1.0
// A document is saved while everything that it takes fails: the file is the old one or the new one, or the failure says
// where the document is.
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include <qzl_io/streams.h>

#include "faults/kept_document.h"
#include "faults/torture.h"
#include "faults/work_folder.h"

namespace {

// Longer than what texts hold without an allocation.
const std::string kFile = "the document that is to be saved";
const std::string kOther = "another name of that document";
const std::string kOld = "old";
const std::string kNew(200'000, 'n');

enum class eTarget { Missing, Existing, Linked, WithTwoNames };

template <class Name, eTarget target>
class eSaving : public eScenario {
public:
    eSaving() {
        if constexpr (target != eTarget::Missing)
            folder.Write(kFile, kOld);
        if constexpr (target == eTarget::WithTwoNames)
            std::filesystem::create_hard_link(folder.Path() / kFile, folder.Path() / kOther);
        if constexpr (target == eTarget::Linked) {
            std::filesystem::rename(folder.Path() / kFile, folder.Path() / kOther);
            std::filesystem::create_symlink(kOther, folder.Path() / kFile);
        }
        if constexpr (std::is_same_v<Name, eFileName>)
            name = folder.Name(kFile);
        else
            name = folder.NameW(std::wstring(kFile.begin(), kFile.end()));
    }

    bool Run() override {
        IO::eSaveFile file(name);
        file.Write(kNew.data(), kNew.size());
        const bool saved = file.Commit();
        reasonGiven = saved == !file.Failure();
        failure = file.Failure().text;
        return saved;
    }

    void Look(const eAftermath& after) override {
        EXPECT_TRUE(reasonGiven) << "a failure without a reason, or a reason without a failure";
        const std::string real = target == eTarget::Linked ? kOther : kFile;
        const eKeptDocuments left(folder, real, kNew, failure, after);
        std::set<std::string> expected{kFile};
        if constexpr (target == eTarget::Linked || target == eTarget::WithTwoNames)
            expected.insert(kOther);
        if (target == eTarget::Missing && !after.complete && !folder.Exists(kFile))
            expected.clear();
        EXPECT_EQ(expected, left.Entries());
        if (!expected.empty())
            LookAt(folder.Read(kFile), after.complete, left.Kept());
    }

    bool Expects(std::string_view message) const override { return message == "Not enough memory!"; }

private:
    static void LookAt(const std::string& content, bool complete, bool kept) {
        const bool old = target != eTarget::Missing && content == kOld;
        const bool partly = target == eTarget::WithTwoNames && kept;
        EXPECT_TRUE(content == kNew || (!complete && (old || partly))) << content.size() << " bytes";
    }

    eWorkFolder folder;
    Name name;
    bool reasonGiven = true;
    std::string failure;
};

bool HasLinks() {
    const eWorkFolder folder;
    try {
        std::filesystem::create_symlink("file", folder.Path() / "link");
        return true;
    } catch (const std::filesystem::filesystem_error&) {
        return false;
    }
}

} // namespace

TEST(Faults, SavingAMissingFile) {
    Torture<eSaving<eFileName, eTarget::Missing>>("save a missing file");
}

TEST(Faults, SavingAFile) {
    Torture<eSaving<eFileName, eTarget::Existing>>("save a file");
    Torture<eSaving<eFileNameW, eTarget::Existing>>("save a file with a wide name");
}

TEST(Faults, SavingThroughALink) {
    if (!HasLinks())
        GTEST_SKIP() << "the system or the run-time library makes no links";
    Torture<eSaving<eFileName, eTarget::Linked>>("save through a link");
}

TEST(Faults, SavingAFileWithTwoNames) {
    Torture<eSaving<eFileName, eTarget::WithTwoNames>>("save a file with two names");
}
