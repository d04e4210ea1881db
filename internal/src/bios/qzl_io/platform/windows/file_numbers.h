#pragma once

#include <windows.h>

#include "platform/pure/file_id.h"

namespace IO::Platform {

// By the volume's and the file's numbers alone; of 128 bits where the file system has such.
eFileId NumberedId(HANDLE file) noexcept;

// With its final name where the folder has no number.
eFileId FolderId(HANDLE folder);

} // namespace IO::Platform
