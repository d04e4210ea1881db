// SPDX-License-Identifier: BSL-1.0
#include "streams/read_text.h"

#include <algorithm>

#include "platform/memory.h"

namespace {

// The text is read in pieces, so that the zeros of the next piece are still in the cache when the bytes arrive.
constexpr std::size_t kPiece = std::size_t{64} * 1024;

} // namespace

namespace IO {

std::string EmptyText(std::size_t capacity) {
    std::string text;
    text.reserve(capacity);
    Platform::PreferLargePages(text.data(), capacity);
    return text;
}

std::string ReadText(eStream& stream, std::size_t size, std::size_t room) {
    std::string text = EmptyText(size + room);
    auto done = static_cast<std::size_t>(stream.AppendTo(&text, size));
    while (done < size && stream.Disabled(StreamMode::Bad)) {
        const std::size_t piece = std::min(size - done, kPiece);
        text.resize(done + piece);
        stream.Read(text.data() + done, piece);
        done += piece;
    }
    return text;
}

} // namespace IO
