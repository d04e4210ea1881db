// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include <windows.h>

#include "platform/pure/file_id.h"

namespace IO::Platform {

// The identity by the volume's and the file's numbers only, of 128 bits if the file system has them.
eFileId NumberedId(HANDLE file) noexcept;

// The identity, with the final name if the folder has no number.
eFileId FolderId(HANDLE folder);

// The file's name in extended form, with all links and substituted drives followed; empty if the system does not tell
// it.
std::wstring FinalName(HANDLE file);

} // namespace IO::Platform
