// SPDX-License-Identifier: BSL-1.0
#include "platform/posix/entries.h"

#include "platform/posix/descriptor.h"

namespace IO::Platform {

bool eEntryReader::Fill(int folder) {
    if (!buffer)
        buffer = std::make_unique_for_overwrite<std::byte[]>(kBufferSize);
    const ssize_t count = Uninterrupted([&] { return ::getdents64(folder, buffer.get(), kBufferSize); });
    failure = count < 0 ? errno : 0;
    position = 0;
    end = count > 0 ? static_cast<std::size_t>(count) : 0;
    return end != 0;
}

} // namespace IO::Platform
