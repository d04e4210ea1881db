// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <qzl_io/file_name.h>
#include <qzl_io/streams.h>

#include "support/interface.h"

// The interface that callers compile against: signatures, conversions, and the order of virtual functions. Signatures
// are checked by compiling: a function that is const or returns something else does not match.

using IO::eBufferStream;
using IO::eFileStream;
using IO::eFileStreamBase;
using IO::eFileStreamW;
using IO::eMemoryStream;
using IO::eMemoryStream_t;
using IO::eSeekDir;
using IO::eStream;
using IO::eTextStream;

namespace {

using u64 = unsigned long long;

template <class Value, class Stream = eStream>
inline constexpr bool kInserts = requires(Stream& stream, Value value) {
    { stream << value } -> std::same_as<eStream&>;
};
template <class Value, class Stream = eStream>
inline constexpr bool kExtracts = requires(Stream& stream, Value& value) {
    { stream >> value } -> std::same_as<eStream&>;
};

// --- The core ---

static_assert(std::is_polymorphic_v<eStream> && std::has_virtual_destructor_v<eStream>);
static_assert(!std::is_default_constructible_v<eStream> && !std::is_copy_constructible_v<eStream>);
static_assert(std::is_enum_v<eSeekDir> && !std::is_convertible_v<eSeekDir, int>);
static_assert(std::same_as<std::underlying_type_t<eSeekDir>, int>);

static_assert(Is<unsigned char* (eStream::*)() const>(&eStream::Buffer));
static_assert(Is<u64 (eStream::*)() const>(&eStream::Position));
static_assert(Is<u64 (eStream::*)() const>(&eStream::Size));
static_assert(Is<bool (eStream::*)() const>(&eStream::Eos));
static_assert(Is<bool (eStream::*)() const>(&eStream::IsOpen));
static_assert(Is<void (eStream::*)(unsigned short)>(&eStream::Enable));
static_assert(Is<void (eStream::*)(unsigned short)>(&eStream::Disable));
static_assert(Is<bool (eStream::*)(unsigned short) const>(&eStream::Enabled));
static_assert(Is<bool (eStream::*)(unsigned short) const>(&eStream::Disabled));

static_assert(Is<void (eStream::*)()>(&eStream::Trunc));
static_assert(Is<void (eStream::*)()>(&eStream::Flush));
static_assert(Is<void (eStream::*)()>(&eStream::Overflow));
static_assert(Is<void (eStream::*)()>(&eStream::Underflow));
static_assert(Is<eStream& (eStream::*)(u64)>(&eStream::Skip));
static_assert(Is<eStream& (eStream::*)(void*, u64)>(&eStream::Read));
static_assert(Is<eStream& (eStream::*)(const void*, u64)>(&eStream::Write));
static_assert(Is<eStream& (eStream::*)(u64, eSeekDir)>(&eStream::Seek));
static_assert(Is<eStream& (eStream::*)()>(&eStream::Reset));
static_assert(Is<eStream& (eStream::*)()>(&eStream::Clear));
static_assert(Is<eStream& (eStream::*)(eStream&, u64)>(&eStream::CopyTo));
static_assert(Is<eStream& (eStream::*)(eStream&, u64)>(&eStream::CopyFrom));

// --- Values ---

static_assert(Is<eStream& (eStream::*)(int, unsigned int)>(&eStream::Bytes));
static_assert(Is<unsigned int (eStream::*)(int)>(&eStream::Bytes));
static_assert(Is<unsigned int (eStream::*)(int)>(&eStream::GetBytes));
static_assert(Is<unsigned int (eStream::*)()>(&eStream::Tbyte) && Is<unsigned int (eStream::*)()>(&eStream::GetTbyte));
static_assert(Is<bool (eStream::*)()>(&eStream::Bool) && Is<bool (eStream::*)()>(&eStream::GetBool));
static_assert(Is<char (eStream::*)()>(&eStream::Char) && Is<char (eStream::*)()>(&eStream::GetChar));
static_assert(Is<unsigned char (eStream::*)()>(&eStream::Uint8) &&
              Is<unsigned char (eStream::*)()>(&eStream::GetUint8));
static_assert(Is<short (eStream::*)()>(&eStream::Int16) && Is<short (eStream::*)()>(&eStream::GetInt16));
static_assert(Is<unsigned short (eStream::*)()>(&eStream::Uint16) &&
              Is<unsigned short (eStream::*)()>(&eStream::GetUint16));
static_assert(Is<int (eStream::*)()>(&eStream::Int32) && Is<int (eStream::*)()>(&eStream::GetInt32));
static_assert(Is<unsigned int (eStream::*)()>(&eStream::Uint32) &&
              Is<unsigned int (eStream::*)()>(&eStream::GetUint32));
static_assert(Is<long long (eStream::*)()>(&eStream::Int64) && Is<long long (eStream::*)()>(&eStream::GetInt64));
static_assert(Is<u64 (eStream::*)()>(&eStream::Uint64) && Is<u64 (eStream::*)()>(&eStream::GetUint64));
static_assert(Is<float (eStream::*)()>(&eStream::Float) && Is<float (eStream::*)()>(&eStream::GetFloat));
static_assert(Is<double (eStream::*)()>(&eStream::Double) && Is<double (eStream::*)()>(&eStream::GetDouble));
static_assert(Is<std::string (eStream::*)()>(&eStream::GetString));
static_assert(Is<std::string (eStream::*)(char)>(&eStream::GetLine));

template <class... Values>
constexpr bool AreValues() {
    return (... && (kInserts<Values> && kExtracts<Values>));
}
static_assert(AreValues<bool, char, unsigned char, short, unsigned short, int, unsigned int, long long, u64>());
static_assert(AreValues<std::size_t, std::int64_t, std::uint64_t>());
static_assert(sizeof(long) != 8 || AreValues<long, unsigned long>());
static_assert(AreValues<float, double, std::string, std::wstring, eStrings, eFileName>());
static_assert(kInserts<const char*> && kInserts<char*> && kInserts<const char (&)[5]>);
static_assert(kInserts<int, eFileStream> && kInserts<eFileName, eFileStream>);
static_assert(kExtracts<int, eFileStream> && kExtracts<eFileName, eFileStream>);

// --- Streams in memory ---

template <class Stream>
constexpr bool IsMemoryStream() {
    static_assert(std::derived_from<Stream, eMemoryStream>);
    static_assert(std::is_constructible_v<Stream, u64, u64> && std::is_constructible_v<Stream, int, int>);
    static_assert(std::is_constructible_v<Stream, u64> && std::is_default_constructible_v<Stream>);
    static_assert(
        requires(void (*take)(Stream)) { take({}); }, "the default constructor is not explicit");
    static_assert(std::is_copy_constructible_v<Stream> && std::is_copy_assignable_v<Stream>);
    static_assert(Is<void (Stream::*)(u64, bool)>(&Stream::ResizeBuffer));
    static_assert(Is<bool (Stream::*)(u64)>(&Stream::ShiftLeft));
    return true;
}
static_assert(IsMemoryStream<eMemoryStream>() && IsMemoryStream<eMemoryStream_t>());

static_assert(std::derived_from<eBufferStream, eStream> && !std::derived_from<eBufferStream, eMemoryStream>);
static_assert(std::is_default_constructible_v<eBufferStream> && std::is_copy_constructible_v<eBufferStream>);
static_assert(std::is_constructible_v<eBufferStream, const unsigned char*, u64, u64>);
static_assert(std::is_constructible_v<eBufferStream, const std::string&>);
static_assert(Is<void (eBufferStream::*)(const unsigned char*, u64, u64)>(&eBufferStream::Assign));

// --- Streams over files, and the text stream ---

template <class Stream, class Name, class Text>
constexpr bool IsFileStream() {
    static_assert(std::derived_from<Stream, eFileStreamBase> && std::derived_from<eFileStreamBase, eStream>);
    static_assert(std::is_default_constructible_v<Stream> && std::is_constructible_v<Stream, const Name&, int>);
    static_assert(std::is_constructible_v<Stream, Text, int> && !std::is_constructible_v<Stream, Text>);
    static_assert(std::is_copy_constructible_v<Stream> && std::is_copy_assignable_v<Stream>);
    static_assert(std::is_nothrow_move_constructible_v<Stream> && std::is_nothrow_move_assignable_v<Stream>);
    static_assert(Is<void (Stream::*)(const Name&, int)>(&Stream::Open));
    static_assert(Is<void (eFileStreamBase::*)()>(&Stream::Close));
    static_assert(Is<void (eFileStreamBase::*)()>(&Stream::Fresh));
    static_assert(Is<std::string (eFileStreamBase::*)()>(&Stream::GetLine));
    static_assert(Is<std::string (eStream::*)(char)>(&Stream::GetLine));
    static_assert(Is<Stream& (Stream::*)(Stream & (*)(Stream&))>(&Stream::operator<<));
    static_assert(Is<eStream* (*)(const Name&, int)>(&IO::GetStream));
    static_assert(std::is_constructible_v<eTextStream, const Name&, int>);
    static_assert(std::is_constructible_v<eTextStream, Text, int>);
    static_assert(requires(Text text) { IO::GetStream(text, IO::StreamMode::Read); });
    return true;
}
static_assert(IsFileStream<eFileStream, eFileName, const char*>());
static_assert(IsFileStream<eFileStreamW, eFileNameW, const wchar_t*>());
static_assert(Is<void (eFileStreamBase::*)(int)>(&eFileStreamBase::Open));

static_assert(!std::is_polymorphic_v<eTextStream> && std::is_copy_assignable_v<eTextStream>);
static_assert(std::is_constructible_v<eTextStream, eStream*> && std::is_constructible_v<eTextStream, eFileStream*>);
static_assert(Is<eStream& (eTextStream::*)() const>(&eTextStream::Stream));
static_assert(Is<u64 (eTextStream::*)() const>(&eTextStream::Position));
static_assert(Is<eTextStream& (eTextStream::*)(const char*)>(&eTextStream::WriteStr));
static_assert(Is<eTextStream& (eTextStream::*)(eTextStream& (*)(eTextStream&))>(&eTextStream::operator<<));
static_assert(Is<const char* (*)()>(&IO::TextLineSeparator) && Is<const wchar_t* (*)()>(&IO::TextLineSeparatorW));

// --- Names ---

static_assert(std::same_as<std::underlying_type_t<eFileNameItem>, int>);
static_assert(std::is_convertible_v<eFileNameItem, int>);

template <class Name, class T>
constexpr bool IsName() {
    using eBase = eFileNameBase<T>;
    using eText = std::basic_string<T>;
    static_assert(std::is_abstract_v<eBase> && std::derived_from<Name, eBase> && !std::has_virtual_destructor_v<Name>);
    static_assert(std::is_convertible_v<const T*, Name> && std::is_convertible_v<const eText&, Name>);
    static_assert(requires(void (*take)(Name)) { take({}); });
    static_assert(requires(Name name) {
        { name = std::declval<const T*>() } -> std::same_as<eBase&>;
        { name = std::declval<const eText&>() } -> std::same_as<eBase&>;
        { name = std::declval<const eBase&>() } -> std::same_as<eBase&>;
        name = nullptr;
    });
    static_assert(Is<Name& (Name::*)()>(&Name::Path) && Is<Name& (Name::*)()>(&Name::Unpath));
    static_assert(Is<Name (Name::*)() const>(&Name::GetPath) && Is<Name (Name::*)() const>(&Name::GetUnpath));
    static_assert(Is<Name& (Name::*)(const Name&)>(&Name::Add) && Is<Name& (Name::*)(const Name&)>(&Name::Trim));
    static_assert(Is<Name (Name::*)(const Name&) const>(&Name::GetAdd));
    static_assert(Is<Name& (Name::*)(eFileNameItem)>(&Name::Item));
    static_assert(Is<Name (Name::*)(eFileNameItem) const>(&Name::GetItem));
    static_assert(Is<const eBase& (eBase::*)(eBase*, eFileNameItem) const>(&Name::GetItemTo));
    static_assert(Is<bool (eBase::*)() const>(&Name::IsPath) && Is<bool (eBase::*)() const>(&Name::IsRoot));
    static_assert(Is<bool (eBase::*)() const>(&Name::IsValidName));
    static_assert(Is<bool (Name::*)(T) const>(&Name::IsCharValidForName));
    static_assert(Is<bool (eBase::*)(const eBase&) const>(&Name::operator==));
    static_assert(Is<bool (eBase::*)(const eBase&) const>(&Name::operator!=));
    static_assert(Is<bool (eBase::*)(const eBase&) const>(&Name::operator<));
    static_assert(Is<const T* (eBase::*)() const>(&Name::c_str) && Is<const eText& (eBase::*)() const>(&Name::str));
    static_assert(Is<bool (eBase::*)() const>(&Name::empty) && Is<Name& (Name::*)()>(&Name::clear));
    static_assert(Is<u64 (eBase::*)() const>(&Name::length) && Is<u64 (eBase::*)() const>(&Name::size));
    return true;
}
static_assert(IsName<eFileName, char>() && IsName<eFileNameW, wchar_t>());
static_assert(Is<eStream& (*)(eStream&, const eFileName&)>(&operator<<));
static_assert(Is<eStream& (*)(eStream&, eFileName&)>(&operator>>));

// --- Virtual functions ---

using eSlots = std::vector<std::ptrdiff_t>;

template <class Stream>
struct eCoreSlots : Stream {
    static eSlots Get() {
        return {Slot(&eCoreSlots::Trunc),     Slot(&eCoreSlots::Flush), Slot(&eCoreSlots::Overflow),
                Slot(&eCoreSlots::Underflow), Slot(&eCoreSlots::Skip),  Slot(&eCoreSlots::Dump)};
    }
    static_assert(Is<std::string (Stream::*)() const>(&eCoreSlots::Dump));
    static_assert(Is<unsigned char* (eStream::*)(u64)>(&eCoreSlots::Look));
    static_assert(Is<unsigned char* (eStream::*)(u64)>(&eCoreSlots::Take));
    static_assert(Is<unsigned char* (eStream::*)(u64)>(&eCoreSlots::Place));
    static_assert(Is<void (eStream::*)()>(&eCoreSlots::PlaceBuffer));
};

template <class Stream>
struct eMemorySlots : Stream {
    static eSlots Get() { return {Slot(&eMemorySlots::AllocateBuffer), Slot(&eMemorySlots::DeallocateBuffer)}; }
    static_assert(Is<unsigned char* (Stream::*)(u64) const>(&eMemorySlots::AllocateBuffer));
    static_assert(Is<void (Stream::*)(unsigned char*&) const>(&eMemorySlots::DeallocateBuffer));
    static_assert(Is<void (eMemoryStream::*)(u64, u64)>(&eMemorySlots::CreateBuffer));
};

template <class Stream>
struct eFileSlots : Stream {
    static eSlots Get() { return {Slot(&eFileSlots::CreateHandle), Slot(&eFileSlots::CreateHandleError)}; }
    static_assert(Is<int (Stream::*)(int) const>(&eFileSlots::CreateHandle));
    static_assert(Is<void (Stream::*)() const>(&eFileSlots::CreateHandleError));
};

template <class Name>
struct eNameSlots : Name {
    static eSlots Get() {
        return {Slot(&eNameSlots::IsValidName),  Slot(&eNameSlots::IsCharValidForName),
                Slot(&eNameSlots::DelimiterWin), Slot(&eNameSlots::Delimiter),
                Slot(&eNameSlots::Dot),          Slot(&eNameSlots::StrNCmp)};
    }
};

} // namespace

TEST(Interface, StreamsKeepTheirVirtualFunctionsInOrder) {
    const eSlots core = {2, 3, 4, 5, 6, 7};
    const eSlots own = {8, 9};
    for (const eSlots& slots :
         {eCoreSlots<eStream>::Get(), eCoreSlots<eBufferStream>::Get(), eCoreSlots<eMemoryStream>::Get(),
          eCoreSlots<eMemoryStream_t>::Get(), eCoreSlots<eFileStreamBase>::Get(), eCoreSlots<eFileStream>::Get(),
          eCoreSlots<eFileStreamW>::Get()})
        EXPECT_EQ(slots, core);
    for (const eSlots& slots :
         {eMemorySlots<eMemoryStream>::Get(), eMemorySlots<eMemoryStream_t>::Get(), eFileSlots<eFileStreamBase>::Get(),
          eFileSlots<eFileStream>::Get(), eFileSlots<eFileStreamW>::Get()})
        EXPECT_EQ(slots, own);
}

TEST(Interface, NamesKeepTheirVirtualFunctionsInOrder) {
    const eSlots expected = {0, 1, 2, 3, 4, 5};
    for (const eSlots& slots : {eNameSlots<eFileNameBase<char>>::Get(), eNameSlots<eFileNameBase<wchar_t>>::Get(),
                                eNameSlots<eFileName>::Get(), eNameSlots<eFileNameW>::Get()})
        EXPECT_EQ(slots, expected);
}

TEST(Interface, CallsAreWrittenInOneExpression) {
    eMemoryStream stream;
    stream << 1 << 2u << 'c' << true << 0.5f << "text" << std::string("more") << eFileName("a\\b");
    EXPECT_EQ(stream.Reset().Skip(4).Seek(0 - 4ull, eSeekDir::Current).Position(), 0u);
    int number = 0;
    unsigned int natural = 0;
    char letter = 0;
    bool flag = false;
    float half = 0;
    std::string text, more;
    eFileName name;
    stream >> number >> natural >> letter >> flag >> half >> text >> more >> name;
    EXPECT_EQ(number, 1);
    EXPECT_EQ(natural, 2u);
    EXPECT_EQ(letter, 'c');
    EXPECT_TRUE(flag);
    EXPECT_EQ(half, 0.5f);
    EXPECT_EQ(text + more, "textmore");
    EXPECT_EQ(name.GetPath().Add("name.x").GetItem(NameExt).Path().Unpath().str(), "name.x");
    EXPECT_EQ(eMemoryStream().CopyFrom(stream.Reset(), 4).Bytes(3, 0x345678).Size(), 7u);
}
