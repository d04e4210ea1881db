// SPDX-License-Identifier: BSL-1.0
#include <cstdlib>
#include <map>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include <pwd.h>
#include <unistd.h>

#include "services/real_tree.h"

// The folders of a user by the environment and by user-dirs.dirs.

namespace {

using IO::System::eUserFolder;

class XdgFolders : public eRealTree<eNarrow> {
protected:
    // Sets the variables for the time of the test.
    XdgFolders() {
        for (const char* const name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "TMPDIR"}) {
            const char* const value = std::getenv(name);
            before[name] = value ? std::optional<std::string>(value) : std::nullopt;
            ::unsetenv(name);
        }
        Set("HOME", At("home").string());
    }
    ~XdgFolders() override {
        for (const auto& [name, value] : before)
            value ? ::setenv(name.c_str(), value->c_str(), 1) : ::unsetenv(name.c_str());
    }

    static void Set(const char* name, const std::string& value) { ::setenv(name, value.c_str(), 1); }
    static std::string Of(eUserFolder folder) { return IO::System::UserFolder(folder).str(); }

    std::string Home(const std::string& below) const { return At("home").string() + below; }

private:
    std::map<std::string, std::optional<std::string>> before;
};

} // namespace

TEST_F(XdgFolders, AreBelowTheUsersOwnFolderWithoutVariables) {
    EXPECT_EQ(Home("/.config/"), Of(eUserFolder::Settings));
    EXPECT_EQ(Home("/.local/share/"), Of(eUserFolder::Data));
    EXPECT_EQ(Home("/.cache/"), Of(eUserFolder::Cache));
    EXPECT_EQ("/tmp/", Of(eUserFolder::Temporary));
    EXPECT_EQ(Home("/"), Of(eUserFolder::Documents));
}

TEST_F(XdgFolders, AreWhereVariablesNameAbsoluteFolders) {
    for (const auto& [name, folder] : {std::pair("XDG_CONFIG_HOME", eUserFolder::Settings),
                                       {"XDG_DATA_HOME", eUserFolder::Data},
                                       {"XDG_CACHE_HOME", eUserFolder::Cache},
                                       {"TMPDIR", eUserFolder::Temporary}}) {
        const std::string otherwise = Of(folder);
        Set(name, "relative/x");
        EXPECT_EQ(otherwise, Of(folder)) << name;
        Set(name, "");
        EXPECT_EQ(otherwise, Of(folder)) << name;
        Set(name, "/else/where");
        EXPECT_EQ("/else/where/", Of(folder)) << name;
    }
}

TEST_F(XdgFolders, WithoutAVariableTheUsersOwnFolderIsThatOfTheSystemsList) {
    ::unsetenv("HOME");
    const passwd* const own = ::getpwuid(::geteuid());
    ASSERT_NE(nullptr, own);
    EXPECT_EQ(eFileName(own->pw_dir).GetPath().str() + ".cache/", Of(eUserFolder::Cache));
}

TEST_F(XdgFolders, DocumentsAreWhereTheFileOfTheUsersFoldersSays) {
    const std::string name = "home/.config/user-dirs.dirs";
    MakeFile(name, "# comment\nXDG_DESKTOP_DIR=\"$HOME/Desktop\"\nXDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n");
    EXPECT_EQ(Home("/Dokumente/"), Of(eUserFolder::Documents));
    MakeFile(name, "XDG_DOCUMENTS_DIR=\"/data/my \\\"papers\\\"\"\n");
    EXPECT_EQ("/data/my \"papers\"/", Of(eUserFolder::Documents));
    for (const char* const useless : {"XDG_DOCUMENTS_DIR=\"papers\"\n", "XDG_DOCUMENTS_DIR=\"$HOMEWORK\"\n", ""}) {
        MakeFile(name, useless);
        EXPECT_EQ(Home("/"), Of(eUserFolder::Documents)) << useless;
    }
    MakeFile("settings/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/\"\n");
    Set("XDG_CONFIG_HOME", At("settings").string());
    EXPECT_EQ(Home("/"), Of(eUserFolder::Documents));
}

TEST_F(XdgFolders, TheIdOfTheMachineIsHashedForEachApplication) {
    const std::string one = IO::System::SystemFacts("one").machineId;
    if (one.empty())
        GTEST_SKIP() << "this system has no machine id";
    EXPECT_EQ(32u, one.size());
    EXPECT_NE(one, IO::System::SystemFacts("two").machineId);
}
