#include <qzl_io/system/file.h>

#include "platform/files.h"

namespace IO::System {

namespace {

template <class Name>
bool CopyFile(const Name& from, const Name& to) {
    if (!Platform::MayAccess(from.c_str(), File::Exist))
        return false;
    Platform::CopyWhole(from.c_str(), to.c_str());
    return true;
}

template <class Name>
bool CopyFileStoppable(const Name& from, const Name& to, const bool* cancel) {
    if (!Platform::MayAccess(from.c_str(), File::Exist))
        return false;
    Platform::CopyStoppable(from.c_str(), to.c_str(), cancel);
    return true;
}

} // namespace

namespace File {

bool Access(const eFileName& name, eAccessMode mode) {
    return Platform::MayAccess(name.c_str(), mode);
}
bool Copy(const eFileName& from, const eFileName& to) {
    return CopyFile(from, to);
}
bool CopyEx(const eFileName& from, const eFileName& to, bool* cancel) {
    return CopyFileStoppable(from, to, cancel);
}
bool Delete(const eFileName& name) {
    return Platform::EraseFile(name.c_str());
}
bool Rename(const eFileName& from, const eFileName& to) {
    return Platform::RenameFile(from.c_str(), to.c_str());
}
unsigned long long Size(const eFileName& name) {
    return Platform::FileSize(name.c_str());
}

} // namespace File

namespace FileW {

bool Access(const eFileNameW& name, eAccessMode mode) {
    return Platform::MayAccess(name.c_str(), mode);
}
bool Copy(const eFileNameW& from, const eFileNameW& to) {
    return CopyFile(from, to);
}
bool CopyEx(const eFileNameW& from, const eFileNameW& to, bool* cancel) {
    return CopyFileStoppable(from, to, cancel);
}
bool Delete(const eFileNameW& name) {
    return Platform::EraseFile(name.c_str());
}
unsigned long long Size(const eFileNameW& name) {
    return Platform::FileSize(name.c_str());
}

} // namespace FileW

} // namespace IO::System
