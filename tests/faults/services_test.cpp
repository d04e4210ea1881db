// SPDX-License-Identifier: BSL-1.0
// Files, folders and searches while everything that they use fails: nothing outside is touched, no half file stays, and
// what failed succeeds afterwards.
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

#include <qzl_io/system.h>

#include "faults/torture.h"
#include "faults/work_folder.h"

namespace {

namespace fs = std::filesystem;
namespace File = IO::System::File;
namespace Path = IO::System::Path;

const std::string kLong = "an entry with a rather long name";
const std::string kLarge(70'000, 'l');

// Every file below a folder with its content, and every folder with an empty text.
std::map<std::string, std::string> TreeOf(const eWorkFolder& folder, const std::string& name) {
    std::map<std::string, std::string> tree;
    const fs::path root = folder.Path() / name;
    if (fs::exists(root))
        for (const auto& entry : fs::recursive_directory_iterator(root)) {
            const std::string below = entry.path().lexically_relative(root).generic_string();
            tree[below] = entry.is_directory() ? "" : folder.Read(name + "/" + below);
        }
    return tree;
}

class eServiceScenario : public eScenario {
public:
    bool Expects(std::string_view) const override { return false; }

protected:
    void MakeTree(const std::string& root) const {
        folder.Write(root + "/" + kLong, "content");
        folder.Write(root + "/sub/inner/file", "inner");
        folder.Write(root + "/sub/" + kLong, kLarge);
        fs::create_directories(folder.Path() / root / "empty" / kLong);
    }

    eWorkFolder folder;
};

// --- Single files ---

class eCopiedFile : public eServiceScenario {
public:
    explicit eCopiedFile(std::string text)
        : content(std::move(text)),
          from(folder.Write("from " + kLong, content)),
          to(folder.Write("to " + kLong, "old")) {}

    bool Run() override { return File::Copy(from, to); }

    void Look(const eAftermath& after) override {
        EXPECT_EQ(content, folder.Read("from " + kLong));
        const std::string copy = folder.Exists("to " + kLong) ? folder.Read("to " + kLong) : "";
        EXPECT_TRUE(copy == content || (!after.complete && copy == "old")) << copy.size();
        std::set<std::string> entries = folder.Entries();
        if (after.handleCut)
            entries.erase(".to " + kLong + ".saving");
        EXPECT_EQ((std::set<std::string>{"from " + kLong, "to " + kLong}), entries);
    }

    bool Tells() const override { return false; }

private:
    const std::string content;
    const eFileName from, to;
};

class eFileWork : public eServiceScenario {
public:
    eFileWork() : name(folder.Write(kLong, "content")), other(folder.Name("other " + kLong)) {}

    bool Run() override {
        const bool there = File::Access(name, File::Read) && File::Size(name) == 7;
        const bool renamed = File::Rename(name, other);
        const bool back = File::Rename(other, name);
        return there && renamed && back;
    }

    void Look(const eAftermath& after) override {
        const bool moved = !folder.Exists(kLong);
        EXPECT_TRUE(!moved || !after.complete);
        EXPECT_EQ("content", folder.Read(moved ? "other " + kLong : kLong));
        if (moved)
            fs::rename(folder.Path() / ("other " + kLong), folder.Path() / kLong);
    }

private:
    const eFileName name, other;
};

class eDeletedFile : public eServiceScenario {
public:
    eDeletedFile() : name(folder.Write(kLong, "content")) {}

    bool Run() override { return File::Delete(name); }

    void Look(const eAftermath& after) override {
        EXPECT_EQ(after.complete, !folder.Exists(kLong));
        folder.Write(kLong, "content");
    }

private:
    const eFileName name;
};

// --- Trees ---

class eCopiedTree : public eServiceScenario {
public:
    eCopiedTree() : from(folder.Name("from/")), to(folder.Name("to/")) {
        MakeTree("from");
        folder.Write("to/old", "old");
        source = TreeOf(folder, "from");
    }

    bool Run() override {
        Path::Copy(from, to);
        return true;
    }

    void Look(const eAftermath& after) override {
        EXPECT_EQ(source, TreeOf(folder, "from"));
        const auto copy = TreeOf(folder, "to");
        if (after.complete) {
            EXPECT_EQ(source, copy);
        }
        if (!after.handleCut) {
            for (const auto& [name, content] : copy)
                EXPECT_TRUE(name == "old" || (source.contains(name) && source[name] == content)) << name;
        }
    }

    bool Tells() const override { return false; }

protected:
    const eFileName from, to;

private:
    std::map<std::string, std::string> source;
};

// Every entry that is missing must have been told.
class eToldCopy : public eCopiedTree {
public:
    bool Run() override { return static_cast<bool>(Path::CopyTree(from, to)); }
    bool Tells() const override { return true; }
};

class eDeletedTree : public eServiceScenario {
public:
    eDeletedTree() : root(folder.Name("root/")) {
        MakeTree("root");
        folder.Write("outside/file", "precious");
    }

    bool Run() override {
        Path::Delete(root, true);
        return true;
    }

    void Look(const eAftermath& after) override {
        EXPECT_TRUE(!after.complete || !folder.Exists("root"));
        EXPECT_EQ("precious", folder.Read("outside/file"));
    }

    bool Tells() const override { return false; }

protected:
    const eFileName root;
};

class eToldDeletion : public eDeletedTree {
public:
    bool Run() override {
        const IO::System::eTreeResult result = Path::DeleteTree(root);
        // What an earlier run has removed is missing.
        return result || (result.failed == 1 && !folder.Exists("root"));
    }
    bool Tells() const override { return true; }
};

class ePurgedTree : public eServiceScenario {
public:
    ePurgedTree() : root(folder.Name("root/")) {
        MakeTree("root");
        fs::create_directories(folder.Path() / "root" / "empty" / "a" / "b" / "c");
    }

    bool Run() override {
        Path::PurgeEmpty(root);
        return true;
    }

    void Look(const eAftermath& after) override {
        EXPECT_TRUE(!after.complete || !folder.Exists("root/empty"));
        EXPECT_EQ("content", folder.Read("root/" + kLong));
        EXPECT_EQ("inner", folder.Read("root/sub/inner/file"));
        EXPECT_EQ(kLarge, folder.Read("root/sub/" + kLong));
    }

    bool Tells() const override { return false; }

private:
    const eFileName root;
};

class eCreatedFolders : public eServiceScenario {
public:
    eCreatedFolders() : name(folder.Name("new/" + kLong + "/inner/")) {}

    bool Run() override { return Path::Create(name); }

    void Look(const eAftermath& after) override {
        EXPECT_TRUE(!after.complete || folder.Exists("new/" + kLong + "/inner"));
    }

private:
    const eFileName name;
};

// --- Searches ---

template <class Search, class Name>
class eSearching : public eServiceScenario {
public:
    eSearching() {
        MakeTree("root");
        if constexpr (sizeof(*Name().c_str()) == 1)
            root = folder.Name("root/");
        else
            root = folder.NameW(L"root/");
    }

    bool Run() override {
        entries = folders = 0;
        size = 0;
        typename Name::eText mask(3, '*');
        mask[1] = '.';
        for (Search search(root, Name(mask)); search.Valid(); search.Next()) {
            const Search copy(search);
            entries += copy.IsFile() || copy.IsSubfolder();
            folders += copy.IsSubfolder();
            size += copy.IsFile() ? copy.Size() : 0;
        }
        return true;
    }

    void Look(const eAftermath& after) override {
        EXPECT_TRUE(!after.complete || (folders == 2 && size == 7)) << folders << " folders, " << size << " bytes";
        EXPECT_LE(folders, 2);
    }

    bool Tells() const override { return false; }

private:
    Name root;
    int entries = 0;
    int folders = 0;
    unsigned long long size = 0;
};

// --- Facts ---

class eFacts : public eServiceScenario {
public:
    bool Run() override {
        const std::string narrow = Path::WorkingDir();
        const std::wstring wide = IO::System::PathW::WorkingDir();
        const IO::System::eWorkingPaths paths("application");
        IO::System::HDDSerialNumber();
        IO::System::ProductId();
        IO::System::ProductIdW();
        return !narrow.empty() && narrow.size() == wide.size() && paths.Working() == narrow;
    }

    void Look(const eAftermath&) override {}

    bool Expects(std::string_view message) const override {
        return message.starts_with("eHDDInfo: obtain serialNumber failure(");
    }
};

} // namespace

TEST(Faults, CopyingAFile) {
    Torture("copy a short file", [] { return std::make_unique<eCopiedFile>("content"); });
    Torture("copy a file", [] { return std::make_unique<eCopiedFile>(kLarge); });
}

TEST(Faults, WorkingWithFiles) {
    Torture<eFileWork>("ask for a file and rename it");
    Torture<eDeletedFile>("delete a file");
}

TEST(Faults, CopyingATree) {
    Torture<eCopiedTree>("copy a tree");
    Torture<eToldCopy>("copy a tree and tell");
}

TEST(Faults, DeletingATree) {
    Torture<eDeletedTree>("delete a tree");
    Torture<eToldDeletion>("delete a tree and tell");
}

TEST(Faults, PurgingATree) {
    Torture<ePurgedTree>("purge a tree");
}

TEST(Faults, CreatingFolders) {
    Torture<eCreatedFolders>("create folders");
}

TEST(Faults, Searching) {
    Torture<eSearching<IO::eSearch, eFileName>>("search a folder");
    Torture<eSearching<IO::eSearchW, eFileNameW>>("search a folder by wide names");
}

TEST(Faults, AskingForFacts) {
    Torture<eFacts>("facts of the machine that are asked for each time");
}
