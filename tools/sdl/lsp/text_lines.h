// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// A place as the protocol counts it: lines from 0, which end in LF, CR LF or CR, and UTF-16 units from 0.
struct ePosition {
    std::size_t line = 0;
    std::size_t unit = 0;

    bool operator==(const ePosition&) const = default;
};

// The lines of a text, to convert places. An ill-formed byte counts as one unit. The text must live as long.
class eTextLines {
public:
    explicit eTextLines(std::string_view linesOf);

    ePosition PositionOf(std::size_t offset) const;

    // The byte at a position; beyond the end of a line its end, beyond the last line the end of the text.
    std::size_t OffsetOf(ePosition position) const;

    std::size_t Count() const { return begins.size(); }
    // The place where the line ends, before its line feed or carriage return.
    std::size_t EndOf(std::size_t line) const;

private:
    std::string_view text;
    std::vector<std::size_t> begins; // of the lines
};
