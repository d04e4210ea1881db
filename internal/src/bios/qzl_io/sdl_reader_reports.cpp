// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/reader.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include <qzl_base/error.h>
#include <qzl_base/format.h>
#include <qzl_base/stack_entry.h>

#include "sdl/current_token.h"
#include "sdl/excerpt.h"
#include "sdl/nearest.h"
#include "sdl_reader_checks.h"

// What a reader tells of places, and its reports.

namespace {

constexpr const char* kSource = "internal/src/bios/qzl_io/sdl_reader";

constexpr int kSignatureMismatchLine = 20;
constexpr int kBlockIdentifierLine = 257;
constexpr int kTokenLine = 537;
constexpr int kRangeLine = 620;
constexpr int kNameLine = 630;
constexpr int kComplaintLine = 640;

using eNote = xError::eDiagnostic::eNote;

// Of a text that may be a whole source, what a message shows.
std::string BeginningOf(std::string_view text, std::size_t most = 100) {
    std::string shown(text.substr(0, most));
    if (text.size() > most)
        shown += "...";
    return shown;
}

const char* NameOf(eSDLParserLexType type) {
    switch (type) {
    case sdlIdent:
        return "a word";
    case sdlKeyword:
        return "a keyword";
    case sdlString:
        return "a text in quotes";
    case sdlBlockStart:
        return "'{'";
    case sdlBlockEnd:
        return "'}'";
    case sdlOpen:
        return "'('";
    case sdlClose:
        return "')'";
    case sdlNumber:
        return "a number";
    case sdlFloat:
        return "a number with a fraction";
    case sdlInt:
        return "an integer";
    case sdlOperator:
        return "an operator";
    case sdlError:
    case sdlNone:
    case sdlBlockId:
    case sdlHex:
        break;
    }
    return "";
}

std::string NearestIn(const eSDLKeyword* table, std::string_view word) {
    constexpr std::size_t kMostOffered = 100'000; // so that a report of a huge table takes milliseconds
    xSDL::eNearest nearest(word);
    for (std::size_t offered = 0; table && offered < kMostOffered; table = table->next, ++offered)
        if (table->name)
            nearest.Try(table->name);
    return xSDL::WellFormed(nearest.Word());
}

std::string NearestOf(const std::vector<std::string_view>& words, std::string_view word) {
    xSDL::eNearest nearest(word);
    for (const std::string_view each : words)
        nearest.Try(each);
    return xSDL::WellFormed(nearest.Word());
}

// The first of some names.
std::string Listed(const std::vector<std::string_view>& names) {
    constexpr std::size_t kMostListed = 8;
    std::string list;
    for (std::size_t i = 0; i < std::min(names.size(), kMostListed); ++i)
        list += (i == 0 ? "'" : ", '") + xSDL::Abridged(names[i]) + "'";
    if (names.size() > kMostListed)
        list += " or another name";
    return list;
}

bool IsWord(eSDLParserLexType type) {
    return type == sdlIdent || type == sdlKeyword;
}

} // namespace

// A file to be included that could not be opened, for the next report.
class eSDLReader::eUnopened : public xDebug::eStackEntry {
public:
    eUnopened(std::string fileTitle, std::string whyNot) : title(std::move(fileTitle)), failure(std::move(whyNot)) {}
    ~eUnopened() override { LeaveStack(); }
    eUnopened(const eUnopened&) = delete;
    eUnopened& operator=(const eUnopened&) = delete;

    std::string DSE_Title() const override { return title; }
    std::string DSE_Full() const override { return failure; }

    void Enter() { EnterStack(); }
    eNote Note() const { return {title + ": " + failure, {}}; }

private:
    std::string title;
    std::string failure;
};

// The oldest is forgotten first: no more are kept than a report's context names.
void eSDLReader::NoteUnopened(const eSDLParser& parser) {
    constexpr std::size_t kNamed = 8;
    if (unopened.size() == kNamed)
        unopened.erase(unopened.begin());
    unopened.push_back(std::make_shared<eUnopened>(parser.DSE_Title(), parser.failure));
}

xError::ePlace eSDLReader::Place() const {
    return parsers.back()->Place();
}

xError::ePlace eSDLReader::BlockPlace() const {
    xError::eExcerpt block;
    return FindOpenBlock(&block) ? block.place : parsers.front()->PlaceAt(0, 1);
}

// A source that is open may close blocks of those around it.
bool eSDLReader::FindOpenBlock(xError::eExcerpt* found) const {
    std::size_t closed = 0;
    return std::any_of(parsers.rbegin(), parsers.rend(),
                       [&](const auto& parser) { return parser->FindOpenBlock(&closed, found); });
}

void eSDLReader::Complain(const std::string& message) {
    parsers.front()->finished = true;
    Fail(kComplaintLine, Diagnose(message, {}));
}

// A place in a source that is open is shown with its line and includes.
void eSDLReader::Complain(const std::string& message, const xError::ePlace& place) {
    parsers.front()->finished = true;
    xError::eDiagnostic diagnostic;
    diagnostic.message = message;
    diagnostic.excerpt = xSDL::PlaceAlone(place);
    const auto source =
        std::find_if(parsers.rbegin(), parsers.rend(), [&place](const auto& parser) { return parser->Has(place); });
    if (source != parsers.rend()) {
        diagnostic.excerpt = (*source)->ExcerptOf(place);
        diagnostic.includedFrom = PlacesIn(static_cast<std::size_t>(parsers.rend() - source) - 1);
    }
    Fail(kComplaintLine, std::move(diagnostic));
}

// Where the sources are being read that include the others, of that many outermost ones; innermost first.
std::vector<xError::ePlace> eSDLReader::PlacesIn(std::size_t outer) const {
    std::vector<xError::ePlace> places;
    places.reserve(outer);
    while (outer > 0)
        places.push_back(parsers[--outer]->Place());
    return places;
}

// Makes the current source the innermost entry of the reporting thread, followed by the files that could not be opened
// and the including sources.
void eSDLReader::EnterSources() const {
    for (std::size_t outer = 0; outer + 1 < parsers.size(); ++outer)
        parsers[outer]->EnterStack();
    for (const auto& file : unopened)
        file->Enter();
    if (!parsers.empty())
        parsers.back()->EnterStack();
}

// For a source that reports itself and has that many around it.
std::function<std::vector<xError::ePlace>()> eSDLReader::EnteringSources(std::size_t outer) const {
    return [this, outer] {
        EnterSources();
        NoteReport();
        return PlacesIn(outer);
    };
}

void eSDLReader::NoteReport() const {
    if (!parsers.empty() && parsers.front()->reportsOnce)
        parsers.front()->finished = true;
}

xError::eDiagnostic eSDLReader::Diagnose(std::string message, std::string expected) const {
    const eSDLParser& parser = *parsers.back();
    xError::eDiagnostic diagnostic = parser.Diagnose(std::move(message), std::move(expected));
    diagnostic.excerpt = parser.Excerpt();
    diagnostic.includedFrom = PlacesIn(parsers.size() - 1);
    if (!diagnostic.expected.empty())
        diagnostic.found = parser.Found();
    return diagnostic;
}

// The keyword that the word found was probably meant to be; empty if a word was not found or is one.
std::string eSDLReader::NearestKeyword() const {
    const xSDL::eCurrentToken& token = parsers.back()->current;
    return token.Type() == sdlIdent ? NearestIn(Keywords(), token.Text()) : std::string();
}

void eSDLReader::Fail(const xSDL::eCheck& check) {
    using namespace xSDL::Checks;
    xError::eDiagnostic diagnostic = Diagnose(check.message, check.expected);
    const xSDL::eCurrentToken& token = parsers.back()->current;
    if (check.line == kKeyword.line)
        diagnostic.suggestion = NearestKeyword();
    if (check.line == kControlBlockWord.line && IsWord(token.Type()))
        diagnostic.suggestion = NearestOf({"include", "define", "mod"}, token.Text());
    const bool endsBlock = check.line == kBlockEnd.line || check.line == kSkippedBlockEnd.line;
    if (xError::eExcerpt block; endsBlock && token.Type() == sdlNone && FindOpenBlock(&block))
        diagnostic.notes.push_back({"The block that is not closed begins here.", std::move(block)});
    Fail(check.line, std::move(diagnostic));
}

void eSDLReader::FailSignature(const std::string& read, const std::string& expected) {
    xError::eDiagnostic diagnostic =
        Diagnose("File signature mismatch (read '" + BeginningOf(read, 1000) + "' instead of '" + expected + "')",
                 "the word '" + xSDL::WellFormed(expected) + "'");
    diagnostic.suggestion = NearestOf({expected}, read);
    Fail(kSignatureMismatchLine, std::move(diagnostic));
}

void eSDLReader::FailBlock(int id) {
    const char* const name = id != 0 && Keywords() ? eSDLKeyword::FindIn(Keywords(), id) : nullptr;
    std::string expected = "a block's keyword";
    if (name)
        expected = "the word '" + xSDL::WellFormed(name) + "'";
    xError::eDiagnostic diagnostic = Diagnose("Invalid block identifier!", std::move(expected));
    diagnostic.suggestion = NearestKeyword();
    Fail(kBlockIdentifierLine, std::move(diagnostic));
}

void eSDLReader::FailToken(eSDLParserLexType type) {
    xError::eDiagnostic diagnostic = Diagnose(defaultError, NameOf(type));
    if (type == sdlKeyword)
        diagnostic.suggestion = NearestKeyword();
    Fail(kTokenLine, std::move(diagnostic));
}

void eSDLReader::FailRange(std::string_view number, std::string expected) {
    Fail(kRangeLine, Diagnose((format("%1% is out of range!") % BeginningOf(number)).str(), std::move(expected)));
}

void eSDLReader::FailName(const std::vector<std::string_view>& names) {
    const std::string_view word = parsers.back()->current.Text();
    const std::string suggestion = NearestOf(names, word);
    std::string message = format("Unknown name '%1%'!") % BeginningOf(word);
    if (!suggestion.empty())
        message += format(" Did you mean '%1%'?") % suggestion;
    xError::eDiagnostic diagnostic = Diagnose(std::move(message), Listed(names));
    diagnostic.suggestion = suggestion;
    Fail(kNameLine, std::move(diagnostic));
}

// A file that could not be opened is told of once, and only while its entry exists.
void eSDLReader::Fail(int line, xError::eDiagnostic diagnostic) {
    NoteReport();
    EnterSources();
    if (const std::string& failure = parsers.back()->failure; !failure.empty())
        diagnostic.notes.push_back({failure, {}});
    for (const auto& file : unopened)
        diagnostic.notes.push_back(file->Note());
    [[maybe_unused]] const auto told = std::exchange(unopened, {});
    const std::string message = diagnostic.message;
    xError::Fatal(kSource, line, message, std::make_shared<const xError::eDiagnostic>(std::move(diagnostic)));
}
