#include "platform/posix/entries.h"

#include "platform/posix/descriptor.h"

namespace IO::Platform {

const dirent64* eEntryReader::Next(int folder) {
    if (position == end) {
        if (!buffer)
            buffer = std::make_unique_for_overwrite<std::byte[]>(kBufferSize);
        const ssize_t count = Uninterrupted([&] { return ::getdents64(folder, buffer.get(), kBufferSize); });
        position = 0;
        end = count > 0 ? static_cast<std::size_t>(count) : 0;
        if (end == 0)
            return nullptr;
    }
    const auto* entry = reinterpret_cast<const dirent64*>(buffer.get() + position);
    position += entry->d_reclen;
    return entry;
}

bool IsDots(const char* name) {
    return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

} // namespace IO::Platform
