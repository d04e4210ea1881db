// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <qzl_io/export.h>
#include <qzl_io/file_name.h>

namespace IO::System {

// Where the system wants the files of its current user. An application makes a folder of its own name in the first
// three, which all applications share.
//
// | folder    | Windows                       | Linux                                                           |
// |-----------|-------------------------------|-----------------------------------------------------------------|
// | Settings  | AppData/Roaming               | $XDG_CONFIG_HOME, else ~/.config                                |
// | Data      | AppData/Local                 | $XDG_DATA_HOME, else ~/.local/share                             |
// | Cache     | AppData/Local                 | $XDG_CACHE_HOME, else ~/.cache                                  |
// | Temporary | the folder of the environment | $TMPDIR, else /tmp                                              |
// | Documents | Documents                     | XDG_DOCUMENTS_DIR of user-dirs.dirs in the settings, else ~     |
//
// On Windows the first three and Documents are its known folders, wherever the user has moved them. On Linux a variable
// that is not an absolute name counts as missing, and ~ is $HOME or the folder in the system's list of users.
enum class eUserFolder : int {
    Settings,
    Data,
    Cache,     // what can be made anew
    Temporary, // shared with other users on Linux: create files there under names that nobody can guess
    Documents,
};

// The folder with forward slashes and a "/" at its end. It need not exist, and nothing is created. Empty if the system
// does not tell it, and on Windows if no narrow name leads to it.
QZL_IO_API eFileName UserFolder(eUserFolder folder);
QZL_IO_API eFileNameW UserFolderW(eUserFolder folder);

// The room on the volume of a file or folder, in bytes.
struct eSpace {
    unsigned long long free = 0; // for this user
    unsigned long long total = 0;
};

// Asks for the room. False, with nothing written, if the name does not exist or the system does not tell.
QZL_IO_API bool GetSpace(const eFileName& name, eSpace* space);
QZL_IO_API bool GetSpaceW(const eFileNameW& name, eSpace* space);

} // namespace IO::System
