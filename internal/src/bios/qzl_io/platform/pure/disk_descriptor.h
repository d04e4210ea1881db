// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>

// Answers of devices to a query for the serial number. Nothing in them can be trusted.

namespace IO::System {

// The text in a storage device descriptor to which the little-endian offset at byte 24 points, up to its zero or the
// end of the bytes. Empty if the offset is 0, beyond the bytes, or missing.
inline std::string SerialInDescriptor(std::span<const unsigned char> descriptor) {
    constexpr std::size_t kOffsetAt = 24;
    constexpr std::size_t kOffsetSize = 4;
    if (descriptor.size() < kOffsetAt + kOffsetSize)
        return {};
    std::size_t offset = 0;
    for (std::size_t byte = kOffsetSize; byte-- > 0;)
        offset = offset << 8 | descriptor[kOffsetAt + byte];
    if (offset == 0 || offset >= descriptor.size())
        return {};
    const auto text = descriptor.subspan(offset);
    return {text.begin(), std::find(text.begin(), text.end(), 0)};
}

// The text in a disk's page 0x80, up to a zero: its big-endian length is at byte 2, its characters start at byte 4.
inline std::string SerialInPage80(std::span<const unsigned char> page) {
    constexpr std::size_t kTextAt = 4;
    if (page.size() < kTextAt || page[1] != 0x80)
        return {};
    const auto length = static_cast<std::size_t>(page[2] << 8 | page[3]);
    const auto text = page.subspan(kTextAt, std::min(length, page.size() - kTextAt));
    return {text.begin(), std::find(text.begin(), text.end(), 0)};
}

} // namespace IO::System
