#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <qzl_base/diagnostic.h>

#include "document/source.h"

namespace xSDL {

// The lines of a text, for places in it. The first place costs time for the whole text, all others hardly any, however
// long a line is.
class eLines {
public:
    explicit eLines(const eSource& itsSource) : source(itsSource) {}

    xError::ePlace Place(const std::string& name, std::size_t offset) const;
    // The place with its line, in which so many bytes are marked.
    xError::eExcerpt Excerpt(const std::string& name, std::size_t offset, std::size_t length) const;

private:
    // What is known of one place in each part of the text.
    struct eKnown {
        std::size_t offset = 0;     // where a character begins
        std::size_t lineFeeds = 0;  // before it
        std::size_t lineBegin = 0;  // of its line
        std::size_t characters = 0; // of its line before it
    };

    static xError::ePlace PlaceOf(const std::string& name, std::size_t offset, const eKnown& at);
    void Know() const;
    eKnown From(const eKnown& known, std::size_t offset) const;
    eKnown At(std::size_t offset) const;

    const eSource& source;
    mutable std::vector<eKnown> known;
};

} // namespace xSDL
