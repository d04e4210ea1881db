// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

namespace IO::Platform {

// Copies the access rights and the named streams of one file to another, by names as the system takes them. Owner,
// compression and encryption are not copied. False, with the reason noted, if something could not be copied; true on a
// volume that has no rights and streams.
bool TakeRightsAndStreams(const std::wstring& from, const std::wstring& to);

} // namespace IO::Platform
