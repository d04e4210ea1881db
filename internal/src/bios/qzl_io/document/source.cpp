#include "document/source.h"

#include <cstring>
#include <utility>

#include "qzl_base/shared/unicode.h"

namespace xSDL {

// Fills the index and counts the mistakes.
class eSource::eIndexing {
public:
    explicit eIndexing(eSource& readSource) : source(readSource) {}

    void Open(const char* at) { source.blocks.Open(OffsetOf(at)); }
    void Close(const char* at) { source.blocks.Close(OffsetOf(at)); }
    void Mistake(eMistake what, const char*, const char*) {
        if (IsWarning(what))
            source.warnings = true;
        else
            ++source.errors;
    }

private:
    std::uint64_t OffsetOf(const char* at) const { return static_cast<std::uint64_t>(at - source.At(0)); }

    eSource& source;
};

eSource::eSource(std::string loaded, unsigned long long longestToken, std::size_t mostNarrow)
    : text(std::move(loaded)), longest(longestToken), blocks(text.size(), text.size() > mostNarrow) {
    begin = text.starts_with(unicode::kByteOrderMark) ? unicode::kByteOrderMark.size() : 0;
    text.append(kTextEnd, '\0');
    end = std::strlen(At(0));
    eIndexing indexing(*this);
    eStructure structure(indexing, longest);
    structure.Read(At(begin));
    blocks.Finish();
}

} // namespace xSDL
