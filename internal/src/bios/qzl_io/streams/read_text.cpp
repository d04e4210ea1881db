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

bool ReadText(eStream& stream, std::size_t size, std::size_t room, std::string* text) {
    const unsigned long long start = stream.Position();
    const bool wasBad = stream.Enabled(StreamMode::Bad);
    std::size_t done = 0;
    const auto isWhole = [&] {
        const bool failed = stream.Enabled(StreamMode::Bad) && (!wasBad || stream.Failure());
        return !failed && stream.Position() - start == done;
    };
    *text = EmptyText(size + room);
    done = static_cast<std::size_t>(stream.AppendTo(text, size));
    while (done < size && isWhole()) {
        const std::size_t piece = std::min(size - done, kPiece);
        text->resize(done + piece);
        stream.Read(text->data() + done, piece);
        done += piece;
    }
    return isWhole();
}

eFailure FailureOf(const eStream& stream, const char* otherwise) {
    const eFailure failure = stream.Failure();
    return failure ? failure : eFailure{0, otherwise};
}

} // namespace IO
