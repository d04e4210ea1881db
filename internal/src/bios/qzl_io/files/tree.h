// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "platform/folder.h"
#include "platform/pure/patience.h"

// Walks over folder trees: what is entered, removed and copied, and what is left alone. The walks do not recurse, hold
// a bounded number of folders open and never enter a link.

namespace IO::System {

using Platform::eEntry;
using Platform::eEntryKind;
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
// out); Leave when everything in the subfolder has been visited, or if it could not be opened.
template <class Visitor>
void WalkTree(eFolder& root, ePatience& patience, Visitor& visitor) {
    eFolderStack folders(root);
    std::vector<eEntry> path;
    const auto goDown = [&](const eEntry& entry) {
        std::unique_ptr<eFolder> folder;
        if (!patience.Get([&] { return folders.Top().Enter(entry, &folder); })) {
            visitor.Leave(folders.Top(), entry, false);
        } else if (visitor.Enter(folders.Top(), *folder, entry)) {
            folders.Push(std::move(folder));
            path.push_back(entry);
        }
    };
    for (eEntry entry;;) {
        if (folders.Top().Next(&entry)) {
            if (entry.kind == eEntryKind::Folder)
                goDown(entry);
            else if (entry.kind == eEntryKind::Link)
                visitor.Link(folders.Top(), entry);
            else
                visitor.File(folders.Top(), entry);
        } else {
            if (folders.AtRoot())
                return;
            folders.Pop();
            visitor.Leave(folders.Top(), path.back(), true);
            path.pop_back();
        }
    }
}

// For visitors that remove folders after their content. Notes where something stays: the system says for good that such
// a folder is not empty.
class eEmptying {
public:
    explicit eEmptying(ePatience& waiting) : patience(waiting) {}

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

    ePatience& patience;

private:
    bool emptied = true;
    std::vector<bool> above; // likewise for the folders above it
};

// Removes everything in the folder that the system lets go: links themselves, never what they point to. True if nothing
// stays.
inline bool DeleteContents(eFolder& root, ePatience& patience) {
    class eDeletion : public eEmptying {
    public:
        using eEmptying::eEmptying;

        void File(eFolder& folder, const eEntry& entry) {
            Note(patience.Get([&] { return folder.RemoveFile(entry); }));
        }
        void Link(eFolder& folder, const eEntry& entry) {
            Note(patience.Get([&] { return folder.RemoveLink(entry); }));
        }
        void Leave(eFolder& parent, const eEntry& entry, bool entered) {
            // If the folder was replaced by a link after it was listed, the link is removed.
            Note(RemoveFolder(parent, entry, entered) || parent.RemoveLink(entry) == eAnswer::Done);
        }
    };
    eDeletion deletion(patience);
    WalkTree(root, patience, deletion);
    return deletion.Emptied();
}

// Removes the subfolders that contain no file and no link at any depth, deepest first. True if nothing stays.
inline bool PurgeContents(eFolder& root, ePatience& patience) {
    class ePurge : public eEmptying {
    public:
        using eEmptying::eEmptying;

        void File(eFolder&, const eEntry&) { Note(false); }
        void Link(eFolder&, const eEntry&) { Note(false); }
        void Leave(eFolder& parent, const eEntry& entry, bool entered) { Note(RemoveFolder(parent, entry, entered)); }
    };
    ePurge purge(patience);
    WalkTree(root, patience, purge);
    return purge.Emptied();
}

// Copies the content of one folder to another. Subfolders that the target already has are emptied first. If the target
// is below the source, it is not copied into itself. If the system does not recreate a link to a file, the file's
// content is copied; any other such link is left out.
inline void CopyContents(eFolder& source, eFolder& target, ePatience& patience) {
    class eCopy {
    public:
        eCopy(eFolder& root, ePatience& waiting) : targets(root), rootId(root.Id()), patience(waiting) {}

        void File(eFolder& folder, const eEntry& entry) { CopyFile(folder, entry, eNamedLink::Refuse); }

        void Link(eFolder& folder, const eEntry& entry) {
            if (!patience.Get([&] { return folder.CopyLinkTo(targets.Top(), entry); }))
                CopyFile(folder, entry, eNamedLink::Follow);
        }

        bool Enter(eFolder& parent, eFolder& folder, const eEntry& entry) {
            if (AreOneFolder(folder.Id(), rootId))
                return false;
            auto copy = EmptyFolder(parent, entry);
            if (!copy)
                return false;
            targets.Push(std::move(copy));
            return true;
        }

        void Leave(eFolder& parent, const eEntry& entry, bool entered) {
            if (entered)
                targets.Pop();
            else
                EmptyFolder(parent, entry);
        }

    private:
        void CopyFile(eFolder& folder, const eEntry& entry, eNamedLink link) {
            patience.Get([&] { return folder.CopyFileTo(targets.Top(), entry, link); });
        }

        std::unique_ptr<eFolder> EmptyFolder(eFolder& parent, const eEntry& entry) {
            std::unique_ptr<eFolder> folder;
            if (patience.Get([&] { return targets.Top().Make(entry, parent, &folder); }))
                return folder;
            if (patience.Get([&] { return targets.Top().Enter(entry, &folder); }))
                DeleteContents(*folder, patience);
            return folder;
        }

        eFolderStack targets;
        const eFileId rootId;
        ePatience& patience;
    };
    eCopy copy(target, patience);
    WalkTree(source, patience, copy);
}

} // namespace IO::System
