#pragma once

#include <memory>

#include <qzl_io/system/search.h>

namespace IO::Platform {

// Begins to list what matches a pattern and fills the record of the first entry. Null when there is none.
template <class Char>
std::shared_ptr<eSearchHandle> FirstEntry(const Char* pattern, eSearchRecord<Char>* record);

// Fills the record of the next entry; false, and the record left as it is, when there are no more.
template <class Char>
bool NextEntry(eSearchHandle& handle, eSearchRecord<Char>* record);

// Replaces what is pending in the record. What has vanished is a file without size or time.
template <class Char>
void CompleteKind(eSearchHandle& handle, eSearchRecord<Char>* record);
template <class Char>
void CompleteDetails(eSearchHandle& handle, eSearchRecord<Char>* record);

} // namespace IO::Platform
