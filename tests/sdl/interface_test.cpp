// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl.h>

#include <concepts>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_io/streams.h>

#include "support/interface.h"

// The interface that applications compile against: types, signatures and virtual functions.

namespace {

using std::is_same_v;

// --- Tokens and keywords ---

static_assert(is_same_v<std::underlying_type_t<eSDLParserLexType>, int>);
static_assert(std::is_convertible_v<eSDLParserLexType, int>);

static_assert(Is<eSDLParserLexType eSDLParserToken::*>(&eSDLParserToken::type));
static_assert(Is<std::string eSDLParserToken::*>(&eSDLParserToken::text));
static_assert(Is<float eSDLParserToken::*>(&eSDLParserToken::floatValue));
static_assert(Is<int eSDLParserToken::*>(&eSDLParserToken::intValue));
static_assert(Is<eSDLParserToken eSDLParserState::*>(&eSDLParserState::token));
static_assert(Is<int eSDLParserState::*>(&eSDLParserState::line));
static_assert(Is<const char * eSDLParserState::*>(&eSDLParserState::position));
static_assert(Is<std::string eDefine::*>(&eDefine::name));
static_assert(Is<std::string eDefine::*>(&eDefine::text));

static_assert(Is<const char * eSDLKeyword::*>(&eSDLKeyword::name));
static_assert(Is<int eSDLKeyword::*>(&eSDLKeyword::id));
static_assert(Is<eSDLKeyword * eSDLKeyword::*>(&eSDLKeyword::next));
static_assert(std::is_constructible_v<eSDLKeyword, eSDLKeyword*&, const char*, int>);
static_assert(!std::is_constructible_v<eSDLKeyword, eSDLKeyword*, const char*, int>);
static_assert(Is<int (eSDLKeyword::*)(const char*) const>(&eSDLKeyword::Find));
static_assert(Is<const char* (eSDLKeyword::*)(int) const>(&eSDLKeyword::Find));

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
static_assert(Is<bool (eSDLParser::*)()>(&eSDLParser::Get));
static_assert(Is<void (eSDLParser::*)()>(&eSDLParser::Back));
static_assert(Is<eSDLParserToken& (eSDLParser::*)()>(&eSDLParser::Token));
static_assert(Is<const eSDLParserState& (eSDLParser::*)() const>(&eSDLParser::StateCurrent));
static_assert(Is<void (eSDLParser::*)(const eSDLParserState&)>(&eSDLParser::StatePrev));
static_assert(Is<std::string (eSDLParser::*)()>(&eSDLParser::GetParameter));
static_assert(Is<std::string (eSDLParser::*)() const>(&eSDLParser::GetContext));
static_assert(Is<const std::string& (eSDLParser::*)() const>(&eSDLParser::Name));
static_assert(Is<int (eSDLParser::*)() const>(&eSDLParser::Line));
static_assert(Is<bool (eSDLParser::*)() const>(&eSDLParser::IsFile));
static_assert(Is<const char* (eSDLParser::*)() const>(&eSDLParser::Cptr));

class eDerivedParser : public eSDLParser {
public:
    using eSDLParser::eSDLParser;
    ~eDerivedParser() override {}
    std::string DSE_Title() const override { return "title"; }
    std::string DSE_Brief() const override { return "brief"; }
    std::string DSE_Full() const override { return "full"; }

    static_assert(Is<void (eSDLParser::*)()>(&eDerivedParser::AnalyseToken));
    static_assert(Is<void (eSDLParser::*)(const eParameters&)>(&eDerivedParser::ProcessParams));
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
static_assert(Is<int (eSDLReader::*)()>(&eSDLReader::GetInt));
static_assert(Is<float (eSDLReader::*)()>(&eSDLReader::GetFloat));
static_assert(Is<bool (eSDLReader::*)()>(&eSDLReader::GetBool));
static_assert(Is<const std::string& (eSDLReader::*)()>(&eSDLReader::GetString));
static_assert(Is<std::wstring (eSDLReader::*)()>(&eSDLReader::GetStringW));
static_assert(Is<const std::string& (eSDLReader::*)(bool)>(&eSDLReader::GetIdent));
static_assert(Is<int (eSDLReader::*)()>(&eSDLReader::GetKeyword));
static_assert(Is<const eSDLParserToken& (eSDLReader::*)(eSDLParserLexType)>(&eSDLReader::GetToken));
static_assert(Is<int (eSDLReader::*)(int)>(&eSDLReader::GetBlock));
static_assert(Is<const std::string& (eSDLReader::*)()>(&eSDLReader::GetSignature));
static_assert(Is<bool (eSDLReader::*)(eSDLParserLexType, int)>(&eSDLReader::Check));
static_assert(Is<bool (eSDLReader::*)(eSDLParserLexType, int)>(&eSDLReader::Test));
static_assert(Is<bool (eSDLReader::*)(int)>(&eSDLReader::Test));
static_assert(Is<bool (eSDLReader::*)()>(&eSDLReader::Start));
static_assert(Is<bool (eSDLReader::*)()>(&eSDLReader::End));
static_assert(Is<void (eSDLReader::*)()>(&eSDLReader::Back));
static_assert(Is<void (eSDLReader::*)(bool)>(&eSDLReader::SkipBlock));
static_assert(Is<const eSDLParserToken& (eSDLReader::*)() const>(&eSDLReader::Token));
static_assert(Is<void (eSDLReader::*)(eSDLKeyword*)>(&eSDLReader::PushKeywords));
static_assert(Is<void (eSDLReader::*)()>(&eSDLReader::PopKeywords));
static_assert(Is<const eSDLKeyword* (eSDLReader::*)() const>(&eSDLReader::Keywords));
static_assert(Is<void (eSDLReader::*)(bool)>(&eSDLReader::CheckEOF));
static_assert(Is<bool (eSDLReader::*)() const>(&eSDLReader::CheckEOF));
static_assert(Is<eSDLReader::eGrate& (eSDLReader::*)()>(&eSDLReader::Grate));
static_assert(Is<void (eSDLReader::*)(const eFileName&)>(&eSDLReader::Include));
static_assert(Is<eStrings& (*)()>(&eSDLReader::LoadingModes));
static_assert(Is<eSDLReader& (*)(eSDLReader&)>(&begb));
static_assert(Is<eSDLReader& (*)(eSDLReader&)>(&begc));
static_assert(Is<eSDLReader& (*)(eSDLReader&)>(&endc));
static_assert(Is<eSDLReader& (*)(eSDLReader&)>(&endb));

class eDerivedReader : public eSDLReader {
public:
    using eSDLReader::eSDLReader;

    static_assert(Is<void (eSDLReader::*)()>(&eDerivedReader::Init));
    static_assert(Is<bool (eSDLReader::*)()>(&eDerivedReader::Get));
    static_assert(Is<eSDLParser* (eSDLReader::*)(const eFileName&, const eParameters&)>(&eDerivedReader::NewParser));
    static_assert(Is<eSDLParser* (eSDLReader::*)(const eFileNameW&)>(&eDerivedReader::NewParser));
    static_assert(Is<void (eSDLReader::*)(eSDLParser*)>(&eDerivedReader::PushParser));
    static_assert(Is<void (eSDLReader::*)()>(&eDerivedReader::PopParser));
    static_assert(Is<eSDLParser& (eSDLReader::*)() const>(&eDerivedReader::Parser));
    static_assert(Is<void (eSDLReader::*)(eParameters*)>(&eDerivedReader::GetParameters));
    static_assert(Is<void (eSDLReader::*)(eSDLParserToken*)>(&eDerivedReader::GetOperand));
    static_assert(Is<bool (eSDLReader::*)()>(&eDerivedReader::ProcessControlBlock));
};

template <class T>
concept eReadable = requires(eSDLReader& reader, T& value) {
    { reader >> value } -> std::same_as<eSDLReader&>;
};

static_assert(eReadable<int> && eReadable<short> && eReadable<char> && eReadable<float> && eReadable<bool>);
static_assert(eReadable<std::string> && eReadable<std::wstring> && eReadable<eStrings> && eReadable<eStringsW>);
static_assert(eReadable<eFileName> && eReadable<double> && eReadable<long long> && eReadable<unsigned long long>);
static_assert(eReadable<std::int64_t> && eReadable<std::uint64_t> && eReadable<std::size_t>);
static_assert(!eReadable<unsigned> && !eReadable<long double> && !eReadable<wchar_t>);

// --- The writer ---

using eWriteStream = eSDLWriter::eWriteStream;

static_assert(is_same_v<decltype(block::id), int> && is_same_v<decltype(keyword::id), int>);
static_assert(is_same_v<decltype(ident::name), const char*>);
static_assert(std::is_aggregate_v<block> && std::is_aggregate_v<keyword> && std::is_aggregate_v<ident>);
static_assert(std::is_base_of_v<eWriteStream, eSDLTextStream> && std::is_abstract_v<eWriteStream>);
static_assert(std::has_virtual_destructor_v<eSDLWriter> && std::has_virtual_destructor_v<eWriteStream>);
static_assert(Is<bool eWriteStream::*>(&eWriteStream::formatFlag));
static_assert(Is<bool eWriteStream::*>(&eWriteStream::newlinePending));

template <class... eArguments>
constexpr bool kMakesWriter = std::is_constructible_v<eSDLWriter, eArguments...>;

static_assert(kMakesWriter<> && kMakesWriter<eCipher> && kMakesWriter<IO::eStream*, eCipher>);
static_assert(kMakesWriter<const eFileName&, eCipher> && kMakesWriter<const eFileNameW&, eCipher>);
static_assert(std::is_copy_constructible_v<eSDLWriter> && std::is_copy_assignable_v<eSDLWriter>);
static_assert(Is<void (eSDLWriter::*)(IO::eStream*)>(&eSDLWriter::Open));
static_assert(Is<bool (eSDLWriter::*)(const eFileName&)>(&eSDLWriter::Open));
static_assert(Is<bool (eSDLWriter::*)(const eFileNameW&)>(&eSDLWriter::Open));
static_assert(Is<bool (eSDLWriter::*)() const>(&eSDLWriter::Opened));
static_assert(Is<void (eSDLWriter::*)()>(&eSDLWriter::Close));
static_assert(Is<eWriteStream& (eSDLWriter::*)()>(&eSDLWriter::Stream));
static_assert(Is<void (eSDLWriter::*)(eSDLKeyword*)>(&eSDLWriter::PushKeywords));
static_assert(Is<void (eSDLWriter::*)()>(&eSDLWriter::PopKeywords));
static_assert(Is<eSDLWriter& (*)(eSDLWriter&)>(&endb));
static_assert(Is<eSDLWriter& (*)(eSDLWriter&)>(&endl));

class eDerivedWriter : public eSDLWriter {
    static_assert(Is<void (eSDLWriter::*)()>(&eDerivedWriter::Init));
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

// --- Ciphers ---

class eDerivedCipher : public eSDLCipher {
public:
    ~eDerivedCipher() override {}
    size_t GetEncodedSize(size_t) override { return 0; }
    size_t Encode(void*, size_t, const void*, size_t) override { return 0; }
};
static_assert(!std::is_abstract_v<eDerivedCipher>);

} // namespace

TEST(SdlInterface, VirtualOperationsKeepTheirOrder) {
    const std::pair<std::ptrdiff_t, std::ptrdiff_t> rows[] = {
        {Slot(&eSDLParser::DSE_Title), 2},      {Slot(&eSDLParser::DSE_Brief), 3},
        {Slot(&eSDLParser::DSE_Full), 4},       {Slot(&eWriteStream::WriteString), 2},
        {Slot(&eWriteStream::WriteFloat), 3},   {Slot(&eWriteStream::WriteInt), 4},
        {Slot(&eWriteStream::WriteControl), 5}, {Slot(&eWriteStream::WriteIdent), 6},
        {Slot(&eWriteStream::WriteHashed), 7},  {Slot(&eWriteStream::Flush), 8},
        {Slot(&eWriteStream::MarkEmpty), 9},    {Slot(&eSDLCipher::GetEncodedSize), 2},
        {Slot(&eSDLCipher::Encode), 3},
    };
    for (const auto& [slot, expected] : rows)
        EXPECT_EQ(slot, expected);
}

TEST(SdlInterface, MembersKeepTheirOrder) {
    const auto place = [](const auto& whole, const auto& member) {
        return reinterpret_cast<const char*>(&member) - reinterpret_cast<const char*>(&whole);
    };
    static eSDLKeyword* words;
    static const eSDLKeyword word(words, "word", 1);
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

// As std::min and EXPECT_EQ take them, without optimization too.
TEST(SdlInterface, ConstantsCanBeBoundToReferences) {
    const std::vector<const std::size_t*> counts = {&eSDLDocument::kAll, &eSDLSchema::kAll, &eSDLSchema::kMostErrors};
    EXPECT_EQ(*counts[0], ~std::size_t{0});
    EXPECT_EQ(*counts[1], ~std::size_t{0});
    EXPECT_EQ(*counts[2], 1000U);
    EXPECT_EQ(eSDLLayout().indent, eSDLLayout::kTab);
}
