// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/system/search.h>

#include <utility>

#include "files/whole_name.h"
#include "platform/listing.h"
#include "platform/pure/entry_kind.h"

namespace IO {

// A place in a listing: the current entry, whose pending facts are queried on demand.
template <class Char, class FileName>
class eSearchOf<Char, FileName>::eCursor {
public:
    using Entry = Platform::eListedEntry<Char>;

    // Null if nothing matches.
    static std::unique_ptr<eCursor> First(const Char* pattern) {
        Entry first;
        auto listing = Platform::FirstEntry(pattern, &first);
        return listing ? std::make_unique<eCursor>(std::move(listing), std::move(first)) : nullptr;
    }

    eCursor(std::shared_ptr<Platform::eListing> opened, Entry first)
        : listing(std::move(opened)), entry(std::move(first)) {}

    std::unique_ptr<eCursor> Copy() { return std::make_unique<eCursor>(listing, (Kind(), Details())); }

    bool Next() { return Platform::NextEntry(*listing, &entry); }

    const Char* Name() const { return entry.name.c_str(); }

    const Entry& Kind() {
        if (entry.kindPending)
            Platform::CompleteKind(*listing, &entry);
        return entry;
    }

    const Entry& Details() {
        if (entry.detailsPending)
            Platform::CompleteDetails(*listing, &entry);
        return entry;
    }

private:
    std::shared_ptr<Platform::eListing> listing;
    Entry entry;
};

template <class Char, class FileName>
eSearchOf<Char, FileName>::eSearchOf(const FileName& folder, const FileName& mask) {
    Begin(folder, mask);
}

template <class Char, class FileName>
eSearchOf<Char, FileName>::eSearchOf(const eSearchOf& other)
    : cursor(other.cursor ? other.cursor->Copy() : nullptr), valid(other.valid) {}

template <class Char, class FileName>
eSearchOf<Char, FileName>::eSearchOf(eSearchOf&& other) noexcept
    : cursor(std::move(other.cursor)), valid(std::exchange(other.valid, false)) {}

template <class Char, class FileName>
eSearchOf<Char, FileName>& eSearchOf<Char, FileName>::operator=(const eSearchOf& other) {
    return *this = eSearchOf(other);
}

template <class Char, class FileName>
eSearchOf<Char, FileName>& eSearchOf<Char, FileName>::operator=(eSearchOf&& other) noexcept {
    if (this != &other) {
        cursor = std::move(other.cursor);
        valid = std::exchange(other.valid, false);
    }
    return *this;
}

template <class Char, class FileName>
eSearchOf<Char, FileName>::~eSearchOf() = default;

template <class Char, class FileName>
void eSearchOf<Char, FileName>::Begin(const FileName& folder, const FileName& mask) {
    End();
    valid = false;
    cursor = eCursor::First(System::WholeText(folder.GetAdd(FileName(mask))));
    valid = cursor != nullptr;
}

template <class Char, class FileName>
void eSearchOf<Char, FileName>::Next() {
    valid = cursor && cursor->Next();
}

template <class Char, class FileName>
void eSearchOf<Char, FileName>::End() {
    cursor.reset();
}

template <class Char, class FileName>
bool eSearchOf<Char, FileName>::IsFile() const {
    return valid && !(cursor && cursor->Kind().isFolder);
}

template <class Char, class FileName>
bool eSearchOf<Char, FileName>::IsSubfolder() const {
    return valid && cursor && cursor->Kind().isFolder && !Platform::IsDots(cursor->Name());
}

template <class Char, class FileName>
bool eSearchOf<Char, FileName>::IsLink() const {
    return valid && cursor && cursor->Kind().isLink;
}

template <class Char, class FileName>
const Char* eSearchOf<Char, FileName>::Name() const {
    static constexpr Char kNone[] = {Char()};
    return cursor ? cursor->Name() : kNone;
}

template <class Char, class FileName>
unsigned long long eSearchOf<Char, FileName>::Size() const {
    return cursor ? cursor->Details().size : 0;
}

template <class Char, class FileName>
eFileTime eSearchOf<Char, FileName>::ModifyTime() const {
    return eFileTime::FromTicks(cursor ? cursor->Details().modified : 0);
}

template class eSearchOf<char, eFileName>;
template class eSearchOf<wchar_t, eFileNameW>;

} // namespace IO
