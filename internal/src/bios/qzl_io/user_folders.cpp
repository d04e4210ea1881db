// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/system/user_folders.h>

#include "files/whole_name.h"
#include "platform/names.h"
#include "platform/user_folders.h"

namespace IO::System {

namespace {

template <class Name>
Name AsPath(const Name& folder) {
    return folder.empty() ? folder : folder.GetPath();
}

template <class Name>
bool AskSpace(const Name& name, eSpace* space) {
    const Name forward(name);
    return Platform::AskSpace(WholeText(forward), &space->free, &space->total);
}

} // namespace

eFileName UserFolder(eUserFolder folder) {
    return AsPath(eFileName(Platform::NarrowedName(Platform::FolderOfUser(static_cast<int>(folder)))));
}

eFileNameW UserFolderW(eUserFolder folder) {
    return AsPath(eFileNameW(Platform::FolderOfUser(static_cast<int>(folder))));
}

bool GetSpace(const eFileName& name, eSpace* space) {
    return AskSpace(name, space);
}

bool GetSpaceW(const eFileNameW& name, eSpace* space) {
    return AskSpace(name, space);
}

} // namespace IO::System
