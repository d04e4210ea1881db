#include "../listing.h"

#include "owned_handle.h"
#include "service_calls.h"

namespace IO {

class eSearchHandle {
public:
    explicit eSearchHandle(Platform::eFindHandle opened) : find(std::move(opened)) {}

    HANDLE Get() const { return find.Get(); }

private:
    Platform::eFindHandle find;
};

namespace Platform {

namespace {

template <class Char, class Data>
void Fill(const Data& data, eSearchRecord<Char>* record) {
    record->attributes = data.dwFileAttributes;
    record->size = static_cast<unsigned long long>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
    record->modified.dwLowDateTime = data.ftLastWriteTime.dwLowDateTime;
    record->modified.dwHighDateTime = data.ftLastWriteTime.dwHighDateTime;
    record->name = data.cFileName;
}

} // namespace

template <class Char>
std::shared_ptr<eSearchHandle> FirstEntry(const Char* pattern, eSearchRecord<Char>* record) {
    Calls::eFindData<Char> data;
    eFindHandle found(Calls::FindFirst(pattern, &data));
    if (!found.IsOpen())
        return nullptr;
    Fill(data, record);
    return std::make_shared<eSearchHandle>(std::move(found));
}

template <class Char>
bool NextEntry(eSearchHandle& handle, eSearchRecord<Char>* record) {
    Calls::eFindData<Char> data;
    if (!Calls::FindNext(handle.Get(), &data))
        return false;
    Fill(data, record);
    return true;
}

/// The listing tells everything at once: nothing is ever pending.
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
