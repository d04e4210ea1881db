#include "tree.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

// The decisions of the tree walks, on folders that exist in memory only: the same on every system, with links wherever
// a test wants them.
namespace {

using IO::Platform::eEntry;
using IO::Platform::eEntryKind;
using IO::Platform::eFolder;
using IO::Platform::eFolderId;
using IO::System::CopyContents;
using IO::System::DeleteContents;
using IO::System::eFolderStack;
using IO::System::PurgeContents;

struct eNode;
using eNodes = std::map<std::string, std::shared_ptr<eNode>>;

struct eNode {
    eEntryKind kind = eEntryKind::Folder;
    std::string content; // of a file; of a link, where it leads
    eNodes below;
    bool locked = false;   // stays, whoever removes it
    bool unlisted = false; // may not be entered
};

std::shared_ptr<eNode> File(std::string content = "") {
    return std::make_shared<eNode>(eNode{eEntryKind::File, std::move(content), {}});
}
std::shared_ptr<eNode> Link(std::string target) {
    return std::make_shared<eNode>(eNode{eEntryKind::Link, std::move(target), {}});
}
std::shared_ptr<eNode> Folder(eNodes below = {}) {
    return std::make_shared<eNode>(eNode{eEntryKind::Folder, "", std::move(below)});
}

void Show(const eNode& folder, const std::string& prefix, std::vector<std::string>* shown) {
    for (const auto& [name, node] : folder.below) {
        const bool isFolder = node->kind == eEntryKind::Folder;
        shown->push_back(prefix + name + (isFolder ? "/" : node->content.empty() ? "" : "=" + node->content));
        if (isFolder)
            Show(*node, prefix + name + "/", shown);
    }
}

std::vector<std::string> Shown(const std::shared_ptr<eNode>& folder) {
    std::vector<std::string> shown;
    Show(*folder, "", &shown);
    return shown;
}

using eShown = std::vector<std::string>;

struct eWatch {
    int awake = 0;
    int mostAwake = 0;
};

class eMemoryFolder : public eFolder {
public:
    eMemoryFolder(std::shared_ptr<eNode> shownNode, eWatch* counts) : node(std::move(shownNode)), watch(counts) {
        Count(1);
        for (const auto& [name, entry] : node->below)
            names.push_back(name);
    }
    ~eMemoryFolder() override { Count(resting ? 0 : -1); }

    bool Next(eEntry* entry) override {
        while (!resting && position < names.size()) {
            const std::string& name = names[position++];
            const auto found = node->below.find(name);
            if (found == node->below.end())
                continue;
            *entry = {found->second->kind, name.c_str()};
            return true;
        }
        return false;
    }
    std::unique_ptr<eFolder> Enter(const eEntry& entry) override {
        const auto found = Find(entry);
        if (!found || found->kind != eEntryKind::Folder || found->unlisted)
            return nullptr;
        return std::make_unique<eMemoryFolder>(found, watch);
    }
    bool RemoveFile(const eEntry& entry) override { return Remove(entry, eEntryKind::File); }
    bool RemoveLink(const eEntry& entry) override { return Remove(entry, eEntryKind::Link); }
    bool RemoveFolder(const eEntry& entry) override { return Remove(entry, eEntryKind::Folder); }
    bool MakeFolder(const eEntry& entry) override {
        return !resting && node->below.emplace(NameOf(entry), Folder()).second;
    }
    void CopyFileTo(eFolder& target, const eEntry& entry) override { CopyNode(target, entry); }
    void CopyLinkTo(eFolder& target, const eEntry& entry) override { CopyNode(target, entry); }
    eFolderId Id() override { return {1, reinterpret_cast<std::uintptr_t>(node.get())}; }
    void Rest() override {
        EXPECT_FALSE(std::exchange(resting, true));
        Count(-1);
    }
    void Wake(eFolder& child) override {
        EXPECT_FALSE(static_cast<eMemoryFolder&>(child).resting);
        EXPECT_TRUE(std::exchange(resting, false));
        Count(1);
    }

private:
    static const char* NameOf(const eEntry& entry) { return static_cast<const char*>(entry.name); }

    void Count(int change) {
        watch->awake += change;
        watch->mostAwake = std::max(watch->mostAwake, watch->awake);
    }

    std::shared_ptr<eNode> Find(const eEntry& entry) const {
        const auto found = node->below.find(NameOf(entry));
        return resting || found == node->below.end() ? nullptr : found->second;
    }

    bool Remove(const eEntry& entry, eEntryKind kind) {
        const auto found = Find(entry);
        if (!found || found->kind != kind || found->locked || !found->below.empty())
            return false;
        node->below.erase(NameOf(entry));
        return true;
    }

    void CopyNode(eFolder& target, const eEntry& entry) {
        auto& other = static_cast<eMemoryFolder&>(target);
        if (!resting && !other.resting)
            other.node->below.emplace(NameOf(entry), std::make_shared<eNode>(*Find(entry)));
    }

    std::shared_ptr<eNode> node;
    eWatch* watch;
    std::vector<std::string> names;
    std::size_t position = 0;
    bool resting = false;
};

class Tree : public testing::Test {
protected:
    void Delete(const std::shared_ptr<eNode>& folder) {
        eMemoryFolder opened(folder, &watch);
        DeleteContents(opened);
    }
    void Purge(const std::shared_ptr<eNode>& folder) {
        eMemoryFolder opened(folder, &watch);
        PurgeContents(opened);
    }
    void Copy(const std::shared_ptr<eNode>& from, const std::shared_ptr<eNode>& to) {
        eMemoryFolder source(from, &watch), target(to, &watch);
        CopyContents(source, target);
    }

    eWatch watch;
};

std::shared_ptr<eNode> Chain(int depth, const std::shared_ptr<eNode>& bottom) {
    auto folder = bottom;
    for (int level = 0; level < depth; ++level)
        folder = Folder({{"down", folder}, {"file", File(std::to_string(level))}});
    return folder;
}

TEST_F(Tree, DeletionRemovesFilesFoldersAndLinksThemselves) {
    auto root = Folder({{"a", File()}, {"b", Folder({{"c", File()}, {"d", Folder()}, {"l", Link("out")}})}});
    Delete(root);
    EXPECT_EQ(eShown(), Shown(root));
}

TEST_F(Tree, DeletionLeavesWhatIsRefusedAndTheFoldersAboveItAlone) {
    auto kept = File();
    kept->locked = true;
    auto root =
        Folder({{"a", Folder({{"b", Folder({{"gone", File()}, {"kept", kept}})}, {"c", Folder()}})}, {"x", File()}});
    Delete(root);
    EXPECT_EQ((eShown{"a/", "a/b/", "a/b/kept"}), Shown(root));
}

TEST_F(Tree, DeletionStillRemovesAnEmptyFolderThatMayNotBeListed) {
    auto sealed = Folder(), sealedFull = Folder({{"file", File()}});
    sealed->unlisted = sealedFull->unlisted = true;
    auto root = Folder({{"empty", sealed}, {"full", sealedFull}});
    Delete(root);
    EXPECT_EQ((eShown{"full/", "full/file"}), Shown(root));
}

TEST_F(Tree, DeletionRemovesALinkThatHasTakenAFoldersPlace) {
    class eExchanging : public eMemoryFolder {
    public:
        using eMemoryFolder::eMemoryFolder;
        std::unique_ptr<eFolder> Enter(const eEntry& entry) override {
            shared->below.begin()->second = Link("out");
            return eMemoryFolder::Enter(entry);
        }
        std::shared_ptr<eNode> shared;
    };
    auto root = Folder({{"sub", Folder({{"file", File()}})}});
    eExchanging opened(root, &watch);
    opened.shared = root;
    DeleteContents(opened);
    EXPECT_EQ(eShown(), Shown(root));
}

TEST_F(Tree, PurgingRemovesFoldersWithoutFilesOrLinksDeepestFirst) {
    auto root = Folder({{"a", Folder({{"b", Folder()}, {"b2", Folder({{"c", Folder()}})}})},
                        {"c", Folder({{"file", File()}, {"empty", Folder()}})},
                        {"l", Folder({{"link", Link("out")}})},
                        {"file", File()},
                        {"link", Link("a")}});
    Purge(root);
    EXPECT_EQ((eShown{"c/", "c/file", "file", "l/", "l/link=out", "link=a"}), Shown(root));
}

TEST_F(Tree, CopyingRecreatesEverythingAndFollowsNoLink) {
    auto from = Folder({{"a", File("1")}, {"b", Folder({{"c", File("2")}, {"empty", Folder()}, {"l", Link("..")}})}});
    auto to = Folder();
    Copy(from, to);
    EXPECT_EQ(Shown(from), Shown(to));
}

TEST_F(Tree, CopyingEmptiesSubfoldersThatTheTargetHasAlready) {
    auto from = Folder({{"b", Folder({{"c", File("2")}})}});
    auto to = Folder({{"b", Folder({{"extra", File("old")}, {"deep", Folder({{"er", File()}})}})}});
    Copy(from, to);
    EXPECT_EQ((eShown{"b/", "b/c=2"}), Shown(to));
}

TEST_F(Tree, CopyingMakesAnEmptyFolderOfOneThatMayNotBeListed) {
    auto sealed = Folder({{"file", File()}});
    sealed->unlisted = true;
    auto from = Folder({{"a", sealed}, {"b", File("1")}}), to = Folder();
    Copy(from, to);
    EXPECT_EQ((eShown{"a/", "b=1"}), Shown(to));
}

TEST_F(Tree, CopyingSkipsAFolderWhosePlaceIsTaken) {
    auto from = Folder({{"a", Folder({{"c", File("1")}})}, {"z", File("2")}});
    auto to = Folder({{"a", File("in the way")}});
    Copy(from, to);
    EXPECT_EQ((eShown{"a=in the way", "z=2"}), Shown(to));
}

TEST_F(Tree, CopyingDoesNotCopyTheTargetIntoItself) {
    auto to = Folder();
    auto from = Folder({{"a", File("1")}, {"sub", Folder({{"deep", to}, {"x", File("2")}})}});
    Copy(from, to);
    EXPECT_EQ((eShown{"a=1", "sub/", "sub/x=2"}), Shown(to));
}

TEST_F(Tree, DepthNeitherRecursesNorHoldsMoreFoldersOpenThanTheLimit) {
    constexpr int depth = 20'000;
    auto from = Chain(depth, Folder()), to = Folder();
    Copy(from, to);
    EXPECT_LE(watch.mostAwake, 2 * static_cast<int>(eFolderStack::keptOpen) + 2);
    int copied = 0;
    for (auto node = to; node->below.count("down"); node = node->below["down"]) {
        ASSERT_EQ(std::to_string(depth - 1 - copied), node->below["file"]->content);
        ++copied;
    }
    EXPECT_EQ(depth, copied);
    watch = {};
    for (const auto& root : {from, to}) {
        Delete(root);
        EXPECT_EQ(eShown(), Shown(root));
    }
    EXPECT_LE(watch.mostAwake, static_cast<int>(eFolderStack::keptOpen) + 1);
    EXPECT_EQ(0, watch.awake);
}

TEST_F(Tree, AFolderThatCannotBeReachedAgainEndsTheWorkThereAndNothingElse) {
    class eLost : public eMemoryFolder {
    public:
        using eMemoryFolder::eMemoryFolder;
        void Wake(eFolder&) override {}
    };
    const int depth = static_cast<int>(eFolderStack::keptOpen) + 5;
    auto root = Chain(depth, Folder());
    eLost opened(root, &watch);
    DeleteContents(opened);
    EXPECT_EQ((eShown{"down/", "file=" + std::to_string(depth - 1)}), Shown(root));
}

} // namespace
