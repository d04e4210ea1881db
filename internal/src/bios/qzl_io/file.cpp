// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/system/file.h>

#include "files/whole_name.h"
#include "platform/files.h"
#include "platform/pure/patience.h"

namespace IO::System {

namespace {

// A name with forward slashes only; a name from a stream may contain backslashes. Empty for a name that names nothing.
// The name must outlive this object.
template <class Name>
class eForwardName {
public:
    using Text = typename Name::eText;
    using Char = typename Text::value_type;

    explicit eForwardName(const Name& name) : given(name) {
        if (name.str().find(Char('\\')) != Text::npos)
            turned = name;
    }

    const Char* c_str() const { return WholeText(turned.empty() ? given : turned); }

private:
    const Name& given;
    Name turned;
};

template <class Name>
bool CopyFile(const Name& from, const Name& to) {
    const eForwardName source(from);
    const eForwardName target(to);
    if (!Platform::MayAccess(source.c_str(), File::Exist))
        return false;
    Platform::CopyWhole(source.c_str(), target.c_str());
    return true;
}

template <class Name>
bool ReplaceFile(const Name& from, const Name& to) {
    const eForwardName source(from);
    const eForwardName target(to);
    return ePatience().Get([&] { return Platform::RenameOver(source.c_str(), target.c_str()); });
}

template <class Name>
bool CopyFileStoppable(const Name& from, const Name& to, const bool* cancel) {
    const eForwardName source(from);
    const eForwardName target(to);
    if (!Platform::MayAccess(source.c_str(), File::Exist))
        return false;
    Platform::CopyStoppable(source.c_str(), target.c_str(), cancel);
    return true;
}

} // namespace

namespace File {

bool Access(const eFileName& name, eAccessMode mode) {
    return Platform::MayAccess(eForwardName(name).c_str(), mode);
}
bool Copy(const eFileName& from, const eFileName& to) {
    return CopyFile(from, to);
}
bool CopyEx(const eFileName& from, const eFileName& to, bool* cancel) {
    return CopyFileStoppable(from, to, cancel);
}
bool Delete(const eFileName& name) {
    return Platform::EraseFile(eForwardName(name).c_str());
}
bool Rename(const eFileName& from, const eFileName& to) {
    return Platform::RenameFile(eForwardName(from).c_str(), eForwardName(to).c_str());
}
bool Replace(const eFileName& from, const eFileName& to) {
    return ReplaceFile(from, to);
}
unsigned long long Size(const eFileName& name) {
    return Platform::FileSize(eForwardName(name).c_str());
}

} // namespace File

namespace FileW {

bool Access(const eFileNameW& name, eAccessMode mode) {
    return Platform::MayAccess(eForwardName(name).c_str(), mode);
}
bool Copy(const eFileNameW& from, const eFileNameW& to) {
    return CopyFile(from, to);
}
bool CopyEx(const eFileNameW& from, const eFileNameW& to, bool* cancel) {
    return CopyFileStoppable(from, to, cancel);
}
bool Delete(const eFileNameW& name) {
    return Platform::EraseFile(eForwardName(name).c_str());
}
bool Rename(const eFileNameW& from, const eFileNameW& to) {
    return Platform::RenameFile(eForwardName(from).c_str(), eForwardName(to).c_str());
}
bool Replace(const eFileNameW& from, const eFileNameW& to) {
    return ReplaceFile(from, to);
}
unsigned long long Size(const eFileNameW& name) {
    return Platform::FileSize(eForwardName(name).c_str());
}

} // namespace FileW

} // namespace IO::System
