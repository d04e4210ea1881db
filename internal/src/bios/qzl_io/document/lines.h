// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include <qzl_base/diagnostic.h>

#include "document/source.h"
#include "sdl/excerpt.h"
#include "sdl/line_finder.h"

namespace xSDL {

// The lines of a text, for places in it. The first place costs time for the whole text, all others hardly any, however
// long a line is.
class eLines {
public:
    explicit eLines(const eSource& itsSource) : source(itsSource) {}

    // The place with its line, in which so many bytes are marked. A byte-order mark is not part of the first line.
    xError::eExcerpt Excerpt(const std::string& name, std::size_t offset, std::size_t length) const {
        const std::string_view text = source.Bytes(source.Begin(), source.Size());
        const std::size_t at = std::max(offset, source.Begin()) - source.Begin();
        const eInLine inLine = finder.Find(text, at);
        const std::size_t feeds = finder.LineFeedsBefore(text, at);
        return ExcerptAt(
            {name, offset, LinesOn(1, feeds), LinesOn(1, inLine.characters), LinesOn(1, at - inLine.lineBegin)}, text,
            inLine.lineBegin, at, length);
    }

private:
    const eSource& source;
    mutable eLineFinder finder;
};

} // namespace xSDL
