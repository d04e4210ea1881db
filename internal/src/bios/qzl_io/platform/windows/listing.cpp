#include "platform/listing.h"

#include <windows.h>

#include "platform/pure/listed_kind.h"
#include "platform/unattended.h"
#include "platform/windows/native_name.h"
#include "platform/windows/owned_handle.h"

namespace IO {

class eSearchHandle {
public:
    explicit eSearchHandle(Platform::eFindHandle opened) : find(std::move(opened)) {}

    bool IsOpen() const { return find.IsOpen(); }
    HANDLE Get() const { return find.Get(); }

private:
    Platform::eFindHandle find;
};

namespace Platform {

namespace {

// False for an entry without a name of this width.
template <class Char>
bool Fill(const WIN32_FIND_DATAW& data, eSearchRecord<Char>* record) {
    if (!ListedName(data, &record->name))
        return false;
    const bool isLink = IsListedLink(data.dwFileAttributes, data.dwReserved0);
    record->attributes =
        (data.dwFileAttributes & ~eSearchRecord<Char>::Link) | (isLink ? eSearchRecord<Char>::Link : 0);
    record->size = static_cast<unsigned long long>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
    record->modified.dwLowDateTime = data.ftLastWriteTime.dwLowDateTime;
    record->modified.dwHighDateTime = data.ftLastWriteTime.dwHighDateTime;
    return true;
}

} // namespace

template <class Char>
std::shared_ptr<eSearchHandle> FirstEntry(const Char* pattern, eSearchRecord<Char>* record) {
    const eUnattended unattended;
    WIN32_FIND_DATAW data;
    const auto handle =
        std::make_shared<eSearchHandle>(eFindHandle(::FindFirstFileW(eNativePattern(pattern).c_str(), &data)));
    const bool found = handle->IsOpen() && (Fill(data, record) || NextEntry(*handle, record));
    return found ? handle : nullptr;
}

template <class Char>
bool NextEntry(eSearchHandle& handle, eSearchRecord<Char>* record) {
    const eUnattended unattended;
    WIN32_FIND_DATAW data;
    while (::FindNextFileW(handle.Get(), &data))
        if (Fill(data, record))
            return true;
    return false;
}

// The listing tells everything at once: nothing is ever pending.
template <class Char>
void CompleteKind(eSearchHandle&, eSearchRecord<Char>*) {}

template <class Char>
void CompleteDetails(eSearchHandle&, eSearchRecord<Char>*) {}

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
