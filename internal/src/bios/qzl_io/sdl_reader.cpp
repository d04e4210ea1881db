// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/reader.h>

#include <cstddef>
#include <limits>
#include <string_view>
#include <type_traits>
#include <utility>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_base/format.h>
#include <qzl_base/thread_storage.h>
#include <qzl_io/detail/compiler.h>

#include "qzl_base/shared/ascii.h"
#include "sdl/cutter.h"
#include "sdl/number.h"
#include "sdl/skim.h"
#include "sdl_reader_checks.h"

namespace {

using xSDL::eCheck;
namespace Checks = xSDL::Checks;

// What a report of a number out of range expects.
template <class T>
std::string RangeOf() {
    if constexpr (std::is_floating_point_v<T>) {
        return std::string("a number within the range of a ") + (sizeof(T) == sizeof(float) ? "float" : "double");
    } else {
        using eWide = std::conditional_t<std::is_signed_v<T>, long long, unsigned long long>;
        using eLimits = std::numeric_limits<T>;
        return format("an integer from %1% to %2%") % eWide{eLimits::min()} % eWide{eLimits::max()};
    }
}

// The text of a number as it stands in the source. That of a calculation stands nowhere.
std::string_view NumberText(const xSDL::eCurrentToken& token) {
    const bool calculated = token.Type() == sdlFloat && token.Place() == xSDL::eCurrentToken::ePlace::Own;
    return calculated ? token.Text() : token.SourceText();
}

} // namespace

const char* const eSDLReader::defaultError = "unexpected token";

// Increments the skip depth during its lifetime, even if a report ends the skipping.
class eSDLReader::eSkipping {
public:
    explicit eSkipping(eSDLReader& skippingReader) : reader(skippingReader) { ++reader.skipDepth; }
    ~eSkipping() { --reader.skipDepth; }
    eSkipping(const eSkipping&) = delete;
    eSkipping& operator=(const eSkipping&) = delete;

private:
    eSDLReader& reader;
};

// Lets the reader read ahead, and puts back at the end of its lifetime what that has changed.
class eSDLReader::eLookAhead {
public:
    explicit eLookAhead(eSDLReader& lookingReader)
        : reader(lookingReader),
          parsers(reader.parsers),
          blockMark(reader.blockMark),
          previousBlockMark(reader.previousBlockMark),
          unopened(reader.unopened) {
        for (const auto& parser : parsers)
            tokens.push_back(parser->current);
    }
    ~eLookAhead() {
        for (std::size_t index = 0; index < parsers.size(); ++index)
            parsers[index]->current = std::move(tokens[index]);
        reader.parsers = std::move(parsers);
        reader.blockMark = std::move(blockMark);
        reader.previousBlockMark = std::move(previousBlockMark);
        reader.unopened = std::move(unopened);
    }
    eLookAhead(const eLookAhead&) = delete;
    eLookAhead& operator=(const eLookAhead&) = delete;

private:
    eSDLReader& reader;
    std::vector<std::shared_ptr<eSDLParser>> parsers;
    std::vector<xSDL::eCurrentToken> tokens;
    std::string blockMark;
    std::string previousBlockMark;
    std::vector<std::shared_ptr<eUnopened>> unopened;
};

// Only the last of several copies expects the end. Whatever the report does, the sources close, the innermost first.
eSDLReader::~eSDLReader() noexcept(false) {
    struct eParsersCloser {
        std::vector<std::shared_ptr<eSDLParser>>& parsers;
        ~eParsersCloser() {
            while (!parsers.empty())
                parsers.pop_back();
        }
    } closer{parsers};
    const bool last = !parsers.empty() && parsers.front().use_count() == 1;
    if (last && IsEndExpected() && !unwinding.IsUnderWay())
        RequireBlockEnd();
}

bool eSDLReader::IsEndExpected() const {
    return signatureBlock && checkAtEnd && !parsers.front()->finished;
}

// Whatever is found here, the destructor has nothing to add.
void eSDLReader::Finish(eSDLRest rest) {
    const bool isEndExpected = IsEndExpected();
    parsers.front()->finished = true;
    if (isEndExpected)
        RequireBlockEnd();
    if (rest == eSDLRest::Refuse && Next() != sdlNone)
        Fail(Checks::kRest);
}

void eSDLReader::ReportOnce() {
    parsers.front()->reportsOnce = true;
}

void eSDLReader::CheckSignature(const char* signature, const eCheck& notSDL) {
    const std::string expected(signature ? signature : "");
    const std::string& read = ReadSignature(notSDL);
    if (!xSDL::IsSameWord(read, expected))
        FailSignature(ascii::LowerCased(read), expected);
}

const std::string& eSDLReader::ReadSignature(const eCheck& notSDL) {
    Require(sdlBlockStart, notSDL);
    return GetIdent();
}

const std::string& eSDLReader::GetSignature() {
    return ReadSignature(Checks::kSignatureNotSDL);
}

// Each read first tries the most frequent form of the expected token: first near, then anywhere. Anything else (a token
// of another form, a control block, a hidden block, the end of an included source) is left to Next, after which the
// source may be another one.
int eSDLReader::GetInt() {
    eSDLParser& parser = *parsers.back();
    if (eNearCutter cutter(parser); cutter && cutter.TakeInt())
        return parser.current.Int();
    return NextInt();
}

int eSDLReader::NextInt() {
    if (!eCutter(*parsers.back()).TakeInt() && Next() != sdlInt)
        Fail(Checks::kInteger);
    const xSDL::eCurrentToken& token = parsers.back()->current;
    RequireFits<int>(NumberText(token));
    return token.Int();
}

float eSDLReader::GetFloat() {
    eSDLParser& parser = *parsers.back();
    if (eNearCutter cutter(parser); cutter && cutter.TakeNumber())
        return parser.current.Float();
    return NextFloat();
}

float eSDLReader::NextFloat() {
    if (!eCutter(*parsers.back()).TakeNumber())
        if (const eSDLParserLexType type = Next(); type != sdlInt && type != sdlFloat)
            Fail(Checks::kNumber);
    RequireFloatFits();
    return parsers.back()->current.Float();
}

// An integer that is read as a float is an int before.
void eSDLReader::RequireFloatFits() {
    if (!checkRange)
        return;
    const xSDL::eCurrentToken& token = parsers.back()->current;
    if (token.Type() == sdlInt)
        RequireFits<int>(NumberText(token));
    else
        RequireFits<float>(NumberText(token));
}

// The first 15 digits of an integer and each of its forms fit into 64 bits, so nothing is gained by a shorter way.
template <class T>
T eSDLReader::NextInteger() {
    if (Next() != sdlInt)
        Fail(Checks::kInteger);
    const std::string_view number = NumberText(parsers.back()->current);
    RequireFits<T>(number);
    return xSDL::TextTo<T>(number);
}

long long eSDLReader::GetInt64() {
    return NextInteger<long long>();
}

unsigned long long eSDLReader::GetUint64() {
    return NextInteger<unsigned long long>();
}

double eSDLReader::GetDouble() {
    if (const eSDLParserLexType type = Next(); type != sdlInt && type != sdlFloat)
        Fail(Checks::kNumber);
    const xSDL::eCurrentToken& token = parsers.back()->current;
    const std::string_view number = NumberText(token);
    RequireFits<double>(number);
    const bool inSource = number.data() == token.SourceText().data();
    return inSource ? xSDL::TextTo<double>(number) : double{token.Float()};
}

// An int is checked before it is made a smaller one.
template <class T>
T eSDLReader::GetSmall() {
    eSDLParser& parser = *parsers.back();
    if (eNearCutter cutter(parser); cutter && cutter.TakeInt())
        return static_cast<T>(parser.current.Int());
    const int value = NextInt();
    RequireFits<T>(NumberText(parsers.back()->current));
    return static_cast<T>(value);
}

void eSDLReader::CheckRange(bool check) {
    checkRange = check;
    if (check)
        for (const auto& parser : parsers)
            parser->CheckNumbers();
}

template <class T>
void eSDLReader::RequireFits(std::string_view number) {
    if (checkRange && !xSDL::Fits<T>(number))
        FailRange(number, RangeOf<T>());
}

bool eSDLReader::GetBool() {
    return !Test(sdlNumber) || GetInt() != 0;
}

QZL_IO_ALWAYS_INLINE void eSDLReader::RequireString(const eCheck& check) {
    if (eNearCutter cutter(*parsers.back()); !cutter || !cutter.TakeString())
        NextString(check);
}

void eSDLReader::NextString(const eCheck& check) {
    if (!eCutter(*parsers.back()).TakeString())
        Require(sdlString, check);
}

const std::string& eSDLReader::GetString() {
    RequireString(Checks::kString);
    return parsers.back()->current.String();
}

std::wstring eSDLReader::GetStringW() {
    RequireString(Checks::kWideString);
    return ToStringW(parsers.back()->current.String());
}

// Lowered in the token itself, so that it is still lower case after Back and for those who look at the token.
const std::string& eSDLReader::GetIdent(bool lower) {
    if (const eSDLParserLexType type = NextWord(); type != sdlIdent && type != sdlKeyword)
        Fail(Checks::kIdentifier);
    if (lower)
        ascii::LowerCase(&parsers.back()->current.OwnString());
    return parsers.back()->current.String();
}

std::string_view eSDLReader::TakeWord() {
    if (const eSDLParserLexType type = NextWord(); type != sdlIdent && type != sdlKeyword)
        Fail(Checks::kIdentifier);
    return parsers.back()->current.Text();
}

int eSDLReader::GetKeyword() {
    if (NextWord() != sdlKeyword)
        Fail(Checks::kKeyword);
    return parsers.back()->current.Int();
}

const eSDLParserToken& eSDLReader::GetToken(eSDLParserLexType type) {
    if (!Check(type) && type != sdlNone)
        FailToken(type);
    return Token();
}

// The fast paths ignore marks, so they are not taken while there is a mark that the start would displace. The type
// tells Back that the mark goes back with the identifier.
int eSDLReader::GetBlock(int id) {
    if (AreMarksKept())
        return ReadBlock(id);
    eSDLParser& parser = *parsers.back();
    if (eNearCutter cutter(parser); cutter && cutter.TakeBlock(Keywords(), id))
        return parser.current.Int();
    return ReadBlock(id);
}

int eSDLReader::ReadBlock(int id) {
    if (AreMarksKept() || !eCutter(*parsers.back()).TakeBlockStart())
        Require(sdlBlockStart, Checks::kBlockStart);
    const eSDLParserLexType type = NextWord();
    if (type != sdlKeyword || (id != 0 && parsers.back()->current.Int() != id))
        FailBlock(id);
    xSDL::eCurrentToken& token = parsers.back()->current;
    token.SetType(sdlBlockId);
    return token.Int();
}

eSDLReader& eSDLReader::operator>>(int& value) {
    value = GetInt();
    return *this;
}

eSDLReader& eSDLReader::operator>>(short& value) {
    value = GetSmall<short>();
    return *this;
}

eSDLReader& eSDLReader::operator>>(char& value) {
    value = GetSmall<char>();
    return *this;
}

eSDLReader& eSDLReader::operator>>(float& value) {
    value = GetFloat();
    return *this;
}

eSDLReader& eSDLReader::operator>>(long long& value) {
    value = GetInt64();
    return *this;
}

eSDLReader& eSDLReader::operator>>(unsigned long long& value) {
    value = GetUint64();
    return *this;
}

eSDLReader& eSDLReader::operator>>(double& value) {
    value = GetDouble();
    return *this;
}

eSDLReader& eSDLReader::operator>>(bool& value) {
    value = GetBool();
    return *this;
}

eSDLReader& eSDLReader::operator>>(std::string& value) {
    RequireString(Checks::kString);
    value.assign(parsers.back()->current.Text());
    return *this;
}

eSDLReader& eSDLReader::operator>>(std::wstring& value) {
    value = GetStringW();
    return *this;
}

eSDLReader& eSDLReader::operator>>(std::u8string& value) {
    const std::string& text = GetString();
    value.assign(text.begin(), text.end());
    return *this;
}

eSDLReader& eSDLReader::operator>>(eStrings& values) {
    while (Check(sdlString))
        values.Add(std::string(parsers.back()->current.Text()));
    Back();
    return *this;
}

eSDLReader& eSDLReader::operator>>(eStringsW& values) {
    while (Check(sdlString))
        values.Add(ToStringW(parsers.back()->current.String()));
    Back();
    return *this;
}

eSDLReader& operator>>(eSDLReader& reader, eFileName& value) {
    value = reader.GetString();
    return reader;
}

bool eSDLReader::Check(eSDLParserLexType type, int id) {
    const eSDLParserLexType read = Next();
    switch (type) {
    case sdlIdent:
        return read == sdlIdent || read == sdlKeyword;
    case sdlKeyword:
        return read == sdlKeyword && (id == 0 || parsers.back()->current.Int() == id);
    case sdlNumber:
        return read == sdlInt || read == sdlFloat;
    case sdlError:
    case sdlNone:
    case sdlString:
    case sdlBlockStart:
    case sdlBlockEnd:
    case sdlBlockId:
    case sdlOpen:
    case sdlClose:
    case sdlFloat:
    case sdlInt:
    case sdlHex:
    case sdlOperator:
        break;
    }
    return read == type;
}

bool eSDLReader::Test(eSDLParserLexType type, int id) {
    const bool matches = Check(type, id);
    Back();
    return matches;
}

// The character that tells what is next; 0 if only reading can tell. Reading a block start and going back preserves the
// marks only if there are none.
QZL_IO_ALWAYS_INLINE char eSDLReader::SeePlainToken() {
    return AreMarksKept() ? '\0' : eCutter(*parsers.back()).See(parsers.size() > 1);
}

bool eSDLReader::Start() {
    const char seen = SeePlainToken();
    return seen ? seen == '{' : Test(sdlBlockStart);
}

bool eSDLReader::End() {
    const char seen = SeePlainToken();
    return seen ? seen == '}' : Test(sdlBlockEnd);
}

int eSDLReader::NextBlock() {
    return SeeBlockName().id;
}

std::string_view eSDLReader::NextBlockName() {
    return SeeBlockName().name;
}

// Usually a word directly follows the {. Anything else is left to reading.
eSDLReader::eBlockName eSDLReader::SeeBlockName() {
    const char seen = SeePlainToken();
    if (seen && seen != '{')
        return {};
    if (seen) {
        const std::string_view name = eCutter(*parsers.back()).SeeBlockName();
        if (!name.empty())
            return {Keywords() ? eSDLKeyword::FindIn(Keywords(), name.data(), name.size()) : 0, name};
    }
    const eLookAhead lookAhead(*this);
    if (Next() != sdlBlockStart)
        return {};
    const eSDLParserLexType type = NextWord();
    const xSDL::eCurrentToken& token = parsers.back()->current;
    if (type != sdlIdent && type != sdlKeyword)
        return {};
    return {type == sdlKeyword ? token.Int() : 0, token.SourceText()};
}

bool eSDLReader::TryGetIdent(std::string& value) {
    if (!Test(sdlIdent))
        return false;
    value = TakeWord();
    return true;
}

bool eSDLReader::TryGetKeyword(int id) {
    if (Check(sdlKeyword, id))
        return true;
    Back();
    return false;
}

bool eSDLReader::TryGetBlock(int id) {
    if (id == 0 || NextBlock() != id)
        return false;
    GetBlock(id);
    return true;
}

// The mark goes back with the start of its block, or with the identifier after it, since GetBlock takes both at once.
void eSDLReader::Back() {
    eSDLParser& parser = *parsers.back();
    if (const eSDLParserLexType type = parser.current.Type(); type == sdlBlockStart || type == sdlBlockId) {
        blockMark.swap(previousBlockMark);
        previousBlockMark.clear();
    }
    parser.Back();
}

// A block may end in another source than the one in which it began: what an included source leaves open continues in
// the one below.
void eSDLReader::SkipBlock(bool keepTerminator) {
    const eSkipping skipping(*this);
    for (long long depth = 0; !SkipInSource(&depth);)
        PopParser();
    if (keepTerminator)
        Back();
}

// False at the end of a source above another one, in which the block continues. The last tokens are cut as usual, so
// that the parser and its Back are in the state after cutting every token.
bool eSDLReader::SkipInSource(long long* depth) {
    eSDLParser& parser = Parser();
    const xSDL::eSkimmed skimmed =
        xSDL::eSkim(parser.Cptr(), *depth).Run(xSDL::Widest(xSDL::PassBySse2, xSDL::PassByAvx2));
    *depth = skimmed.depth;
    // Two marks are kept, so those of the last two starts are all that reading every token would have left.
    if (skimmed.starts > 1)
        blockMark = xSDL::MarkOf(skimmed.markBefore);
    if (skimmed.starts > 0) {
        previousBlockMark.swap(blockMark);
        blockMark = xSDL::MarkOf(skimmed.mark);
    }
    parser.current.JumpTo(skimmed.anchor, xSDL::LinesOn(parser.Line(), xSDL::LinesBefore(skimmed.anchor, skimmed)));
    if (skimmed.end == xSDL::eSkimEnd::EndOfText && parsers.size() > 1) {
        while (Cut())
            if (parser.escaped)
                ConvertEscSequence(&parser.current.OwnString(), false);
        return false;
    }
    eSDLParserLexType type;
    do
        type = Next();
    while (type != sdlNone && type != sdlError && parser.Cptr() <= skimmed.stop);
    if (skimmed.end != xSDL::eSkimEnd::Terminator)
        Fail(Checks::kSkippedBlockEnd);
    return true;
}

const eSDLParserToken& eSDLReader::Token() const {
    return parsers.back()->Token();
}

void eSDLReader::PopKeywords() {
    if (!keywords.empty())
        keywords.pop_back();
}

eStrings& eSDLReader::LoadingModes() {
    static eCriticalResource<eStrings> modes;
    return modes.Get();
}

bool eSDLReader::Get() {
    return Next() != sdlNone;
}

// Reads until there is a token for the caller. Nothing of the parser may be kept between iterations, since it may be
// destroyed.
eSDLParserLexType eSDLReader::Next() {
    for (;;) {
        eSDLParser& parser = Parser();
        parser.Cut();
        switch (const eSDLParserLexType type = parser.current.Type()) {
        case sdlNone:
            // The last source stays, so that its end can be read again and shown in reports.
            if (parsers.size() == 1)
                return type;
            PopParser();
            break;
        case sdlString:
            if (parser.escaped)
                ConvertEscSequence(&parser.current.OwnString(), false);
            return type;
        case sdlBlockStart:
            if (EnterBlock())
                return type;
            SkipBlock(false);
            break;
        case sdlOpen:
            // Skipping counts the parentheses itself and executes nothing.
            if (skipDepth > 0)
                return type;
            if (!ProcessControlBlock())
                return parser.current.Type();
            break;
        case sdlClose:
            // It ends a control block that has been executed, or it stands alone and has no meaning.
            controlFlag = false;
            if (skipDepth > 0)
                return type;
            break;
        case sdlError:
            RequireWithinLimit(parser);
            return type;
        case sdlIdent:
        case sdlKeyword:
        case sdlBlockEnd:
        case sdlBlockId:
        case sdlNumber:
        case sdlFloat:
        case sdlInt:
        case sdlHex:
        case sdlOperator:
            return type;
        }
    }
}

// Cuts a token of the current source, whatever it is.
bool eSDLReader::Cut() {
    eSDLParser& parser = Parser();
    const bool cut = parser.Cut();
    RequireWithinLimit(parser);
    return cut;
}

void eSDLReader::RequireWithinLimit(const eSDLParser& parser) {
    if (parser.tooLong && parser.current.Type() == sdlError)
        Fail(Checks::kTokenLimit);
}

// Like Next, where a word is expected.
eSDLParserLexType eSDLReader::NextWord() {
    eSDLParser& parser = *parsers.back();
    if (eNearCutter cutter(parser); cutter && cutter.TakeWord(Keywords()))
        return parser.current.Type();
    return NextFarWord();
}

eSDLParserLexType eSDLReader::NextFarWord() {
    eSDLParser& parser = *parsers.back();
    return eCutter(parser).TakeWord(Keywords()) ? parser.current.Type() : Next();
}

// Takes the mark of the block that has just started. False if the block is hidden.
QZL_IO_ALWAYS_INLINE bool eSDLReader::EnterBlock() {
    const std::string_view mark = parsers.back()->current.Text();
    // Two empty marks would only be exchanged.
    if (AreMarksKept() || !mark.empty()) {
        previousBlockMark.swap(blockMark);
        blockMark.assign(mark);
    }
    const bool open = skipDepth > 0 || (!grate.empty() && grate.back() != 0);
    return open || mark.find('#') == std::string_view::npos;
}

void eSDLReader::Require(eSDLParserLexType type, const eCheck& check) {
    if (Next() != type)
        Fail(check);
}

QZL_IO_ALWAYS_INLINE void eSDLReader::RequireBlockEnd() {
    if (eNearCutter cutter(*parsers.back()); !cutter || !cutter.TakeBlockEnd())
        NextBlockEnd();
}

void eSDLReader::NextBlockEnd() {
    if (!eCutter(*parsers.back()).TakeBlockEnd())
        Require(sdlBlockEnd, Checks::kBlockEnd);
}

// Copies of a reader share the parsers but have their own tables, so the parser is given the tables before each token.
eSDLParser& eSDLReader::Parser() const {
    eSDLParser& parser = *parsers.back();
    parser.keywords = &keywords;
    return parser;
}

eSDLReader& begb(eSDLReader& reader) {
    reader.Require(sdlBlockStart, Checks::kBlockStart);
    return reader;
}

eSDLReader& endb(eSDLReader& reader) {
    reader.RequireBlockEnd();
    return reader;
}

eSDLReader& begc(eSDLReader& reader) {
    reader.Require(sdlOpen, Checks::kControlBlockStart);
    return reader;
}

eSDLReader& endc(eSDLReader& reader) {
    reader.Require(sdlClose, Checks::kControlBlockEnd);
    return reader;
}
