// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include <pwd.h>

namespace IO::Platform {

// A text of the process's user in the system's list of users; empty if it is not there.
std::string UserRecord(char* passwd::*text);

} // namespace IO::Platform
