#include <qzl_io/system/search.h>

#include "platform/listing.h"

namespace IO::SearchSteps {

std::shared_ptr<eSearchHandle> First(const char* pattern, eSearchRecord<char>* record) {
    return Platform::FirstEntry(pattern, record);
}
std::shared_ptr<eSearchHandle> First(const wchar_t* pattern, eSearchRecord<wchar_t>* record) {
    return Platform::FirstEntry(pattern, record);
}

bool Next(eSearchHandle* handle, eSearchRecord<char>* record) {
    return handle && Platform::NextEntry(*handle, record);
}
bool Next(eSearchHandle* handle, eSearchRecord<wchar_t>* record) {
    return handle && Platform::NextEntry(*handle, record);
}

void AskKind(eSearchHandle* handle, eSearchRecord<char>* record) {
    Platform::CompleteKind(*handle, record);
}
void AskKind(eSearchHandle* handle, eSearchRecord<wchar_t>* record) {
    Platform::CompleteKind(*handle, record);
}
void AskDetails(eSearchHandle* handle, eSearchRecord<char>* record) {
    Platform::CompleteDetails(*handle, record);
}
void AskDetails(eSearchHandle* handle, eSearchRecord<wchar_t>* record) {
    Platform::CompleteDetails(*handle, record);
}

} // namespace IO::SearchSteps
