// SPDX-License-Identifier: BSL-1.0
#include "files/tree.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

// The decisions of the tree walks, on folders in memory: they are the same on every system, and a test can place links
// anywhere.

namespace {

using IO::eFileId;
using IO::Platform::eAnswer;
using IO::Platform::eCopyWatch;
using IO::Platform::eEntry;
using IO::Platform::eEntryKind;
using IO::Platform::eFolder;
using IO::Platform::eNamedLink;
using IO::System::CopyContents;
using IO::System::DeleteContents;
using IO::System::eFolderStack;
using IO::System::ePatience;
using IO::System::PurgeContents;

struct eNode;
using eNodes = std::map<std::string, std::shared_ptr<eNode>>;

struct eNode {
    eEntryKind kind = eEntryKind::Folder;
    std::string content; // of a file; the target of a link
    eNodes below;
    bool locked = false;   // cannot be removed
    bool unlisted = false; // cannot be entered
    int busy = 0;          // number of requests of any kind that are refused temporarily
    int lingering = 0;     // how often it still counts as content after its removal
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
    bool linksRefused = false;
};

eAnswer Told(bool done) {
    return done ? eAnswer::Done : eAnswer::Refused;
}

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
    bool IsListedWhole() override { return true; }
    IO::Platform::eEntryFacts Facts(const eEntry&) override { return {}; }
    bool ReachableName(const eEntry&, std::string*) override { return true; }
    eAnswer Enter(const eEntry& entry, std::unique_ptr<eFolder>* opened) override {
        const auto found = Find(entry);
        if (IsBusy(found))
            return eAnswer::Busy;
        if (!found || found->kind != eEntryKind::Folder || found->unlisted)
            return eAnswer::Refused;
        *opened = std::make_unique<eMemoryFolder>(found, watch);
        return eAnswer::Done;
    }
    eAnswer RemoveFile(const eEntry& entry) override { return Remove(entry, eEntryKind::File); }
    eAnswer RemoveLink(const eEntry& entry) override { return Remove(entry, eEntryKind::Link); }
    eAnswer RemoveFolder(const eEntry& entry) override { return Remove(entry, eEntryKind::Folder); }
    eAnswer Make(const eEntry& entry, eFolder& source, std::unique_ptr<eFolder>* opened) override {
        if (IsBusy(node))
            return eAnswer::Busy;
        EXPECT_NE(nullptr, static_cast<eMemoryFolder&>(source).Find(entry)) << "the folder that lists the source";
        const bool made = !resting && node->below.emplace(NameOf(entry), Folder()).second;
        return made ? Enter(entry, opened) : eAnswer::Refused;
    }
    void EndLike(eFolder&) override {}
    eAnswer CopyFileTo(eFolder& target, const eEntry& entry, eNamedLink link, const eCopyWatch&) override {
        const auto found = Find(entry);
        if (IsBusy(found))
            return eAnswer::Busy;
        if (link == eNamedLink::Follow)
            return Told(found->content != "folder" && CopyNode(target, entry, File("target of " + found->content)));
        return Told(CopyNode(target, entry, std::make_shared<eNode>(*found)));
    }
    eAnswer CopyLinkTo(eFolder& target, const eEntry& entry) override {
        const auto found = Find(entry);
        if (IsBusy(found))
            return eAnswer::Busy;
        return Told(!watch->linksRefused && CopyNode(target, entry, std::make_shared<eNode>(*found)));
    }
    const eFileId& Id() override {
        id = {1, 0, reinterpret_cast<std::uintptr_t>(node.get()), {}};
        return id;
    }
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

    static bool IsBusy(const std::shared_ptr<eNode>& found) { return found && found->busy > 0 && found->busy-- > 0; }

    eAnswer Remove(const eEntry& entry, eEntryKind kind) {
        const auto found = Find(entry);
        if (IsBusy(found))
            return eAnswer::Busy;
        if (!found || found->kind != kind || found->locked)
            return eAnswer::Refused;
        if (!found->below.empty() || (found->lingering > 0 && found->lingering-- > 0))
            return eAnswer::Full;
        node->below.erase(NameOf(entry));
        return eAnswer::Done;
    }

    bool CopyNode(eFolder& target, const eEntry& entry, std::shared_ptr<eNode> copy) {
        auto& other = static_cast<eMemoryFolder&>(target);
        return !resting && !other.resting && other.node->below.emplace(NameOf(entry), std::move(copy)).second;
    }

    eFileId id;
    std::shared_ptr<eNode> node;
    eWatch* watch;
    std::vector<std::string> names;
    std::size_t position = 0;
    bool resting = false;
};

class Tree : public testing::Test {
protected:
    bool Delete(const std::shared_ptr<eNode>& folder) {
        eMemoryFolder opened(folder, &watch);
        return DeleteContents(opened, patience);
    }
    bool Purge(const std::shared_ptr<eNode>& folder) {
        eMemoryFolder opened(folder, &watch);
        return PurgeContents(opened, patience);
    }
    void Copy(const std::shared_ptr<eNode>& from, const std::shared_ptr<eNode>& to) {
        eMemoryFolder source(from, &watch), target(to, &watch);
        CopyContents(source, target, patience);
    }

    eWatch watch;
    int pauses = 0;
    ePatience patience{[this](ePatience::ePause) { ++pauses; }};
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
        eAnswer Enter(const eEntry& entry, std::unique_ptr<eFolder>* entered) override {
            shared->below.begin()->second = Link("out");
            return eMemoryFolder::Enter(entry, entered);
        }
        std::shared_ptr<eNode> shared;
    };
    auto root = Folder({{"sub", Folder({{"file", File()}})}});
    eExchanging opened(root, &watch);
    opened.shared = root;
    DeleteContents(opened, patience);
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
    constexpr int kDepth = 20'000;
    auto from = Chain(kDepth, Folder()), to = Folder();
    Copy(from, to);
    EXPECT_LE(watch.mostAwake, 2 * static_cast<int>(eFolderStack::kKeptOpen) + 2);
    int copied = 0;
    for (auto node = to; node->below.count("down"); node = node->below["down"]) {
        ASSERT_EQ(std::to_string(kDepth - 1 - copied), node->below["file"]->content);
        ++copied;
    }
    EXPECT_EQ(kDepth, copied);
    watch = {};
    for (const auto& root : {from, to}) {
        Delete(root);
        EXPECT_EQ(eShown(), Shown(root));
    }
    EXPECT_LE(watch.mostAwake, static_cast<int>(eFolderStack::kKeptOpen) + 1);
    EXPECT_EQ(0, watch.awake);
}

TEST_F(Tree, AFolderThatCannotBeReachedAgainEndsTheWorkThereAndNothingElse) {
    class eLost : public eMemoryFolder {
    public:
        using eMemoryFolder::eMemoryFolder;
        void Wake(eFolder&) override {}
    };
    const int depth = static_cast<int>(eFolderStack::kKeptOpen) + 5;
    auto root = Chain(depth, Folder());
    eLost opened(root, &watch);
    DeleteContents(opened, patience);
    EXPECT_EQ((eShown{"down/", "file=" + std::to_string(depth - 1)}), Shown(root));
}

TEST_F(Tree, OfFileLinksThatCannotBeMadeAgainTheContentIsCopied) {
    auto from = Folder({{"a", Link("file")}, {"b", Link("folder")}, {"c", Folder({{"d", Link("file")}})}});
    auto to = Folder();
    watch.linksRefused = true;
    Copy(from, to);
    EXPECT_EQ((eShown{"a=target of file", "c/", "c/d=target of file"}), Shown(to));
}

// --- Temporary refusals ---

TEST_F(Tree, DeletionTriesAgainWhatIsBusyForAMoment) {
    auto file = File(), link = Link("out"), folder = Folder({{"file", file}, {"link", link}});
    file->busy = link->busy = 2;
    folder->busy = 1;
    auto root = Folder({{"folder", folder}});
    EXPECT_TRUE(Delete(root));
    EXPECT_EQ(eShown(), Shown(root));
    EXPECT_EQ(5, pauses);
}

TEST_F(Tree, AnEmptiedFolderIsWaitedForAsLongAsItSeemsFull) {
    auto folder = Folder({{"file", File()}}), empty = Folder();
    folder->lingering = empty->lingering = 3;
    auto root = Folder({{"folder", folder}, {"empty", empty}});
    EXPECT_TRUE(Delete(root));
    EXPECT_EQ(eShown(), Shown(root));
    EXPECT_EQ(6, pauses);
    empty = Folder({{"inner", Folder()}});
    empty->lingering = 1;
    root = Folder({{"empty", empty}});
    EXPECT_TRUE(Purge(root));
    EXPECT_EQ(eShown(), Shown(root));
    EXPECT_EQ(7, pauses);
}

TEST_F(Tree, AFolderInWhichSomethingStaysIsNotWaitedFor) {
    auto kept = File(), sealed = Folder({{"file", File()}});
    kept->locked = sealed->unlisted = true;
    auto root = Folder({{"a", Folder({{"b", Folder({{"kept", kept}})}})}, {"sealed", sealed}});
    EXPECT_FALSE(Delete(root));
    EXPECT_EQ((eShown{"a/", "a/b/", "a/b/kept", "sealed/", "sealed/file"}), Shown(root));
    root = Folder({{"a", Folder({{"file", File()}, {"l", Folder({{"link", Link("out")}})}})}});
    EXPECT_FALSE(Purge(root));
    EXPECT_EQ((eShown{"a/", "a/file", "a/l/", "a/l/link=out"}), Shown(root));
    EXPECT_EQ(0, pauses);
}

TEST_F(Tree, CopyingTriesAgainWhatIsBusyForAMoment) {
    auto file = File("1"), link = Link("out"), folder = Folder({{"file", file}, {"link", link}});
    file->busy = link->busy = folder->busy = 2;
    auto from = Folder({{"folder", folder}}), to = Folder();
    to->busy = 1;
    Copy(from, to);
    file->busy = link->busy = folder->busy = 0;
    EXPECT_EQ((eShown{"folder/", "folder/file=1", "folder/link=out"}), Shown(to));
    EXPECT_EQ(7, pauses);
}

TEST_F(Tree, ManyBusyEntriesHoldADeletionUpForAboutASecondInAll) {
    auto root = Folder();
    for (int number = 0; number < 1000; ++number) {
        auto file = File();
        file->busy = 1'000'000;
        root->below.emplace(std::to_string(number), file);
    }
    std::chrono::milliseconds waited{0};
    patience = ePatience([&](ePatience::ePause pause) { waited += pause; });
    EXPECT_FALSE(Delete(root));
    EXPECT_EQ(1000u, root->below.size());
    EXPECT_GE(waited, std::chrono::milliseconds(1000));
    EXPECT_LT(waited, std::chrono::milliseconds(1250));
}

// --- What a watch is told ---

// Writes down what it is told, one line each, and stops before a chosen line.
class eNotes : public IO::System::eTreeWatch {
public:
    explicit eNotes(std::size_t stopAfter = 1000) : most(stopAfter) {}

    void Done(eEntryKind kind, unsigned long long) override { Note(clearing ? "cleared" : "done", kind); }
    void Passed(eEntryKind kind, unsigned long long) override { Note("passed", kind); }
    void Failed(IO::System::eTreeStep step, const eEntry& entry, unsigned long long, int) override {
        trail.push_back(entry);
        FolderFailed(step, 0);
        trail.pop_back();
    }
    void FolderFailed(IO::System::eTreeStep step, int) override {
        static constexpr const char* kSteps[] = {"open", "create", "copy", "remove"};
        std::string line = std::string("cannot ") + kSteps[static_cast<int>(step)] + (clearing ? " in the target" : "");
        for (const eEntry& entry : trail)
            line += (&entry == &trail.front() ? " " : "/") + std::string(static_cast<const char*>(entry.name));
        lines.push_back(line);
        stopped = lines.size() >= most;
    }
    bool Copying(unsigned long long) override { return !stopped; }
    void Counted(eEntryKind kind, unsigned long long) override { Note("counted", kind); }

    eShown lines;

private:
    void Note(const std::string& what, eEntryKind kind) {
        lines.push_back(what + (kind == eEntryKind::Folder ? " folder" : kind == eEntryKind::Link ? " link" : " file"));
        stopped = lines.size() >= most;
    }

    const std::size_t most;
};

TEST_F(Tree, AWatchIsToldWhatBecomesOfEachEntryOfADeletedTree) {
    auto kept = File();
    kept->locked = true;
    auto sealed = Folder({{"file", File()}});
    sealed->unlisted = true;
    auto root = Folder({{"a", Folder({{"gone", File()}, {"kept", kept}})},
                        {"b", Folder({{"link", Link("out")}})},
                        {"sealed", sealed}});
    eMemoryFolder opened(root, &watch);
    eNotes notes;
    EXPECT_FALSE(DeleteContents(opened, patience, &notes));
    EXPECT_EQ((eShown{"done file", "cannot remove a/kept", "passed folder", "done link", "done folder",
                      "cannot open sealed"}),
              notes.lines);
}

TEST_F(Tree, AWatchIsToldOfTheFoldersThatPurgingRemovesAndOfThoseThatItCannotRemove) {
    auto locked = Folder();
    locked->locked = true;
    auto root = Folder({{"a", Folder({{"b", Folder()}})}, {"full", Folder({{"file", File()}})}, {"locked", locked}});
    eMemoryFolder opened(root, &watch);
    eNotes notes;
    EXPECT_FALSE(PurgeContents(opened, patience, &notes));
    EXPECT_EQ((eShown{"done folder", "done folder", "passed file", "passed folder", "cannot remove locked"}),
              notes.lines);
}

TEST_F(Tree, AWatchIsToldWhatIsCopiedAndWhatCannotBeClearedInTheTarget) {
    watch.linksRefused = true;
    auto sealed = Folder();
    sealed->unlisted = true;
    auto kept = File("old");
    kept->locked = true;
    auto source = Folder({{"a", Folder({{"file", File("new")}})},
                          {"blocked", Folder({{"lost", File()}})},
                          {"folder link", Link("folder")},
                          {"sealed", sealed}});
    auto target = Folder({{"a", Folder({{"kept", kept}})}, {"blocked", File()}});
    eMemoryFolder from(source, &watch), to(target, &watch);
    eNotes notes;
    CopyContents(from, to, patience, &notes);
    EXPECT_EQ((eShown{"cannot remove in the target a/kept", "done file", "done folder", "cannot create blocked",
                      "cannot copy folder link", "cannot open sealed"}),
              notes.lines);
}

TEST_F(Tree, AWatchCanStopAWalkAfterAnyEntry) {
    const auto make = [] {
        return Folder({{"a", Folder({{"b", Folder({{"file", File()}})}, {"file", File()}})}, {"file", File()}});
    };
    for (std::size_t most = 1; most < 5; ++most) {
        const auto root = make();
        eMemoryFolder deleted(root, &watch);
        eNotes notes(most);
        EXPECT_FALSE(DeleteContents(deleted, patience, &notes));
        EXPECT_EQ(most, notes.lines.size());
        EXPECT_EQ(5 - most, Shown(root).size());
        const auto source = make(), target = Folder();
        eMemoryFolder from(source, &watch), to(target, &watch);
        eNotes copied(most);
        CopyContents(from, to, patience, &copied);
        EXPECT_EQ(most, copied.lines.size());
        EXPECT_LT(Shown(target).size(), 5u);
    }
    EXPECT_EQ(0, watch.awake);
}

TEST_F(Tree, CountingTellsOfEveryEntryAndChangesNothing) {
    auto sealed = Folder();
    sealed->unlisted = true;
    auto root = Folder({{"a", Folder({{"file", File()}})}, {"link", Link("out")}, {"sealed", sealed}});
    const eShown before = Shown(root);
    eMemoryFolder opened(root, &watch);
    eNotes notes;
    IO::System::CountContents(opened, patience, notes, true);
    EXPECT_EQ((eShown{"counted folder", "counted file", "counted link", "counted folder"}), notes.lines);
    EXPECT_EQ(before, Shown(root));
}

} // namespace
