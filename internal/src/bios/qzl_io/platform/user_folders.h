// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

// The places of the current user's files.

namespace IO::Platform {

// What FolderOfUser is asked for, in the order of the public enumeration.
enum eFolderOfUser : int { kSettingsFolder, kDataFolder, kCacheFolder, kTemporaryFolder, kDocumentsFolder };

// The folder's name by the system's rules; empty if it tells none.
std::wstring FolderOfUser(int folder);

// The bytes on the volume of a file or folder: those free for this user, and all. False, with nothing written, if the
// name does not exist or the system does not tell.
template <class Char>
bool AskSpace(const Char* name, unsigned long long* free, unsigned long long* total);

} // namespace IO::Platform
