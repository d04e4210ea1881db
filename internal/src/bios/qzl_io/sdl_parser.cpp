#include <qzl_io/sdl/parser.h>

#include <algorithm>
#include <cstring>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_base/format.h>
#include <qzl_io/sdl/reader.h>
#include <qzl_io/streams.h>

#include "files/failure_text.h"
#include "platform/memory.h"
#include "qzl_base/shared/decimal_float.h"
#include "sdl/lexer.h"
#include "sdl/number.h"
#include "sdl/plain.h"

namespace {

namespace ParserReport {
constexpr const char* kSource = "internal/src/bios/qzl_io/sdl_parser";
constexpr int kReadErrorLine = 120;
constexpr int kOpenRequiredLine = 301;
constexpr int kCloseRequiredLine = 306;
} // namespace ParserReport

// The text is read in pieces, so that the zeros of the next piece are still in the cache when the bytes arrive.
constexpr std::size_t kPiece = 64 * 1024;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

constexpr std::size_t kContextLines = 5;
constexpr char kContextMark = '\xAB';

// Characters of a line that a report shows before the place and behind it: a text may be one line.
constexpr std::size_t kShown = 100;

std::string Replaced(const std::string& text, const std::string& pattern, const std::string& value) {
    std::string result;
    std::size_t from = 0;
    for (std::size_t at; (at = text.find(pattern, from)) != std::string::npos; from = at + pattern.size())
        result.append(text, from, at - from).append(value);
    return result.append(text, from);
}

std::size_t RemainingSize(const IO::eStream& stream) {
    const auto size = stream.Size();
    const auto position = stream.Position();
    return size > position ? static_cast<std::size_t>(size - position) : 0;
}

} // namespace

eSDLCipher::~eSDLCipher() = default;

eSDLParser::eSDLParser(const std::string& parserName, IO::eStream& stream, const std::vector<eSDLKeyword*>& tables,
                       const std::map<eStringKey, eStringKey>& parameters, std::shared_ptr<eSDLCipher> cipher)
    : eSDLParser(nullptr, parserName, stream, tables, parameters, cipher.get()) {}

eSDLParser::eSDLParser(const eSDLReader* reader, const std::string& parserName, IO::eStream& stream,
                       const std::vector<eSDLKeyword*>& tables, const std::map<eStringKey, eStringKey>& parameters,
                       eSDLCipher* cipher)
    : eStackEntry(eNumber::Many), isFile(!parserName.empty()), keywords(&tables), name(parserName) {
    if (!stream.IsOpen())
        failure = FailureText("The file could not be opened");
    else if (stream.Disabled(IO::StreamMode::Bad))
        IO::Platform::TakeFailureReason(); // of something before
    if (const std::size_t size = RemainingSize(stream); cipher)
        DecodeText(reader, stream, size, *cipher);
    else
        ReadText(reader, stream, size);
    if (text.starts_with(kByteOrderMark))
        passed = kByteOrderMark.size();
    Rewind();
    ProcessParams(parameters);
}

void eSDLParser::CheckRead(const eSDLReader* reader, const IO::eStream& stream) {
    if (stream.Disabled(IO::StreamMode::Bad))
        return;
    failure = FailureText("The source could not be read to its end");
    Fail(reader, ParserReport::kReadErrorLine, (format("%1% - read error!") % (isFile ? name : "Stream")).str());
}

eSDLParser::eSDLParser(const eDefine& define, const std::vector<eSDLKeyword*>& tables,
                       const std::map<eStringKey, eStringKey>& parameters)
    : eStackEntry(eNumber::Many),
      text(define.text),
      keywords(&tables),
      name((format("define '%1%'") % define.name).str()) {
    EndText();
    Rewind();
    ProcessParams(parameters);
}

eSDLParser::eSDLParser(const eSDLParser& other)
    : xDebug::eStackEntry(other),
      current(other.current),
      previous(other.previous),
      isFile(other.isFile),
      text(other.text),
      keywords(other.keywords),
      name(other.name),
      currentText(other.currentText),
      previousText(other.previousText),
      watched(other.watched),
      passed(other.passed),
      failure(other.failure),
      escaped(other.escaped) {
    const auto moved = [&](const char* at) { return at ? text.data() + (at - other.text.data()) : nullptr; };
    current.position = moved(other.current.position);
    previous.position = moved(other.previous.position);
    for (eTokenText* tokenText : {&currentText, &previousText})
        tokenText->source = {moved(tokenText->source.data()), tokenText->source.size()};
}

eSDLParser::~eSDLParser() {
    LeaveStack();
}

void eSDLParser::ReadText(const eSDLReader* reader, IO::eStream& stream, std::size_t size) {
    text.reserve(size + xSDL::kTextEnd);
    IO::Platform::PreferLargePages(text.data(), size);
    auto done = static_cast<std::size_t>(stream.AppendTo(&text, size));
    while (done < size) {
        const std::size_t piece = std::min(size - done, kPiece);
        text.resize(done + piece);
        stream.Read(text.data() + done, piece);
        done += piece;
    }
    CheckRead(reader, stream);
    EndText();
}

void eSDLParser::DecodeText(const eSDLReader* reader, IO::eStream& stream, std::size_t size, eSDLCipher& cipher) {
    const auto encoded = std::make_unique<char[]>(size);
    stream.Read(encoded.get(), size);
    CheckRead(reader, stream);
    text.reserve(size + xSDL::kTextEnd);
    text.resize(size);
    text.resize(std::min(cipher.Encode(text.data(), size, encoded.get(), size), size));
    EndText();
}

void eSDLParser::EndText() {
    text.append(xSDL::kTextEnd, '\0');
}

void eSDLParser::ProcessParams(const std::map<eStringKey, eStringKey>& parameters) {
    if (parameters.empty())
        return;
    text.resize(text.size() - xSDL::kTextEnd);
    for (const auto& [key, value] : parameters)
        text = Replaced(text, "%" + key.str(), value.str());
    EndText();
    Rewind();
}

void eSDLParser::Rewind() {
    current = {};
    current.position = text.data() + passed;
    currentText = {{current.position, 0}, eTokenText::Source};
    previous = {};
    previousText = {};
}

void eSDLParser::JumpTo(const char* position, int line) {
    current.position = position;
    current.line = line;
}

bool eSDLParser::Get() {
    return Cut();
}

bool eSDLParser::Cut() {
    const xSDL::eTokenBegin begin = FindToken();
    escaped = false;
    bool cut = false;
    switch (xSDL::Begins(*begin.at)) {
    case xSDL::eBegins::Word:
        cut = CutWord(begin, keywords->empty() ? nullptr : keywords->back());
        break;
    case xSDL::eBegins::Number:
        cut = CutPlainNumber(begin);
        break;
    case xSDL::eBegins::String:
        cut = CutPlainString(begin);
        break;
    case xSDL::eBegins::BlockStart:
        cut = CutPlainBlockStart(begin);
        break;
    case xSDL::eBegins::BlockEnd:
        cut = CutBlockEnd(begin);
        break;
    case xSDL::eBegins::Gap:
    case xSDL::eBegins::Operator:
    case xSDL::eBegins::Other:
        break;
    }
    return cut || CutAny(begin);
}

// Whatever token begins there, if any does.
bool eSDLParser::CutAny(xSDL::eTokenBegin begin) {
    Remember();
    current.line = begin.line;
    xSDL::eLexeme lexeme{.begin = begin.at};
    current.position = xSDL::CutAt(begin.at, &current.line, &lexeme);
    current.token.type = lexeme.type;
    const bool found = lexeme.type != sdlNone;
    if (found) {
        currentText = {{lexeme.begin, lexeme.length}, eTokenText::Source};
        escaped = lexeme.escaped;
        Analyse(lexeme);
    } else if (previousText.home == eTokenText::Own) {
        current.token.text = previous.token.text;
    }
    if (watched)
        FilledText();
    return found;
}

// A text of the token's own moves on with it.
void eSDLParser::RememberText() {
    current.token.text.swap(previous.token.text);
    previousText.home = eTokenText::Own;
}

// The same for a token as its members have it.
void eSDLParser::AnalyseToken() {
    eSDLParserToken& token = current.token;
    std::string& itsText = OwnText();
    switch (token.type) {
    case sdlIdent:
        AnalyseWord(itsText);
        break;
    case sdlBlockStart:
        itsText.erase(0, 1);
        break;
    case sdlInt:
        SetInt(xSDL::TextToInt(itsText));
        break;
    case sdlFloat:
        token.floatValue = xSDL::TextToFloat(itsText);
        token.intValue = xSDL::TruncateToInt(token.floatValue);
        break;
    case sdlHex:
        AnalyseHex(itsText);
        break;
    default:
        break;
    }
}

void eSDLParser::AnalyseWord(std::string_view word) {
    const int id = keywords->empty() ? 0 : eSDLKeyword::FindIn(keywords->back(), word.data(), word.size());
    if (id == 0)
        return;
    current.token.type = sdlKeyword;
    current.token.intValue = id;
}

void eSDLParser::AnalyseHex(std::string_view digits) {
    current.token.type = sdlInt;
    SetInt(xSDL::TextToInt(digits));
    current.token.text = ToString(current.token.intValue, false);
    currentText.home = eTokenText::Own;
}

[[gnu::always_inline]] inline void eSDLParser::Analyse(const xSDL::eLexeme& lexeme) {
    eSDLParserToken& token = current.token;
    const std::string_view source(lexeme.begin, lexeme.length);
    switch (lexeme.type) {
    case sdlIdent:
        AnalyseWord(source);
        break;
    case sdlBlockStart:
        if (!source.empty())
            currentText.source.remove_prefix(1);
        break;
    case sdlInt:
        SetInt(lexeme.exact ? xSDL::NearestInt(lexeme.digits, source.front() == '-') : xSDL::TextToInt(source));
        break;
    case sdlFloat:
        if (!lexeme.exact ||
            !decimal::ToFloat(lexeme.digits, lexeme.exponent, source.front() == '-', &token.floatValue))
            token.floatValue = xSDL::TextToFloat(source);
        token.intValue = xSDL::TruncateToInt(token.floatValue);
        break;
    case sdlHex:
        AnalyseHex(source);
        break;
    case sdlError:
    case sdlNone:
    case sdlKeyword:
    case sdlString:
    case sdlBlockEnd:
    case sdlBlockId:
    case sdlOpen:
    case sdlClose:
    case sdlNumber:
    case sdlOperator:
        break;
    }
}

void eSDLParser::Back() {
    if (!previous.position)
        return;
    current.token.type = previous.token.type;
    current.token.floatValue = previous.token.floatValue;
    current.token.intValue = previous.token.intValue;
    current.line = previous.line;
    current.position = previous.position;
    currentText = previousText;
    if (currentText.home == eTokenText::Own)
        current.token.text.swap(previous.token.text);
    else if (watched)
        FilledText();
    ForgetPrevious();
}

std::string_view eSDLParser::Text() const {
    return currentText.home == eTokenText::Source ? currentText.source : std::string_view(current.token.text);
}

const std::string& eSDLParser::FilledText() const {
    if (currentText.home == eTokenText::Source)
        FillText();
    return current.token.text;
}

// Room for long texts comes and goes with them, so that short ones in between have a string without.
[[gnu::noinline]] void eSDLParser::CopyText() const {
    std::string& copy = current.token.text;
    if ((currentText.source.size() <= kShortText) != IsWithinItself(copy))
        copy.swap(room);
    copy.assign(currentText.source);
}

std::string& eSDLParser::OwnText() const {
    FilledText();
    currentText.home = eTokenText::Own;
    return current.token.text;
}

void eSDLParser::Watch() const {
    watched = true;
    FilledText();
}

const eSDLParserState& eSDLParser::StateCurrent() const {
    Watch();
    return current;
}

eSDLParserState eSDLParser::StateBefore() const {
    eSDLParserState state = previous;
    if (previousText.home == eTokenText::Source)
        state.token.text.assign(previousText.source);
    return state;
}

void eSDLParser::StatePrev(const eSDLParserState& state) {
    previous = state;
    previousText = {{}, eTokenText::Own};
}

std::string eSDLParser::GetParameter() {
    return TakeParameter(nullptr);
}

std::string eSDLParser::TakeParameter(const eSDLReader* reader) {
    if (*current.position != '(') {
        current.position += *current.position != 0;
        Fail(reader, ParserReport::kOpenRequiredLine, "'(' required");
    }
    const char* const begin = ++current.position;
    const char* const end = std::strchr(begin, ')');
    if (!end)
        Fail(reader, ParserReport::kCloseRequiredLine, "')' required");
    current.position = end + 1;
    return std::string(begin, end);
}

// What the context names first is this source, then the others of the reader that it is read by.
void eSDLParser::Fail(const eSDLReader* reader, int line, const std::string& message) {
    if (reader)
        reader->EnterSources();
    EnterStack();
    xError::Fatal(ParserReport::kSource, line, message);
}

std::string eSDLParser::GetContext() const {
    return Listing(std::string::npos);
}

// The five lines. A line is cut so many characters before the read position, and so many behind it or the line's
// beginning, where the listing then ends.
std::string eSDLParser::Listing(std::size_t around) const {
    const char* const position = current.position;
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
        listing += ToString(xSDL::LinesOn(current.line, line), false) + (cut && line == 0 ? ": ..." : ": ");
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
    return (format(", %1%") % current.line).str();
}

std::string eSDLParser::DSE_Full() const {
    return failure.empty() ? Listing(kShown) : failure;
}
