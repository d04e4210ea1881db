// SPDX-License-Identifier: BSL-1.0
#include "platform/listing.h"

#include <utility>

#include <windows.h>

#include "platform/pure/entry_kind.h"
#include "platform/unattended.h"
#include "platform/windows/find_data.h"
#include "platform/windows/native_name.h"
#include "platform/windows/owned_handle.h"

namespace IO::Platform {

class eListing {
public:
    explicit eListing(eFindHandle opened) : find(std::move(opened)) {}

    bool IsOpen() const { return find.IsOpen(); }
    HANDLE Get() const { return find.Get(); }

private:
    eFindHandle find;
};

namespace {

// False for an entry without a name of this width.
template <class Char>
bool Fill(const WIN32_FIND_DATAW& data, eListedEntry<Char>* entry) {
    if (!ListedName(data, &entry->name))
        return false;
    entry->isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    entry->isLink = IsListedLink(data.dwFileAttributes, data.dwReserved0);
    entry->size = ListedSize(data);
    entry->modified = ListedTime(data);
    return true;
}

} // namespace

template <class Char>
std::shared_ptr<eListing> FirstEntry(const Char* pattern, eListedEntry<Char>* entry) {
    const eUnattended unattended;
    WIN32_FIND_DATAW data;
    const auto listing =
        std::make_shared<eListing>(eFindHandle(::FindFirstFileW(eNativePattern(pattern).c_str(), &data)));
    const bool found = listing->IsOpen() && (Fill(data, entry) || NextEntry(*listing, entry));
    return found ? listing : nullptr;
}

template <class Char>
bool NextEntry(eListing& listing, eListedEntry<Char>* entry) {
    const eUnattended unattended;
    WIN32_FIND_DATAW data;
    while (::FindNextFileW(listing.Get(), &data))
        if (Fill(data, entry))
            return true;
    return false;
}

// The listing contains everything at once: nothing is ever pending.
template <class Char>
void CompleteKind(eListing&, eListedEntry<Char>*) {}

template <class Char>
void CompleteDetails(eListing&, eListedEntry<Char>*) {}

template std::shared_ptr<eListing> FirstEntry(const char*, eListedEntry<char>*);
template std::shared_ptr<eListing> FirstEntry(const wchar_t*, eListedEntry<wchar_t>*);
template bool NextEntry(eListing&, eListedEntry<char>*);
template bool NextEntry(eListing&, eListedEntry<wchar_t>*);
template void CompleteKind(eListing&, eListedEntry<char>*);
template void CompleteKind(eListing&, eListedEntry<wchar_t>*);
template void CompleteDetails(eListing&, eListedEntry<char>*);
template void CompleteDetails(eListing&, eListedEntry<wchar_t>*);

} // namespace IO::Platform
