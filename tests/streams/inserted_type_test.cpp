// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <qzl_io/file_name.h>
#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>

#include "probe.h"
#include "support/temp_folder.h"

// The types that can be written with <<.

namespace {

template <class Stream, class T>
concept eInserts = requires(Stream& stream, T value) {
    stream << static_cast<T>(value);
};

struct eMembers {
    int field;
    int Function() const;
};
struct eConverting {
    operator void*() const;
};
struct eText {
    operator const char*() const { return "text"; }
};
struct eTruth {
    operator bool() const { return true; }
};
enum eNumber { One = 1 };
enum class eClosed { One = 1 };

using eManipulator = IO::eFileStream& (*)(IO::eFileStream&);
using eManipulatorW = IO::eFileStreamW& (*)(IO::eFileStreamW&);
using eTextManipulator = IO::eTextStream& (*)(IO::eTextStream&);
using eLambda = decltype([](int) {});

template <class Stream, class... T>
constexpr bool InsertsAll() {
    return (eInserts<Stream, T> && ...);
}
template <class Stream, class... T>
constexpr bool InsertsNone() {
    return !(eInserts<Stream, T> || ...);
}

template <class Stream>
constexpr bool InsertsValuesAlone() {
    static_assert(InsertsAll<Stream, bool, char, unsigned char, short, unsigned short, int, unsigned int, long long,
                             unsigned long long, std::int64_t, std::uint64_t, float, double>());
    static_assert(InsertsAll<Stream, const char*, char*, const char(&)[3], char(&)[3], std::string, std::wstring,
                             std::string_view, std::u8string, std::u8string_view, eStrings, eFileName>());
    static_assert(InsertsAll<Stream, eText, eTruth, eNumber, std::vector<bool>::reference>());
    static_assert(InsertsNone<Stream, void*, const void*, int*, const unsigned char*, volatile int*, volatile char*,
                              const wchar_t*, char**, const char* const*, IO::eStream*, std::nullptr_t, int(&)[3],
                              unsigned char(&)[3], const wchar_t(&)[3], eConverting>());
    static_assert(InsertsNone<Stream, signed char, std::int8_t, wchar_t, char8_t, char16_t, char32_t, eClosed,
                              std::wstring_view, eStringsW, eFileNameW>());
    static_assert(InsertsNone<Stream, void (*)(), void (&)(), int (*)(int, int), int (*)(const char*, ...),
                              void (*)() noexcept, IO::eStream& (*)(IO::eStream&), eLambda>());
    static_assert(InsertsNone<Stream, int eMembers::*, int (eMembers::*)() const>());
    static_assert(InsertsNone<Stream, eSDLWriter& (*)(eSDLWriter&), eSDLReader& (*)(eSDLReader&), eTextManipulator>());
    static_assert(!requires(Stream & stream) { stream << endl; });
    static_assert(!requires(Stream & stream) { stream << begb; });
    return true;
}

static_assert(InsertsValuesAlone<IO::eStream>());
static_assert(InsertsValuesAlone<IO::eMemoryStream>());
static_assert(InsertsValuesAlone<IO::eBufferStream>());
static_assert(InsertsValuesAlone<IO::eFileStream>());
static_assert(InsertsValuesAlone<IO::eFileStreamW>());

static_assert(InsertsNone<IO::eStream, eManipulator, eManipulatorW>());
static_assert(InsertsNone<IO::eMemoryStream, eManipulator, eManipulatorW>());
static_assert(InsertsAll<IO::eFileStream, eManipulator>() && InsertsNone<IO::eFileStream, eManipulatorW>());
static_assert(InsertsAll<IO::eFileStreamW, eManipulatorW>() && InsertsNone<IO::eFileStreamW, eManipulator>());
static_assert(InsertsAll<IO::eTextStream, eTextManipulator>() &&
              InsertsNone<IO::eTextStream, eManipulator, void (*)(), const char*, int>());
// After a value a stream of any class is an eStream.
static_assert(InsertsNone<decltype(std::declval<IO::eFileStream&>() << 1), eManipulator, void (*)()>());

IO::eFileStream& Mark(IO::eFileStream& file) {
    file << 'm';
    return file;
}
IO::eFileStream& MarkSafely(IO::eFileStream& file) noexcept {
    file << 'n';
    return file;
}
IO::eFileStreamW& Mark(IO::eFileStreamW& file) {
    file << 'w';
    return file;
}

} // namespace

TEST(InsertedTypes, ManipulatorsOfAFileStreamAreCalled) {
    const eTempFolder folder;
    constexpr int kNew = IO::StreamMode::Write | IO::StreamMode::Create;
    IO::eFileStream narrow(folder.Name("narrow"), kNew);
    narrow << Mark << MarkSafely << [](IO::eFileStream& file) -> IO::eFileStream& { return file << Mark; } << 'x';
    narrow.Close();
    EXPECT_EQ(folder.Read("narrow"), "mnmx");
    IO::eFileStreamW wide(folder.NameW(L"wide"), kNew);
    wide << Mark << [](IO::eFileStreamW& file) -> IO::eFileStreamW& { return file << Mark; } << 'x';
    wide.Close();
    EXPECT_EQ(folder.Read("wide"), "wwx");
}

TEST(InsertedTypes, ManipulatorsOfATextStreamAreCalled) {
    IO::eMemoryStream target;
    IO::eTextStream text(&target);
    text << [](IO::eTextStream& stream) -> IO::eTextStream& { return stream.WriteStr("line\r\n"); };
    EXPECT_EQ(Content(target), "line\r\n");
}

TEST(InsertedTypes, WhatConvertsToAValueIsWrittenAsThatValue) {
    IO::eMemoryStream stream;
    stream << eText() << One << std::vector<bool>{true}[0];
    EXPECT_EQ(Content(stream).substr(0, 9), std::string("\4text\1\0\0\0", 9));
}
