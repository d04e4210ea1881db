// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/system/tree_search.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "files/tree.h"
#include "files/whole_name.h"
#include "platform/names.h"
#include "platform/pure/search_mask.h"
#include "platform/unattended.h"

namespace IO {

namespace {

std::wstring WideMask(const std::string& mask) {
    return Platform::WidenedName(mask);
}
const std::wstring& WideMask(const std::wstring& mask) {
    return mask;
}

} // namespace

// The place of a search in its tree.
template <class Char, class FileName>
class eTreeSearchOf<Char, FileName>::eWalk {
public:
    using eText = std::basic_string<Char>;

    eWalk(const FileName& folder, std::span<const FileName> wanted) : start(folder.GetPath()) {
        for (const FileName& mask : wanted)
            masks.emplace_back(WideMask(mask.str()));
        matchesAll = std::any_of(masks.begin(), masks.end(), [](const auto& mask) { return mask.MatchesAll(); });
        if (!folder.empty() && System::IsWhole(start.str()))
            patience.Get([&] { return Platform::OpenFolder(start.c_str(), Platform::eNamedLink::Follow, &root); });
        unread = root ? 0 : 1;
        if (root)
            folders = std::make_unique<System::eFolderStack>(*root);
        Next();
    }

    bool Valid() const { return valid; }
    void Skip() { entered = true; }

    void Next() {
        const Platform::eUnattended unattended;
        valid = folders != nullptr;
        while (valid) {
            if (!std::exchange(entered, true))
                GoDown();
            valid = FindEntry();
            if (valid && IsWanted())
                return;
        }
        path.clear();
    }

    Platform::eEntryKind Kind() const { return entry.kind; }
    Platform::eEntryFacts Facts() { return folders->Top().Facts(entry); }
    const Char* Name() const { return path.c_str() + above.size(); }
    const eText& Path() const { return path; }
    FileName FullName() const { return FileName(start.str() + path); }
    std::size_t Depth() const { return depths.size(); }
    unsigned long long Unread() const { return unread; }

private:
    // The next entry that has a name of this width.
    bool FindEntry() {
        for (;;) {
            path = above;
            if (!folders->Top().Next(&entry)) {
                if (!GoUp())
                    return false;
                continue;
            }
            if (!AppendName())
                continue;
            entered = entry.kind != Platform::eEntryKind::Folder;
            return true;
        }
    }

    bool AppendName() {
        eText name;
        bool reachable = true;
        if constexpr (sizeof(Char) == 1)
            reachable = folders->Top().ReachableName(entry, &name);
        else
            Platform::EntryText(entry, &name);
        path += name;
        return reachable;
    }

    bool IsWanted() const {
        if (matchesAll)
            return true;
        std::wstring name;
        Platform::EntryText(entry, &name);
        return std::any_of(masks.begin(), masks.end(), [&](const auto& mask) { return mask.Matches(name); });
    }

    void GoDown() {
        std::unique_ptr<Platform::eFolder> folder;
        if (!patience.Get([&] { return folders->Top().Enter(entry, &folder); })) {
            ++unread;
            return;
        }
        folders->Push(std::move(folder));
        depths.push_back(above.size());
        above = path + Char('/');
    }

    bool GoUp() {
        unread += !folders->Top().IsListedWhole();
        if (folders->AtRoot())
            return false;
        folders->Pop();
        above.resize(depths.back());
        depths.pop_back();
        return true;
    }

    const FileName start;
    std::vector<eSearchMask> masks;
    bool matchesAll = false;
    System::ePatience patience;
    std::unique_ptr<Platform::eFolder> root;
    std::unique_ptr<System::eFolderStack> folders;
    Platform::eEntry entry;
    eText above;                     // the folder of the entry, below the start, with its "/"
    eText path;                      // and with the entry's name
    std::vector<std::size_t> depths; // the lengths of the folders above that one
    unsigned long long unread = 0;
    bool entered = true; // the entry is no folder, or has been entered, or is to be skipped
    bool valid = false;
};

template <class Char, class FileName>
eTreeSearchOf<Char, FileName>::eTreeSearchOf(const FileName& folder, const FileName& mask)
    : eTreeSearchOf(folder, std::span<const FileName>(&mask, 1)) {}

template <class Char, class FileName>
eTreeSearchOf<Char, FileName>::eTreeSearchOf(const FileName& folder, std::initializer_list<FileName> masks)
    : eTreeSearchOf(folder, std::span<const FileName>(masks.begin(), masks.size())) {}

template <class Char, class FileName>
eTreeSearchOf<Char, FileName>::eTreeSearchOf(const FileName& folder, std::span<const FileName> masks)
    : walk(std::make_unique<eWalk>(FileName(folder), masks)) {}

template <class Char, class FileName>
eTreeSearchOf<Char, FileName>::eTreeSearchOf(eTreeSearchOf&& other) noexcept = default;

template <class Char, class FileName>
eTreeSearchOf<Char, FileName>& eTreeSearchOf<Char, FileName>::operator=(eTreeSearchOf&& other) noexcept = default;

template <class Char, class FileName>
eTreeSearchOf<Char, FileName>::~eTreeSearchOf() = default;

template <class Char, class FileName>
bool eTreeSearchOf<Char, FileName>::Valid() const noexcept {
    return walk && walk->Valid();
}

template <class Char, class FileName>
void eTreeSearchOf<Char, FileName>::Next() {
    if (Valid())
        walk->Next();
}

template <class Char, class FileName>
void eTreeSearchOf<Char, FileName>::Skip() noexcept {
    if (walk)
        walk->Skip();
}

template <class Char, class FileName>
bool eTreeSearchOf<Char, FileName>::IsFile() const {
    return Valid() && !IsSubfolder();
}

template <class Char, class FileName>
bool eTreeSearchOf<Char, FileName>::IsSubfolder() const {
    if (!Valid())
        return false;
    return IsLink() ? walk->Facts().isFolder : walk->Kind() == Platform::eEntryKind::Folder;
}

template <class Char, class FileName>
bool eTreeSearchOf<Char, FileName>::IsLink() const {
    return Valid() && walk->Kind() == Platform::eEntryKind::Link;
}

template <class Char, class FileName>
const Char* eTreeSearchOf<Char, FileName>::Name() const {
    static constexpr Char kNone[] = {Char()};
    return Valid() ? walk->Name() : kNone;
}

template <class Char, class FileName>
const std::basic_string<Char>& eTreeSearchOf<Char, FileName>::Path() const {
    static const eText none;
    return Valid() ? walk->Path() : none;
}

template <class Char, class FileName>
FileName eTreeSearchOf<Char, FileName>::FullName() const {
    return Valid() ? walk->FullName() : FileName();
}

template <class Char, class FileName>
std::size_t eTreeSearchOf<Char, FileName>::Depth() const {
    return Valid() ? walk->Depth() : 0;
}

template <class Char, class FileName>
unsigned long long eTreeSearchOf<Char, FileName>::Size() const {
    return Valid() ? walk->Facts().size : 0;
}

template <class Char, class FileName>
eFileTime eTreeSearchOf<Char, FileName>::ModifyTime() const {
    return eFileTime::FromTicks(Valid() ? walk->Facts().modified : 0);
}

template <class Char, class FileName>
unsigned long long eTreeSearchOf<Char, FileName>::Unread() const {
    return walk ? walk->Unread() : 0;
}

template class eTreeSearchOf<char, eFileName>;
template class eTreeSearchOf<wchar_t, eFileNameW>;

} // namespace IO
