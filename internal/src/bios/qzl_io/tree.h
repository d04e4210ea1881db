#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "platform/folder.h"

// Walks over folder trees: what is entered, removed and copied, and what is left alone. The walks use no recursion,
// hold a bounded number of folders open and never enter a link.
namespace IO::System {

using Platform::eEntry;
using Platform::eEntryKind;
using Platform::eFolder;
using Platform::eFolderId;

/// The folders from a root, which is the caller's, down to where a walk stands. Only the lowest ones are kept open.
class eFolderStack {
public:
    static constexpr std::size_t keptOpen = 24;

    explicit eFolderStack(eFolder& top) : root(top) {}

    bool AtRoot() const { return below.empty(); }
    eFolder& Top() { return below.empty() ? root : *below.back(); }

    void Push(std::unique_ptr<eFolder> folder) {
        below.push_back(std::move(folder));
        if (below.size() >= keptOpen)
            At(below.size() - keptOpen).Rest();
    }

    void Pop() {
        if (below.size() >= keptOpen)
            At(below.size() - keptOpen).Wake(At(below.size() - keptOpen + 1));
        below.pop_back();
    }

private:
    /// Level 0 is the root.
    eFolder& At(std::size_t level) { return level == 0 ? root : *below[level - 1]; }

    eFolder& root;
    std::vector<std::unique_ptr<eFolder>> below;
};

/// Visits everything below the root, in the order of the listings. The visitor's File and Link are called for those
/// entries; Enter for a subfolder that has been opened, and where that gives false it is left out; Leave when all in
/// the subfolder has been visited, or when it could not be opened.
template <class Visitor>
void WalkTree(eFolder& root, Visitor visitor) {
    eFolderStack folders(root);
    std::vector<eEntry> path;
    const auto goDown = [&](const eEntry& entry) {
        auto folder = folders.Top().Enter(entry);
        if (!folder) {
            visitor.Leave(folders.Top(), entry, false);
        } else if (visitor.Enter(*folder, entry)) {
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

/// Removes everything in the folder that the system lets go; links themselves, never what they point to.
inline void DeleteContents(eFolder& root) {
    struct eDeletion {
        void File(eFolder& folder, const eEntry& entry) { folder.RemoveFile(entry); }
        void Link(eFolder& folder, const eEntry& entry) { folder.RemoveLink(entry); }
        bool Enter(eFolder&, const eEntry&) { return true; }
        void Leave(eFolder& parent, const eEntry& entry, bool) {
            // Exchanged for a link since it was listed: then the link goes.
            if (!parent.RemoveFolder(entry))
                parent.RemoveLink(entry);
        }
    };
    WalkTree(root, eDeletion());
}

/// Removes the subfolders that hold no file and no link anywhere below them, deepest first.
inline void PurgeContents(eFolder& root) {
    struct ePurge {
        void File(eFolder&, const eEntry&) {}
        void Link(eFolder&, const eEntry&) {}
        bool Enter(eFolder&, const eEntry&) { return true; }
        void Leave(eFolder& parent, const eEntry& entry, bool) { parent.RemoveFolder(entry); }
    };
    WalkTree(root, ePurge());
}

/// Copies what one folder holds into another. Subfolders that the target has already are emptied first. Where the
/// target lies below the source it is not copied into itself.
inline void CopyContents(eFolder& source, eFolder& target) {
    class eCopy {
    public:
        explicit eCopy(eFolder& root) : targets(root), rootId(root.Id()) {}

        void File(eFolder& folder, const eEntry& entry) { folder.CopyFileTo(targets.Top(), entry); }
        void Link(eFolder& folder, const eEntry& entry) { folder.CopyLinkTo(targets.Top(), entry); }

        bool Enter(eFolder& folder, const eEntry& entry) {
            if (folder.Id() == rootId)
                return false;
            auto copy = EmptyFolder(entry);
            if (!copy)
                return false;
            targets.Push(std::move(copy));
            return true;
        }

        void Leave(eFolder&, const eEntry& entry, bool entered) {
            if (entered)
                targets.Pop();
            else
                EmptyFolder(entry);
        }

    private:
        std::unique_ptr<eFolder> EmptyFolder(const eEntry& entry) {
            const bool isNew = targets.Top().MakeFolder(entry);
            auto folder = targets.Top().Enter(entry);
            if (folder && !isNew)
                DeleteContents(*folder);
            return folder;
        }

        eFolderStack targets;
        eFolderId rootId;
    };
    WalkTree(source, eCopy(target));
}

} // namespace IO::System
