// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <qzl_io/sdl/limits.h>

#include "document/block_index.h"
#include "document/structure.h"

namespace xSDL {

// A place in one of the texts of which a document consists.
struct eSpot {
    std::uint64_t source = 0;
    std::uint64_t offset = 0;

    auto operator<=>(const eSpot&) const = default; // NOLINT(modernize-use-nullptr): the comparison with 0 is its own
};

// A text that does not change, and its brackets.
class eSource {
public:
    // The offsets of the brackets in a text have 4 bytes up to this size.
    static constexpr std::size_t kMostNarrow = 0xFFFFFFF0;

    // The text as it was loaded: with a byte-order mark, up to its first NUL.
    explicit eSource(std::string loaded, unsigned long long longestToken = eSDLLimits::kNone,
                     std::size_t mostNarrow = kMostNarrow);

    // The text that is read, without a byte-order mark, and the end of it.
    std::size_t Begin() const { return begin; }
    std::size_t End() const { return end; }
    // All bytes. Behind them are the zeros that reading needs.
    std::size_t Size() const { return text.size() - kTextEnd; }
    const char* At(std::size_t offset) const { return text.data() + offset; }
    std::string_view Bytes(std::size_t from, std::size_t to) const { return {text.data() + from, to - from}; }

    // For a text without brackets, an index of none.
    const eBlockIndex& Blocks() const { return blocks; }

    std::size_t ErrorCount() const { return errors; }
    bool HasWarnings() const { return warnings; }
    // Whether what is written after the text would be in a string, or in a block that is not closed.
    bool IsOpenAtEnd() const { return openAtEnd; }
    unsigned long long LongestToken() const { return longest; }

private:
    class eIndexing;

    std::string text;
    std::size_t begin = 0;
    std::size_t end = 0;
    unsigned long long longest;
    eBlockIndex blocks;
    std::size_t errors = 0;
    bool warnings = false;
    bool openAtEnd = false;
};

} // namespace xSDL
