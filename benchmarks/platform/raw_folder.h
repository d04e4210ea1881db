// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstdint>
#include <string>

namespace bench::platform {

// Folder work through plain system calls, as one would write it by hand for this one purpose. Folder names end in "/".

// Adds up the first letter, plus one, of the name of every file below the folder.
std::uint64_t WalkByHand(const std::string& folder);
// Adds up the sizes of all files below the folder.
std::uint64_t SizesByHand(const std::string& folder);
void CopyByHand(const std::string& from, const std::string& to);
void DeleteByHand(const std::string& folder);
// Removes every folder below this one that contains no file at any depth.
void PurgeByHand(const std::string& folder);

} // namespace bench::platform
