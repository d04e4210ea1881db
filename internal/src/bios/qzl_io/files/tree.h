// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "files/tree_watch.h"
#include "platform/folder.h"
#include "platform/pure/patience.h"

// Walks over folder trees: what is entered, removed and copied, and what is left alone. The walks do not recurse, hold
// a bounded number of folders open and never enter a link. A watch, if there is one, is told what becomes of each
// entry, and may stop the walk between any two.

namespace IO::System {

using Platform::eFolder;
using Platform::eNamedLink;

// The folders from a root, which belongs to the caller, down to the place of a walk. Only the lowest ones stay open.
class eFolderStack {
public:
    static constexpr std::size_t kKeptOpen = 24;

    explicit eFolderStack(eFolder& top) : root(top) {}

    bool AtRoot() const { return below.empty(); }
    eFolder& Top() { return below.empty() ? root : *below.back(); }

    void Push(std::unique_ptr<eFolder> folder) {
        below.push_back(std::move(folder));
        if (below.size() >= kKeptOpen)
            At(below.size() - kKeptOpen).Rest();
    }

    void Pop() {
        if (below.size() >= kKeptOpen)
            At(below.size() - kKeptOpen).Wake(At(below.size() - kKeptOpen + 1));
        below.pop_back();
    }

private:
    // Level 0 is the root.
    eFolder& At(std::size_t level) { return level == 0 ? root : *below[level - 1]; }

    eFolder& root;
    std::vector<std::unique_ptr<eFolder>> below;
};

// Visits everything below the root, in the order of the listings. Calls the visitor's File and Link for such entries;
// Enter for a subfolder that has been opened, with the folder before it (if Enter returns false, the subfolder is left
// out); Leave when everything in the subfolder has been visited, or if it could not be opened. Where the watch stops
// the walk, nothing more is called.
template <class Visitor>
void WalkTree(eFolder& root, ePatience& patience, Visitor& visitor, eTreeWatch* watch) {
    eFolderStack folders(root);
    std::vector<eEntry> path;
    const auto goDown = [&](const eEntry& entry) {
        std::unique_ptr<eFolder> folder;
        if (!patience.Get([&] { return folders.Top().Enter(entry, &folder); })) {
            visitor.Leave(folders.Top(), entry, false);
        } else if (visitor.Enter(folders.Top(), *folder, entry)) {
            folders.Push(std::move(folder));
            path.push_back(entry);
            if (watch)
                watch->Enter(entry);
        }
    };
    const auto goUp = [&] {
        folders.Pop();
        if (watch)
            watch->Leave();
        visitor.Leave(folders.Top(), path.back(), true);
        path.pop_back();
    };
    for (eEntry entry; !watch || !watch->IsStopped();) {
        if (folders.Top().Next(&entry)) {
            if (entry.kind == eEntryKind::Folder)
                goDown(entry);
            else if (entry.kind == eEntryKind::Link)
                visitor.Link(folders.Top(), entry);
            else
                visitor.File(folders.Top(), entry);
        } else {
            if (watch && !folders.Top().IsListedWhole())
                watch->FolderFailed(eTreeStep::Open, Platform::TakeRefusal());
            if (folders.AtRoot())
                return;
            goUp();
        }
    }
}

// Tells the watch of everything in the folder, with the sizes of files if they are asked for.
inline void CountContents(eFolder& root, ePatience& patience, eTreeWatch& watch, bool sizes) {
    class eCounting {
    public:
        eCounting(eTreeWatch& told, bool withSizes) : watch(told), sizes(withSizes) {}

        void File(eFolder& folder, const eEntry& entry) { Count(folder, entry); }
        void Link(eFolder& folder, const eEntry& entry) { Count(folder, entry); }
        bool Enter(eFolder&, eFolder&, const eEntry& entry) {
            watch.Counted(entry.kind, 0);
            return true;
        }
        void Leave(eFolder&, const eEntry& entry, bool entered) {
            if (!entered)
                watch.Counted(entry.kind, 0);
        }

    private:
        void Count(eFolder& folder, const eEntry& entry) {
            watch.Counted(entry.kind, sizes ? folder.Facts(entry).size : 0);
        }

        eTreeWatch& watch;
        const bool sizes;
    };
    eCounting counting(watch, sizes);
    WalkTree(root, patience, counting, &watch);
}

// For visitors that remove folders after their content. Notes where something stays: the system says for good that such
// a folder is not empty.
class eEmptying {
public:
    eEmptying(ePatience& waiting, eTreeWatch* told) : patience(waiting), watch(told) {}

    bool Enter(eFolder&, eFolder&, const eEntry&) {
        above.push_back(emptied);
        emptied = true;
        return true;
    }

    // Whether everything in the current folder of the walk has been removed.
    bool Emptied() const { return emptied; }

protected:
    bool RemoveFolder(eFolder& parent, const eEntry& entry, bool entered) {
        const bool isEmpty = entered && emptied;
        if (entered) {
            emptied = above.back();
            above.pop_back();
        }
        return patience.GetRemoved(isEmpty, [&] { return parent.RemoveFolder(entry); });
    }

    void Note(bool removed) { emptied = emptied && removed; }

    // The end of a folder. A folder that stays because of what is in it has not failed itself.
    void TellFolder(bool removed, bool wasEmptied, const eEntry& entry, eTreeStep step, int reason) {
        if (removed)
            watch->Done(entry.kind, 0);
        else if (wasEmptied || step == eTreeStep::Open)
            watch->Failed(step, entry, 0, reason);
        else
            watch->Passed(entry.kind, 0);
    }

    ePatience& patience;
    eTreeWatch* watch;

private:
    bool emptied = true;
    std::vector<bool> above; // likewise for the folders above it
};

// Removes everything in the folder that the system lets go: links themselves, never what they point to. True if nothing
// stays.
inline bool DeleteContents(eFolder& root, ePatience& patience, eTreeWatch* watch = nullptr) {
    class eDeletion : public eEmptying {
    public:
        using eEmptying::eEmptying;

        void File(eFolder& folder, const eEntry& entry) {
            const unsigned long long size = watch ? folder.Facts(entry).size : 0;
            Finish(patience.Get([&] { return folder.RemoveFile(entry); }), entry, size);
        }
        void Link(eFolder& folder, const eEntry& entry) {
            Finish(patience.Get([&] { return folder.RemoveLink(entry); }), entry, 0);
        }
        void Leave(eFolder& parent, const eEntry& entry, bool entered) {
            const bool wasEmptied = entered && Emptied();
            const int notEntered = watch && !entered ? Platform::TakeRefusal() : 0;
            bool removed = RemoveFolder(parent, entry, entered);
            const int notRemoved = watch && !removed ? Platform::TakeRefusal() : 0;
            // If the folder was replaced by a link after it was listed, the link is removed.
            removed = removed || parent.RemoveLink(entry) == eAnswer::Done;
            Note(removed);
            if (watch)
                TellFolder(removed, wasEmptied, entry, entered ? eTreeStep::Remove : eTreeStep::Open,
                           entered ? notRemoved : notEntered);
        }

    private:
        void Finish(bool removed, const eEntry& entry, unsigned long long size) {
            Note(removed);
            if (watch)
                watch->Tell(removed, eTreeStep::Remove, entry, size);
        }
    };
    eDeletion deletion(patience, watch);
    WalkTree(root, patience, deletion, watch);
    return deletion.Emptied() && !(watch && watch->IsStopped());
}

// Removes the subfolders that contain no file and no link at any depth, deepest first. True if nothing stays.
inline bool PurgeContents(eFolder& root, ePatience& patience, eTreeWatch* watch = nullptr) {
    class ePurge : public eEmptying {
    public:
        using eEmptying::eEmptying;

        void File(eFolder&, const eEntry& entry) { Pass(entry); }
        void Link(eFolder&, const eEntry& entry) { Pass(entry); }
        void Leave(eFolder& parent, const eEntry& entry, bool entered) {
            const bool wasEmptied = entered && Emptied();
            const int notEntered = watch && !entered ? Platform::TakeRefusal() : 0;
            const bool removed = RemoveFolder(parent, entry, entered);
            Note(removed);
            if (watch)
                TellFolder(removed, wasEmptied, entry, entered ? eTreeStep::Remove : eTreeStep::Open,
                           entered ? Platform::TakeRefusal() : notEntered);
        }

    private:
        void Pass(const eEntry& entry) {
            Note(false);
            if (watch)
                watch->Passed(entry.kind, 0);
        }
    };
    ePurge purge(patience, watch);
    WalkTree(root, patience, purge, watch);
    return purge.Emptied() && !(watch && watch->IsStopped());
}

// Copies the content of one folder to another. Subfolders that the target already has are emptied first. If the target
// is below the source, it is not copied into itself. If the system does not recreate a link to a file, the file's
// content is copied; any other such link is left out.
inline void CopyContents(eFolder& source, eFolder& target, ePatience& patience, eTreeWatch* watch = nullptr) {
    class eCopy {
    public:
        eCopy(eFolder& root, ePatience& waiting, eTreeWatch* told)
            : targets(root), rootId(root.Id()), patience(waiting), watch(told) {
            if (watch)
                fileWatch = [this](unsigned long long copied) { return watch->Copying(copied); };
        }

        void File(eFolder& folder, const eEntry& entry) {
            const unsigned long long size = watch ? folder.Facts(entry).size : 0;
            const bool copied = CopyFile(folder, entry, eNamedLink::Refuse);
            if (watch)
                watch->Tell(copied, eTreeStep::Copy, entry, size);
        }

        void Link(eFolder& folder, const eEntry& entry) {
            bool copied = patience.Get([&] { return folder.CopyLinkTo(targets.Top(), entry); });
            const int reason = watch && !copied ? Platform::TakeRefusal() : 0;
            copied = copied || CopyFile(folder, entry, eNamedLink::Follow);
            if (watch && copied)
                watch->Done(entry.kind, 0);
            else if (watch && !watch->IsStopped())
                watch->Failed(eTreeStep::Copy, entry, 0, reason);
        }

        bool Enter(eFolder& parent, eFolder& folder, const eEntry& entry) {
            if (AreOneFolder(folder.Id(), rootId)) {
                if (watch)
                    watch->Passed(entry.kind, 0);
                return false;
            }
            auto copy = EmptyFolder(parent, entry);
            if (!copy && watch)
                watch->Failed(eTreeStep::Create, entry, 0, Platform::TakeRefusal());
            if (!copy)
                return false;
            targets.Push(std::move(copy));
            return true;
        }

        void Leave(eFolder& parent, const eEntry& entry, bool entered) {
            const int notEntered = watch && !entered ? Platform::TakeRefusal() : 0;
            if (entered)
                targets.Pop();
            else
                EmptyFolder(parent, entry);
            if (watch && entered)
                watch->Done(entry.kind, 0);
            else if (watch)
                watch->Failed(eTreeStep::Open, entry, 0, notEntered);
        }

    private:
        bool CopyFile(eFolder& folder, const eEntry& entry, eNamedLink link) {
            return patience.Get([&] { return folder.CopyFileTo(targets.Top(), entry, link, fileWatch); });
        }

        std::unique_ptr<eFolder> EmptyFolder(eFolder& parent, const eEntry& entry) {
            std::unique_ptr<eFolder> folder;
            if (patience.Get([&] { return targets.Top().Make(entry, parent, &folder); }))
                return folder;
            if (patience.Get([&] { return targets.Top().Enter(entry, &folder); }))
                ClearFolder(*folder, entry);
            return folder;
        }

        void ClearFolder(eFolder& folder, const eEntry& entry) {
            const eTreeWatch::eClearing clearing(watch);
            if (watch)
                watch->Enter(entry);
            DeleteContents(folder, patience, watch);
            if (watch)
                watch->Leave();
        }

        eFolderStack targets;
        const eFileId rootId;
        ePatience& patience;
        eTreeWatch* watch;
        Platform::eCopyWatch fileWatch;
    };
    eCopy copy(target, patience, watch);
    WalkTree(source, patience, copy, watch);
}

} // namespace IO::System
