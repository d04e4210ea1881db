// SPDX-License-Identifier: BSL-1.0
#include "document/source.h"

#include <cstring>
#include <utility>

#include "qzl_base/shared/unicode.h"

namespace xSDL {
namespace {

// With the zeros that reading needs. A string that grows may take twice its size, so a longer one is made.
std::string WithEnd(std::string text) {
    if (text.capacity() - text.size() < kTextEnd) {
        std::string longer;
        longer.reserve(text.size() + kTextEnd);
        longer = text;
        text = std::move(longer);
    }
    text.append(kTextEnd, '\0');
    return text;
}

} // namespace

// Fills the index and counts the mistakes.
class eSource::eIndexing {
public:
    explicit eIndexing(eSource& readSource) : source(readSource) {}

    void Open(const char* at) { source.blocks.Open(OffsetOf(at)); }
    void Close(const char* at) { source.blocks.Close(OffsetOf(at)); }
    void Mistake(eMistake what, const char*, const char*) {
        if (what == eMistake::UnendedString || what == eMistake::Unclosed)
            source.openAtEnd = true;
        if (IsWarning(what))
            source.warnings = true;
        else
            ++source.errors;
    }

private:
    std::size_t OffsetOf(const char* at) const { return static_cast<std::size_t>(at - source.At(0)); }

    eSource& source;
};

eSource::eSource(std::string loaded, unsigned long long longestToken, std::size_t mostNarrow)
    : text(WithEnd(std::move(loaded))), longest(longestToken), blocks(Size(), Size() > mostNarrow) {
    begin = text.starts_with(unicode::kByteOrderMark) ? unicode::kByteOrderMark.size() : 0;
    end = std::strlen(At(0));
    eIndexing indexing(*this);
    eStructure structure(indexing, longest);
    structure.Read(At(begin));
    blocks.Finish();
}

} // namespace xSDL
