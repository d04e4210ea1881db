#include "platform/listing.h"

#include <ctime>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>

#include "platform/posix/descriptor.h"
#include "platform/posix/entries.h"
#include "platform/posix/native_name.h"
#include "platform/pure/search_mask.h"

namespace IO {

class eSearchHandle {
public:
    eSearchHandle(Platform::eDescriptor opened, std::string_view maskBytes)
        : folder(std::move(opened)), mask(Platform::WideName(maskBytes)), all(mask.MatchesAll()) {}

    int Folder() const { return folder.Get(); }

    const dirent64* Next() {
        const dirent64* entry = reader.Next(folder.Get());
        while (entry && !all && !mask.Matches(Platform::WideName(entry->d_name)))
            entry = reader.Next(folder.Get());
        return entry;
    }

private:
    Platform::eDescriptor folder;
    eSearchMask mask;
    bool all;
    Platform::eEntryReader reader;
};

namespace Platform {

namespace {

constexpr unsigned int kDirectory = eSearchRecord<char>::Directory;
constexpr unsigned int kLink = eSearchRecord<char>::Link;

eFileTime FileTimeOf(const timespec& time) {
    constexpr unsigned long long kTicksPerSecond = 10'000'000;
    constexpr unsigned long long kSecondsFrom1601To1970 = 11'644'473'600;
    const auto seconds = static_cast<unsigned long long>(time.tv_sec) + kSecondsFrom1601To1970;
    return eFileTime::FromTicks(seconds * kTicksPerSecond + static_cast<unsigned long long>(time.tv_nsec) / 100);
}

template <class Char>
void Fill(const dirent64& entry, eSearchRecord<Char>* record) {
    record->attributes = entry.d_type == DT_DIR ? kDirectory : 0;
    record->kindPending = entry.d_type == DT_LNK || entry.d_type == DT_UNKNOWN;
    record->detailsPending = true;
    record->size = 0;
    record->modified = {};
    if constexpr (sizeof(Char) == 1)
        record->name.assign(entry.d_name);
    else
        record->name = WideName(entry.d_name);
}

template <class Char>
bool FillNext(eSearchHandle& handle, eSearchRecord<Char>* record) {
    const dirent64* entry = handle.Next();
    if (entry)
        Fill(*entry, record);
    return entry != nullptr;
}

template <class Char>
bool Ask(const eSearchHandle& handle, const eSearchRecord<Char>& record, int flags, struct stat* status) {
    const eNativeName name(record.name.c_str());
    return Uninterrupted([&] { return ::fstatat(handle.Folder(), name.c_str(), status, flags); }) == 0;
}

} // namespace

template <class Char>
std::shared_ptr<eSearchHandle> FirstEntry(const Char* pattern, eSearchRecord<Char>* record) {
    const eNativeName native(pattern);
    const eSearchPattern<char> halves(native.c_str());
    const std::string name = halves.folder.empty() ? "." : std::string(halves.folder);
    eDescriptor opened(Uninterrupted([&] { return ::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (!opened.IsOpen())
        return nullptr;
    auto handle = std::make_shared<eSearchHandle>(std::move(opened), halves.mask);
    return FillNext(*handle, record) ? handle : nullptr;
}

template <class Char>
bool NextEntry(eSearchHandle& handle, eSearchRecord<Char>* record) {
    return FillNext(handle, record);
}

template <class Char>
void CompleteKind(eSearchHandle& handle, eSearchRecord<Char>* record) {
    record->kindPending = false;
    struct stat own {
    }, target{};
    if (!Ask(handle, *record, AT_SYMLINK_NOFOLLOW, &own))
        return;
    const bool isLink = S_ISLNK(own.st_mode);
    const bool isFolder = isLink ? Ask(handle, *record, 0, &target) && S_ISDIR(target.st_mode) : S_ISDIR(own.st_mode);
    record->attributes = (isLink ? kLink : 0) | (isFolder ? kDirectory : 0);
}

template <class Char>
void CompleteDetails(eSearchHandle& handle, eSearchRecord<Char>* record) {
    record->detailsPending = false;
    struct stat own {};
    if (!Ask(handle, *record, AT_SYMLINK_NOFOLLOW, &own))
        return;
    record->size = S_ISREG(own.st_mode) ? static_cast<unsigned long long>(own.st_size) : 0;
    record->modified = FileTimeOf(own.st_mtim);
}

template std::shared_ptr<eSearchHandle> FirstEntry(const char*, eSearchRecord<char>*);
template std::shared_ptr<eSearchHandle> FirstEntry(const wchar_t*, eSearchRecord<wchar_t>*);
template bool NextEntry(eSearchHandle&, eSearchRecord<char>*);
template bool NextEntry(eSearchHandle&, eSearchRecord<wchar_t>*);
template void CompleteKind(eSearchHandle&, eSearchRecord<char>*);
template void CompleteKind(eSearchHandle&, eSearchRecord<wchar_t>*);
template void CompleteDetails(eSearchHandle&, eSearchRecord<char>*);
template void CompleteDetails(eSearchHandle&, eSearchRecord<wchar_t>*);

} // namespace Platform

} // namespace IO
