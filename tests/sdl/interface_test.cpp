#include <qzl_io/sdl.h>

#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_io/streams.h>

#include "support/virtual_slot.h"

// What applications compile against: types, signatures and what can be overridden.
namespace {

using std::is_same_v;

// --- Tokens and keywords ---

static_assert(is_same_v<std::underlying_type_t<eSDLParserLexType>, int>);
static_assert(std::is_convertible_v<eSDLParserLexType, int>);

static_assert(is_same_v<decltype(&eSDLParserToken::type), eSDLParserLexType eSDLParserToken::*>);
static_assert(is_same_v<decltype(&eSDLParserToken::text), std::string eSDLParserToken::*>);
static_assert(is_same_v<decltype(&eSDLParserToken::floatValue), float eSDLParserToken::*>);
static_assert(is_same_v<decltype(&eSDLParserToken::intValue), int eSDLParserToken::*>);
static_assert(is_same_v<decltype(&eSDLParserState::token), eSDLParserToken eSDLParserState::*>);
static_assert(is_same_v<decltype(&eSDLParserState::line), int eSDLParserState::*>);
static_assert(is_same_v<decltype(&eSDLParserState::position), const char * eSDLParserState::*>);
static_assert(is_same_v<decltype(&eDefine::name), std::string eDefine::*>);
static_assert(is_same_v<decltype(&eDefine::text), std::string eDefine::*>);

static_assert(is_same_v<decltype(&eSDLKeyword::name), const char * eSDLKeyword::*>);
static_assert(is_same_v<decltype(&eSDLKeyword::id), int eSDLKeyword::*>);
static_assert(is_same_v<decltype(&eSDLKeyword::next), eSDLKeyword * eSDLKeyword::*>);
static_assert(std::is_constructible_v<eSDLKeyword, eSDLKeyword*&, const char*, int>);
static_assert(!std::is_constructible_v<eSDLKeyword, eSDLKeyword*, const char*, int>);
template <auto>
struct eIs;
using eFindId = eIs<static_cast<int (eSDLKeyword::*)(const char*) const>(&eSDLKeyword::Find)>;
using eFindName = eIs<static_cast<const char* (eSDLKeyword::*)(int) const>(&eSDLKeyword::Find)>;

// --- The parser ---

using eTables = std::vector<eSDLKeyword*>;
using eParameters = std::map<eStringKey, eStringKey>;
using eCipher = std::shared_ptr<eSDLCipher>;

static_assert(std::is_base_of_v<xDebug::eStackEntry, eSDLParser>);
static_assert(std::has_virtual_destructor_v<eSDLParser>);
static_assert(
    std::is_constructible_v<eSDLParser, const std::string&, IO::eStream&, const eTables&, const eParameters&, eCipher>);
static_assert(std::is_constructible_v<eSDLParser, const eDefine&, const eTables&, const eParameters&>);
static_assert(std::is_copy_constructible_v<eSDLParser>);
static_assert(is_same_v<decltype(&eSDLParser::Get), bool (eSDLParser::*)()>);
static_assert(is_same_v<decltype(&eSDLParser::Back), void (eSDLParser::*)()>);
static_assert(is_same_v<decltype(&eSDLParser::Token), eSDLParserToken& (eSDLParser::*)()>);
static_assert(is_same_v<decltype(&eSDLParser::StateCurrent), const eSDLParserState& (eSDLParser::*)() const>);
static_assert(is_same_v<decltype(&eSDLParser::StatePrev), void (eSDLParser::*)(const eSDLParserState&)>);
static_assert(is_same_v<decltype(&eSDLParser::GetParameter), std::string (eSDLParser::*)()>);
static_assert(is_same_v<decltype(&eSDLParser::GetContext), std::string (eSDLParser::*)() const>);
static_assert(is_same_v<decltype(&eSDLParser::Name), const std::string& (eSDLParser::*)() const>);
static_assert(is_same_v<decltype(&eSDLParser::Line), int (eSDLParser::*)() const>);
static_assert(is_same_v<decltype(&eSDLParser::IsFile), bool (eSDLParser::*)() const>);
static_assert(is_same_v<decltype(&eSDLParser::Cptr), const char* (eSDLParser::*)() const>);

class eDerivedParser : public eSDLParser {
public:
    using eSDLParser::eSDLParser;
    ~eDerivedParser() override {}
    std::string DSE_Title() const override { return "title"; }
    std::string DSE_Brief() const override { return "brief"; }
    std::string DSE_Full() const override { return "full"; }

    static_assert(is_same_v<decltype(&eDerivedParser::AnalyseToken), void (eSDLParser::*)()>);
    static_assert(is_same_v<decltype(&eDerivedParser::ProcessParams), void (eSDLParser::*)(const eParameters&)>);
};

// --- The reader ---

template <class... eArguments>
constexpr bool kMakesReader = std::is_constructible_v<eSDLReader, eArguments...>;

static_assert(std::has_virtual_destructor_v<eSDLReader>);
static_assert(kMakesReader<const eFileName&, const char*, eCipher> && kMakesReader<const char*, const char*, eCipher>);
static_assert(kMakesReader<const eFileNameW&, const char*, eCipher>);
static_assert(kMakesReader<const eFileName&, eSDLKeyword*, eCipher>);
static_assert(kMakesReader<const eFileName&, eCipher> && kMakesReader<const char*, std::nullptr_t>);
static_assert(kMakesReader<const eFileNameW&, eCipher> && kMakesReader<const wchar_t*, std::nullptr_t>);
static_assert(kMakesReader<IO::eStream*, eCipher> && kMakesReader<IO::eMemoryStream*, std::nullptr_t>);
static_assert(std::is_copy_constructible_v<eSDLReader> && std::is_copy_assignable_v<eSDLReader>);

static_assert(is_same_v<decltype(eSDLReader::defaultError), const char* const>);
static_assert(is_same_v<eSDLReader::eGrate, std::vector<int>>);
static_assert(is_same_v<decltype(&eSDLReader::GetInt), int (eSDLReader::*)()>);
static_assert(is_same_v<decltype(&eSDLReader::GetFloat), float (eSDLReader::*)()>);
static_assert(is_same_v<decltype(&eSDLReader::GetBool), bool (eSDLReader::*)()>);
static_assert(is_same_v<decltype(&eSDLReader::GetString), const std::string& (eSDLReader::*)()>);
static_assert(is_same_v<decltype(&eSDLReader::GetStringW), std::wstring (eSDLReader::*)()>);
static_assert(is_same_v<decltype(&eSDLReader::GetIdent), const std::string& (eSDLReader::*)(bool)>);
static_assert(is_same_v<decltype(&eSDLReader::GetKeyword), int (eSDLReader::*)()>);
static_assert(is_same_v<decltype(&eSDLReader::GetToken), const eSDLParserToken& (eSDLReader::*)(eSDLParserLexType)>);
static_assert(is_same_v<decltype(&eSDLReader::GetBlock), int (eSDLReader::*)(int)>);
static_assert(is_same_v<decltype(&eSDLReader::GetSignature), const std::string& (eSDLReader::*)()>);
static_assert(is_same_v<decltype(&eSDLReader::Check), bool (eSDLReader::*)(eSDLParserLexType, int)>);
using eTest = eIs<static_cast<bool (eSDLReader::*)(eSDLParserLexType, int)>(&eSDLReader::Test)>;
using eTestId = eIs<static_cast<bool (eSDLReader::*)(int)>(&eSDLReader::Test)>;
static_assert(is_same_v<decltype(&eSDLReader::Start), bool (eSDLReader::*)()>);
static_assert(is_same_v<decltype(&eSDLReader::End), bool (eSDLReader::*)()>);
static_assert(is_same_v<decltype(&eSDLReader::Back), void (eSDLReader::*)()>);
static_assert(is_same_v<decltype(&eSDLReader::SkipBlock), void (eSDLReader::*)(bool)>);
static_assert(is_same_v<decltype(&eSDLReader::Token), const eSDLParserToken& (eSDLReader::*)() const>);
static_assert(is_same_v<decltype(&eSDLReader::PushKeywords), void (eSDLReader::*)(eSDLKeyword*)>);
static_assert(is_same_v<decltype(&eSDLReader::PopKeywords), void (eSDLReader::*)()>);
static_assert(is_same_v<decltype(&eSDLReader::Keywords), const eSDLKeyword* (eSDLReader::*)() const>);
using eSetCheckEOF = eIs<static_cast<void (eSDLReader::*)(bool)>(&eSDLReader::CheckEOF)>;
using eGetCheckEOF = eIs<static_cast<bool (eSDLReader::*)() const>(&eSDLReader::CheckEOF)>;
static_assert(is_same_v<decltype(&eSDLReader::Grate), eSDLReader::eGrate& (eSDLReader::*)()>);
static_assert(is_same_v<decltype(&eSDLReader::Include), void (eSDLReader::*)(const eFileName&)>);
static_assert(is_same_v<decltype(&eSDLReader::LoadingModes), eStrings& (*)()>);
static_assert(is_same_v<decltype(&begb), eSDLReader& (*)(eSDLReader&)>);
static_assert(is_same_v<decltype(&begc), eSDLReader& (*)(eSDLReader&)>);
static_assert(is_same_v<decltype(&endc), eSDLReader& (*)(eSDLReader&)>);
using eReaderEndb = eIs<static_cast<eSDLReader& (*)(eSDLReader&)>(&endb)>;

class eDerivedReader : public eSDLReader {
public:
    using eSDLReader::eSDLReader;

    static_assert(is_same_v<decltype(&eDerivedReader::Init), void (eSDLReader::*)()>);
    static_assert(is_same_v<decltype(&eDerivedReader::Get), bool (eSDLReader::*)()>);
    using eNewParser =
        eIs<static_cast<eSDLParser* (eSDLReader::*)(const eFileName&, const eParameters&)>(&eDerivedReader::NewParser)>;
    using eNewWideParser = eIs<static_cast<eSDLParser* (eSDLReader::*)(const eFileNameW&)>(&eDerivedReader::NewParser)>;
    static_assert(is_same_v<decltype(&eDerivedReader::PushParser), void (eSDLReader::*)(eSDLParser*)>);
    static_assert(is_same_v<decltype(&eDerivedReader::PopParser), void (eSDLReader::*)()>);
    static_assert(is_same_v<decltype(&eDerivedReader::Parser), eSDLParser& (eSDLReader::*)() const>);
    static_assert(is_same_v<decltype(&eDerivedReader::GetParameters), void (eSDLReader::*)(eParameters*)>);
    static_assert(is_same_v<decltype(&eDerivedReader::GetOperand), void (eSDLReader::*)(eSDLParserToken*)>);
    static_assert(is_same_v<decltype(&eDerivedReader::ProcessControlBlock), bool (eSDLReader::*)()>);
};

template <class T>
concept eReadable = requires(eSDLReader& reader, T& value) {
    { reader >> value } -> std::same_as<eSDLReader&>;
};

static_assert(eReadable<int> && eReadable<short> && eReadable<char> && eReadable<float> && eReadable<bool>);
static_assert(eReadable<std::string> && eReadable<std::wstring> && eReadable<eStrings> && eReadable<eStringsW>);
static_assert(eReadable<eFileName> && !eReadable<double> && !eReadable<unsigned>);

// --- The writer ---

using eWriteStream = eSDLWriter::eWriteStream;

static_assert(is_same_v<decltype(block::id), int> && is_same_v<decltype(keyword::id), int>);
static_assert(is_same_v<decltype(ident::name), const char*>);
static_assert(std::is_aggregate_v<block> && std::is_aggregate_v<keyword> && std::is_aggregate_v<ident>);
static_assert(std::is_base_of_v<eWriteStream, eSDLTextStream> && std::is_abstract_v<eWriteStream>);
static_assert(std::has_virtual_destructor_v<eSDLWriter> && std::has_virtual_destructor_v<eWriteStream>);
static_assert(is_same_v<decltype(&eWriteStream::formatFlag), bool eWriteStream::*>);
static_assert(is_same_v<decltype(&eWriteStream::newlinePending), bool eWriteStream::*>);

template <class... eArguments>
constexpr bool kMakesWriter = std::is_constructible_v<eSDLWriter, eArguments...>;

static_assert(kMakesWriter<> && kMakesWriter<eCipher> && kMakesWriter<IO::eStream*, eCipher>);
static_assert(kMakesWriter<const eFileName&, eCipher> && kMakesWriter<const eFileNameW&, eCipher>);
static_assert(std::is_copy_constructible_v<eSDLWriter> && std::is_copy_assignable_v<eSDLWriter>);
using eOpenStream = eIs<static_cast<void (eSDLWriter::*)(IO::eStream*)>(&eSDLWriter::Open)>;
using eOpenFile = eIs<static_cast<bool (eSDLWriter::*)(const eFileName&)>(&eSDLWriter::Open)>;
using eOpenWideFile = eIs<static_cast<bool (eSDLWriter::*)(const eFileNameW&)>(&eSDLWriter::Open)>;
static_assert(is_same_v<decltype(&eSDLWriter::Opened), bool (eSDLWriter::*)() const>);
static_assert(is_same_v<decltype(&eSDLWriter::Close), void (eSDLWriter::*)()>);
static_assert(is_same_v<decltype(&eSDLWriter::Stream), eWriteStream& (eSDLWriter::*)()>);
static_assert(is_same_v<decltype(&eSDLWriter::PushKeywords), void (eSDLWriter::*)(eSDLKeyword*)>);
static_assert(is_same_v<decltype(&eSDLWriter::PopKeywords), void (eSDLWriter::*)()>);
using eWriterEndb = eIs<static_cast<eSDLWriter& (*)(eSDLWriter&)>(&endb)>;
using eWriterEndl = eIs<static_cast<eSDLWriter& (*)(eSDLWriter&)>(&endl)>;

class eDerivedWriter : public eSDLWriter {
    static_assert(is_same_v<decltype(&eDerivedWriter::Init), void (eSDLWriter::*)()>);
};

class eDerivedWriteStream : public eWriteStream {
public:
    ~eDerivedWriteStream() override {}
    void WriteString(const char*) override {}
    void WriteFloat(float) override {}
    void WriteInt(int) override {}
    void WriteControl(int) override {}
    void WriteIdent(const char*, int) override {}
    void WriteHashed(const char*) override {}
    void Flush(IO::eStream*, std::shared_ptr<eSDLCipher>) override {}
    void MarkEmpty() override {}
};
static_assert(!std::is_abstract_v<eDerivedWriteStream>);

// --- Ciphers and JSON ---

class eDerivedCipher : public eSDLCipher {
public:
    ~eDerivedCipher() override {}
    size_t GetEncodedSize(size_t) override { return 0; }
    size_t Encode(void*, size_t, const void*, size_t) override { return 0; }
};
static_assert(!std::is_abstract_v<eDerivedCipher>);

static_assert(is_same_v<decltype(&JsonToSdl), bool (*)(const eFileName&, const eFileName&)>);

} // namespace

TEST(SdlInterface, VirtualOperationsStandInTheirOrder) {
    const std::pair<std::size_t, std::size_t> rows[] = {
        {VirtualSlot(&eSDLParser::DSE_Title), 2},      {VirtualSlot(&eSDLParser::DSE_Brief), 3},
        {VirtualSlot(&eSDLParser::DSE_Full), 4},       {VirtualSlot(&eWriteStream::WriteString), 2},
        {VirtualSlot(&eWriteStream::WriteFloat), 3},   {VirtualSlot(&eWriteStream::WriteInt), 4},
        {VirtualSlot(&eWriteStream::WriteControl), 5}, {VirtualSlot(&eWriteStream::WriteIdent), 6},
        {VirtualSlot(&eWriteStream::WriteHashed), 7},  {VirtualSlot(&eWriteStream::Flush), 8},
        {VirtualSlot(&eWriteStream::MarkEmpty), 9},    {VirtualSlot(&eSDLCipher::GetEncodedSize), 2},
        {VirtualSlot(&eSDLCipher::Encode), 3},
    };
    for (const auto& [slot, expected] : rows)
        EXPECT_EQ(slot, expected);
}

TEST(SdlInterface, MembersStandInTheirOrder) {
    const auto place = [](const auto& whole, const auto& member) {
        return reinterpret_cast<const char*>(&member) - reinterpret_cast<const char*>(&whole);
    };
    eSDLKeyword* head = nullptr;
    const eSDLKeyword word(head, "word", 1);
    EXPECT_EQ(place(word, word.name), 0);
    EXPECT_LT(place(word, word.name), place(word, word.id));
    EXPECT_LT(place(word, word.id), place(word, word.next));
    const eSDLParserToken token;
    EXPECT_EQ(place(token, token.type), 0);
    EXPECT_LT(place(token, token.type), place(token, token.text));
    EXPECT_LT(place(token, token.text), place(token, token.floatValue));
    EXPECT_LT(place(token, token.floatValue), place(token, token.intValue));
    const eSDLParserState state;
    EXPECT_EQ(place(state, state.token), 0);
    EXPECT_LT(place(state, state.token), place(state, state.line));
    EXPECT_LT(place(state, state.line), place(state, state.position));
}
