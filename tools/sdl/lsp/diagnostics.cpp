// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <string>

#include "lsp/features.h"

namespace {

using nlohmann::json;

constexpr std::size_t kMost = 1000; // an editor shows no more in a way that helps

constexpr int kError = 1;
constexpr int kWarning = 2;

std::string MessageOf(const xError::eDiagnostic& diagnostic) {
    std::string message = diagnostic.message;
    if (!diagnostic.expected.empty())
        message += "\nexpected " + diagnostic.expected;
    if (!diagnostic.found.empty())
        message += (diagnostic.expected.empty() ? "\nfound " : ", found ") + diagnostic.found;
    if (!diagnostic.suggestion.empty())
        message += "\ndid you mean '" + diagnostic.suggestion + "'?";
    return message;
}

// An excerpt shows ill-formed bytes as longer characters, so its mark may be longer than what is meant.
json RangeOf(const eOpenText& text, const xError::eExcerpt& excerpt) {
    const auto begin = static_cast<std::size_t>(std::min<unsigned long long>(excerpt.place.offset, text.Text().size()));
    const std::size_t line = text.Lines().PositionOf(begin).line;
    const std::size_t marked = std::max<std::size_t>(excerpt.markEnd - excerpt.markBegin, 1);
    return RangeOf(text, begin, std::max(begin, std::min(begin + marked, text.Lines().EndOf(line))));
}

json NotesOf(const eOpenText& text, const xError::eDiagnostic& diagnostic) {
    json notes = json::array();
    for (const xError::eDiagnostic::eNote& note : diagnostic.notes)
        notes.push_back(
            {{"location", {{"uri", text.Uri()}, {"range", RangeOf(text, note.excerpt)}}}, {"message", note.message}});
    return notes;
}

} // namespace

json DiagnosticsOf(const eOpenText& text) {
    json all = json::array();
    const eSDLSchema* const schema = text.Schema();
    for (const xError::eDiagnostic& diagnostic :
         schema ? schema->Check(text.Document(), kMost) : text.Document().Errors(kMost)) {
        const bool isError = diagnostic.severity == xError::eDiagnostic::eSeverity::Error;
        all.push_back({{"range", RangeOf(text, diagnostic.excerpt)},
                       {"severity", isError ? kError : kWarning},
                       {"source", "sdl"},
                       {"message", MessageOf(diagnostic)},
                       {"relatedInformation", NotesOf(text, diagnostic)}});
    }
    return all;
}
