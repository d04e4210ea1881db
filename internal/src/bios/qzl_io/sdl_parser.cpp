// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/parser.h>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_base/format.h>
#include <qzl_io/detail/compiler.h>
#include <qzl_io/streams.h>

#include "qzl_base/shared/decimal_float.h"
#include "qzl_base/shared/unicode.h"
#include "sdl/cutter.h"
#include "sdl/lexer.h"
#include "sdl/number.h"
#include "sdl/source_places.h"
#include "streams/read_text.h"

namespace {

namespace ParserReport {
constexpr const char* kSource = "internal/src/bios/qzl_io/sdl_parser";
constexpr int kReadErrorLine = 120;
constexpr int kSourceLimitLine = 130;
constexpr int kOpenRequiredLine = 301;
constexpr int kCloseRequiredLine = 306;
constexpr int kParameterLimitLine = 311;
} // namespace ParserReport

constexpr std::size_t kContextLines = 5;
constexpr char kContextMark = '\xAB';

// Characters of a line that a report shows on either side of the place, as a whole text may be one line.
constexpr std::size_t kShown = 1000;

std::size_t CountOf(std::string_view pattern, std::string_view source) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = source.find(pattern, at)) != std::string_view::npos; at += pattern.size())
        ++count;
    return count;
}

// Appends the source with the value in each pattern's place.
void AppendReplaced(std::string_view source, std::string_view pattern, std::string_view value, std::string* text) {
    std::size_t from = 0;
    for (std::size_t at; (at = source.find(pattern, from)) != std::string_view::npos; from = at + pattern.size())
        text->append(source, from, at - from).append(value);
    text->append(source, from);
}

// The text of a block start is its mark without the first #.
std::string_view TextOf(const xSDL::eLexeme& lexeme) {
    const std::string_view text(lexeme.begin, lexeme.length);
    return lexeme.type == sdlBlockStart && !text.empty() ? text.substr(1) : text;
}

void AnalyseWord(xSDL::eCurrentToken* token, std::string_view word, const eSDLKeyword* table) {
    const int id = table ? eSDLKeyword::FindIn(table, word.data(), word.size()) : 0;
    if (id == 0)
        return;
    token->SetType(sdlKeyword);
    token->SetId(id);
}

void AnalyseHex(xSDL::eCurrentToken* token, std::string_view digits) {
    token->SetType(sdlInt);
    token->SetInt(xSDL::TextToInt(digits));
    token->OwnString() = ToString(token->Int(), false);
}

// Gives a token that has just been cut, and is no word, its values.
QZL_IO_ALWAYS_INLINE void Analyse(xSDL::eCurrentToken* token, const xSDL::eLexeme& lexeme) {
    const std::string_view source(lexeme.begin, lexeme.length);
    switch (lexeme.type) {
    case sdlInt:
        token->SetInt(lexeme.exact ? xSDL::NearestInt(lexeme.digits, source.front() == '-') : xSDL::TextToInt(source));
        break;
    case sdlFloat: {
        float value = 0;
        if (!lexeme.exact || !decimal::ToFloat(lexeme.digits, lexeme.exponent, source.front() == '-', &value))
            value = xSDL::TextToFloat(source);
        token->SetFloat(value);
        break;
    }
    case sdlHex:
        AnalyseHex(token, source);
        break;
    default:
        break;
    }
}

} // namespace

eSDLCipher::~eSDLCipher() = default;

eSDLParser::eSDLParser(const std::string& parserName, IO::eStream& stream, const std::vector<eSDLKeyword*>& tables,
                       const std::map<eStringKey, eStringKey>& parameters, std::shared_ptr<eSDLCipher> cipher)
    : eSDLParser(parserName, stream, tables, parameters, cipher.get(), eSDLLimits(), nullptr) {}

eSDLParser::eSDLParser(const std::string& parserName, IO::eStream& stream, const std::vector<eSDLKeyword*>& tables,
                       const std::map<eStringKey, eStringKey>& parameters, std::shared_ptr<eSDLCipher> cipher,
                       const eSDLLimits& limits)
    : eSDLParser(parserName, stream, tables, parameters, cipher.get(), limits, nullptr) {}

eSDLParser::eSDLParser(const std::string& parserName, IO::eStream& stream, const std::vector<eSDLKeyword*>& tables,
                       const std::map<eStringKey, eStringKey>& parameters, eSDLCipher* cipher, const eSDLLimits& limits,
                       const eBeforeReport& beforeReport)
    : eStackEntry(eNumber::Many),
      isFile(!parserName.empty()),
      keywords(&tables),
      name(parserName),
      sourceLimit(limits.sourceBytes) {
    // The source is empty instead of an error: the reader reports if it misses something, and the reason is shown then.
    if (!stream.IsOpen())
        failure = IO::FailureOf(stream, "The file could not be opened.").text;
    const auto size = static_cast<std::size_t>(stream.Remaining());
    RequireSourceOf(size, beforeReport);
    if (cipher)
        DecodeText(stream, size, *cipher, beforeReport);
    else
        ReadText(stream, size, beforeReport);
    if (text.starts_with(unicode::kByteOrderMark))
        passed = unicode::kByteOrderMark.size();
    Rewind();
    ReplaceParameters(parameters, beforeReport);
    LimitTokens(limits.tokenBytes);
}

void eSDLParser::RequireSourceOf(unsigned long long size, const eBeforeReport& beforeReport) {
    if (size > sourceLimit)
        FailForSize(size, beforeReport);
}

void eSDLParser::FailForSize(unsigned long long size, const eBeforeReport& beforeReport) {
    const auto bytes = [](unsigned long long count) { return std::to_string(count) + " bytes"; };
    xError::eDiagnostic diagnostic = Diagnose("Source limit exceeded!", "at most " + bytes(sourceLimit));
    diagnostic.found = bytes(size);
    Fail(ParserReport::kSourceLimitLine, std::move(diagnostic), beforeReport);
}

void eSDLParser::LimitTokens(unsigned long long bytes) {
    if (bytes != eSDLLimits::kNone)
        current.Limit(static_cast<std::size_t>(bytes));
}

void eSDLParser::FailToRead(const IO::eStream& stream, const eBeforeReport& beforeReport) {
    failure = IO::FailureOf(stream, "The source could not be read to its end.").text;
    xError::eDiagnostic diagnostic = Diagnose((format("%1% - read error!") % (isFile ? name : "Stream")).str(), {});
    diagnostic.notes.push_back({failure, {}});
    Fail(ParserReport::kReadErrorLine, std::move(diagnostic), beforeReport);
}

eSDLParser::eSDLParser(const eDefine& define, const std::vector<eSDLKeyword*>& tables,
                       const std::map<eStringKey, eStringKey>& parameters)
    : eSDLParser(define, tables, parameters, eSDLLimits()) {}

eSDLParser::eSDLParser(const eDefine& define, const std::vector<eSDLKeyword*>& tables,
                       const std::map<eStringKey, eStringKey>& parameters, const eSDLLimits& limits)
    : eStackEntry(eNumber::Many),
      keywords(&tables),
      name((format("define '%1%'") % define.name).str()),
      sourceLimit(limits.sourceBytes) {
    RequireSourceOf(define.text.size(), nullptr);
    text = define.text;
    EndText();
    Rewind();
    ProcessParams(parameters);
    LimitTokens(limits.tokenBytes);
}

// Every place is a pointer into the text, and the copy's text has another address.
eSDLParser::eSDLParser(const eSDLParser& other)
    : xDebug::eStackEntry(other),
      current(other.current),
      isFile(other.isFile),
      text(other.text),
      checksNumbers(other.checksNumbers),
      keywords(other.keywords),
      name(other.name),
      passed(other.passed),
      failure(other.failure),
      sourceLimit(other.sourceLimit),
      escaped(other.escaped),
      tooLong(other.tooLong) {
    current.MoveSource(other.text.data(), text.data());
    PlacePlainNumbers();
}

// Another thread may be describing this entry, from members that are about to be destroyed.
eSDLParser::~eSDLParser() {
    LeaveStack();
}

// Reserves room for all of it at once, so that nothing is copied twice and the advice on pages is given before they are
// first touched.
void eSDLParser::ReadText(IO::eStream& stream, std::size_t size, const eBeforeReport& beforeReport) {
    if (!IO::ReadText(stream, size, xSDL::kTextEnd, &text))
        FailToRead(stream, beforeReport);
    EndText();
}

// A cipher may claim to have written more than there was room for; the excess is ignored.
void eSDLParser::DecodeText(IO::eStream& stream, std::size_t size, eSDLCipher& cipher,
                            const eBeforeReport& beforeReport) {
    std::string encoded;
    if (!IO::ReadText(stream, size, 0, &encoded))
        FailToRead(stream, beforeReport);
    encoded.resize(size);
    text.reserve(size + xSDL::kTextEnd);
    text.resize(size);
    text.resize(std::min(cipher.Encode(text.data(), size, encoded.data(), size), size));
    EndText();
}

void eSDLParser::EndText() {
    text.append(xSDL::kTextEnd, '\0');
}

void eSDLParser::ProcessParams(const std::map<eStringKey, eStringKey>& parameters) {
    ReplaceParameters(parameters, nullptr);
}

// All places in the old text become invalid. The new one takes exactly the memory that it needs.
void eSDLParser::ReplaceParameters(const std::map<eStringKey, eStringKey>& parameters,
                                   const eBeforeReport& beforeReport) {
    if (parameters.empty())
        return;
    Rewind();
    for (const auto& [key, value] : parameters) {
        const std::string pattern = "%" + key.str();
        const std::string_view source(text.data(), text.size() - xSDL::kTextEnd);
        const std::size_t count = CountOf(pattern, source);
        if (count == 0)
            continue;
        const std::size_t size = source.size() - count * pattern.size() + count * value.size();
        RequireSourceOf(size, beforeReport);
        std::string replaced;
        replaced.reserve(size + xSDL::kTextEnd);
        AppendReplaced(source, pattern, value.str(), &replaced);
        text = std::move(replaced);
        EndText();
        Rewind();
    }
}

void eSDLParser::Rewind() {
    places.reset();
    current.Start(text.data() + passed);
    PlacePlainNumbers();
}

void eSDLParser::PlacePlainNumbers() {
    plainNumbers = text.data() + (checksNumbers ? text.size() : 0);
}

void eSDLParser::CheckNumbers() {
    checksNumbers = true;
    PlacePlainNumbers();
}

bool eSDLParser::Get() {
    return Cut();
}

// The first character tells the kind, and the most frequent form of that kind is tried. None of these forms contains a
// backslash, so only CutAny sets `escaped`.
bool eSDLParser::Cut() {
    eCutter<false> cutter(*this);
    const xSDL::eTokenBegin begin = cutter.Begin();
    escaped = false;
    bool taken = false;
    switch (xSDL::Begins(*begin.at)) {
    case xSDL::eBegins::Word:
        taken = cutter.TakeWord(Keywords());
        break;
    case xSDL::eBegins::Number:
        taken = cutter.TakeNumber();
        break;
    case xSDL::eBegins::String:
        taken = cutter.TakeString();
        break;
    case xSDL::eBegins::BlockStart:
        taken = cutter.TakeBlockStart();
        break;
    case xSDL::eBegins::BlockEnd:
        taken = cutter.TakeBlockEnd();
        break;
    case xSDL::eBegins::Gap:
    case xSDL::eBegins::Operator:
    case xSDL::eBegins::Other:
        break;
    }
    return taken || CutAny(begin.line, begin.at);
}

// Takes any token but a word, which Cut has taken unless it exceeds the limit. A string may contain line feeds after
// backslashes, so the line is known only after the cut.
bool eSDLParser::CutAny(int beginLine, const char* begin) {
    int line = beginLine;
    xSDL::eLexeme lexeme{.begin = begin};
    const char* const next = xSDL::CutAt(begin, &line, &lexeme);
    if (lexeme.type == sdlNone) {
        current.AcceptEnd(line, next);
        return false;
    }
    tooLong = !current.Accept(lexeme.type, TextOf(lexeme), line, next);
    if (tooLong)
        return current.Accept(sdlError, std::string_view(begin, begin), beginLine, begin);
    escaped = lexeme.escaped;
    Analyse(&current, lexeme);
    return true;
}

// The user may have changed the token, so only its type and text are known.
void eSDLParser::AnalyseToken() {
    std::string& itsText = current.OwnString();
    switch (current.Type()) {
    case sdlIdent:
        AnalyseWord(&current, itsText, Keywords());
        break;
    case sdlBlockStart:
        itsText.erase(0, 1);
        break;
    case sdlInt:
        current.SetInt(xSDL::TextToInt(itsText));
        break;
    case sdlFloat:
        current.SetFloat(xSDL::TextToFloat(itsText));
        break;
    case sdlHex:
        AnalyseHex(&current, itsText);
        break;
    default:
        break;
    }
}

void eSDLParser::Back() {
    current.Back();
}

void eSDLParser::Lend() const {
    current.Lend();
}

const eSDLParserState& eSDLParser::StateCurrent() const {
    Lend();
    return current.State();
}

void eSDLParser::StatePrev(const eSDLParserState& state) {
    current.SetBefore(state);
}

std::string eSDLParser::GetParameter() {
    return TakeParameter(nullptr);
}

// The character that should be a ( is passed before it is reported as missing, unless it is the end of the text.
std::string eSDLParser::TakeParameter(const eBeforeReport& beforeReport) {
    const char* const open = current.Position();
    const char* const begin = open + (*open != 0);
    current.JumpTo(begin, current.Line());
    if (*open != '(')
        FailAt(open, ParserReport::kOpenRequiredLine, Diagnose("'(' required", "'('"), beforeReport);
    const char* const end = std::strchr(begin, ')');
    if (!end) {
        xError::eDiagnostic diagnostic = Diagnose("')' required", "')'");
        diagnostic.found = "the end of the text";
        FailAt(open, ParserReport::kCloseRequiredLine, std::move(diagnostic), beforeReport);
    }
    if (!current.Admits(static_cast<std::size_t>(end - begin)))
        FailAt(open, ParserReport::kParameterLimitLine, Diagnose(xSDL::kTokenLimit, {}), beforeReport);
    current.JumpTo(end + 1, current.Line());
    return std::string(begin, end);
}

// A report about the source as such, unless it is given a place.
xError::eDiagnostic eSDLParser::Diagnose(std::string message, std::string expected) const {
    xError::eDiagnostic diagnostic;
    diagnostic.message = std::move(message);
    diagnostic.excerpt = Beginning();
    diagnostic.expected = std::move(expected);
    return diagnostic;
}

// Fails because of the character at a place in the current line.
void eSDLParser::FailAt(const char* at, int line, xError::eDiagnostic diagnostic, const eBeforeReport& beforeReport) {
    diagnostic.excerpt = ExcerptOf(PlaceAt(static_cast<std::size_t>(at - Source().data()), current.Line()));
    if (!diagnostic.expected.empty() && diagnostic.found.empty())
        diagnostic.found = CharacterAt(at);
    Fail(line, std::move(diagnostic), beforeReport);
}

// The context names this source first, so it enters the stack last.
void eSDLParser::Fail(int line, xError::eDiagnostic diagnostic, const eBeforeReport& beforeReport) {
    if (beforeReport)
        diagnostic.includedFrom = beforeReport();
    EnterStack();
    const std::string message = diagnostic.message;
    xError::Fatal(ParserReport::kSource, line, message,
                  std::make_shared<const xError::eDiagnostic>(std::move(diagnostic)));
}

std::string eSDLParser::GetContext() const {
    return Listing(std::string::npos);
}

// The five lines. Of a line at most `around` characters are shown before the read position, and at most as many after
// it or after the line's beginning; the listing ends at a longer line.
std::string eSDLParser::Listing(std::size_t around) const {
    const char* const position = current.Position();
    if (!position)
        return {};
    const char* const begin = text.data() + passed;
    const char* const first = position - std::min(static_cast<std::size_t>(position - begin), around);
    const char* at = position;
    while (at > first && at[-1] != '\n')
        --at;
    const bool cut = at > begin && at[-1] != '\n';
    std::string listing;
    for (std::size_t line = 0; line < kContextLines && *at; ++line) {
        listing += ToString(xSDL::LinesOn(current.Line(), line), false) + (cut && line == 0 ? ": ..." : ": ");
        std::size_t left = around;
        for (bool ended = false; *at && !ended; ++at) {
            if (at == position)
                listing += kContextMark;
            if (at >= position && *at != '\n' && left-- == 0)
                return listing + "...";
            if (*at != '\r')
                listing += *at;
            ended = *at == '\n';
        }
    }
    return listing;
}

std::string eSDLParser::DSE_Title() const {
    return name.empty() ? name : '"' + name + '"';
}

std::string eSDLParser::DSE_Brief() const {
    return (format(", %1%") % current.Line()).str();
}

std::string eSDLParser::DSE_Full() const {
    return failure.empty() ? Listing(kShown) : failure;
}
