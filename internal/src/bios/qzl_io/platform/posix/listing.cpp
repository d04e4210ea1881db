// SPDX-License-Identifier: BSL-1.0
#include "platform/listing.h"

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

#include "platform/posix/descriptor.h"
#include "platform/posix/entries.h"
#include "platform/posix/file_time.h"
#include "platform/posix/native_name.h"
#include "platform/pure/search_mask.h"

namespace IO::Platform {

class eListing {
public:
    eListing(eDescriptor opened, std::string_view maskBytes)
        : folder(std::move(opened)), mask(WideName(maskBytes)), all(mask.MatchesAll()) {}

    int Folder() const { return folder.Get(); }

    const dirent64* Next() { return all ? reader.Next(folder.Get()) : NextMatch(); }

private:
    const dirent64* NextMatch();

    eDescriptor folder;
    eSearchMask mask;
    bool all;
    eEntryReader reader;
};

const dirent64* eListing::NextMatch() {
    const dirent64* entry = reader.Next(folder.Get());
    while (entry && !mask.Matches(WideName(entry->d_name)))
        entry = reader.Next(folder.Get());
    return entry;
}

namespace {

void SetName(std::string* name, const char* listed) {
    const std::size_t wanted = std::strlen(listed) + 1;
    if (name->size() < wanted)
        name->resize(wanted);
    std::memcpy(name->data(), listed, wanted);
}

void SetName(std::wstring* name, const char* listed) {
    *name = WideName(listed);
}

template <class Char>
void Fill(const dirent64& listed, eListedEntry<Char>* entry) {
    entry->kindPending = listed.d_type == DT_LNK || listed.d_type == DT_UNKNOWN;
    entry->isFolder = listed.d_type == DT_DIR;
    entry->isLink = false;
    entry->detailsPending = true;
    SetName(&entry->name, listed.d_name);
}

template <class Char>
bool Ask(const eListing& listing, const eListedEntry<Char>& entry, int flags, struct stat* status) {
    const eNativeName name(entry.name.c_str());
    return Uninterrupted([&] { return ::fstatat(listing.Folder(), name.c_str(), status, flags); }) == 0;
}

} // namespace

template <class Char>
std::shared_ptr<eListing> FirstEntry(const Char* pattern, eListedEntry<Char>* entry) {
    const eNativeName native(pattern);
    const eSearchPattern<char> halves(native.c_str());
    const std::string name = halves.folder.empty() ? "." : std::string(halves.folder);
    eDescriptor opened(Uninterrupted([&] { return ::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (!opened.IsOpen())
        return nullptr;
    auto listing = std::make_shared<eListing>(std::move(opened), halves.mask);
    return NextEntry(*listing, entry) ? listing : nullptr;
}

template <class Char>
bool NextEntry(eListing& listing, eListedEntry<Char>* entry) {
    const dirent64* listed = listing.Next();
    if (listed)
        Fill(*listed, entry);
    return listed != nullptr;
}

template <class Char>
void CompleteKind(eListing& listing, eListedEntry<Char>* entry) {
    entry->kindPending = false;
    struct stat own {};
    struct stat target {};
    if (!Ask(listing, *entry, AT_SYMLINK_NOFOLLOW, &own))
        return;
    entry->isLink = S_ISLNK(own.st_mode);
    entry->isFolder =
        entry->isLink ? Ask(listing, *entry, 0, &target) && S_ISDIR(target.st_mode) : S_ISDIR(own.st_mode);
}

template <class Char>
void CompleteDetails(eListing& listing, eListedEntry<Char>* entry) {
    entry->detailsPending = false;
    struct stat own {};
    const bool told = Ask(listing, *entry, AT_SYMLINK_NOFOLLOW, &own);
    entry->size = told && S_ISREG(own.st_mode) ? static_cast<unsigned long long>(own.st_size) : 0;
    entry->modified = told ? TicksOf(own.st_mtim) : 0;
}

template std::shared_ptr<eListing> FirstEntry(const char*, eListedEntry<char>*);
template std::shared_ptr<eListing> FirstEntry(const wchar_t*, eListedEntry<wchar_t>*);
template bool NextEntry(eListing&, eListedEntry<char>*);
template bool NextEntry(eListing&, eListedEntry<wchar_t>*);
template void CompleteKind(eListing&, eListedEntry<char>*);
template void CompleteKind(eListing&, eListedEntry<wchar_t>*);
template void CompleteDetails(eListing&, eListedEntry<char>*);
template void CompleteDetails(eListing&, eListedEntry<wchar_t>*);

} // namespace IO::Platform
