// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <qzl_io/streams.h>

#include "probe.h"
#include "support/reports.h"

namespace Mode = IO::StreamMode;

namespace {

std::string Hex(const IO::eStream& stream) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (const char c : Content(stream)) {
        const auto byte = static_cast<unsigned char>(c);
        text += {kDigits[byte >> 4], kDigits[byte & 15], ' '};
    }
    return text;
}

template <class T>
std::string Written(T value) {
    IO::eMemoryStream stream;
    stream << value;
    return Hex(stream);
}

// Every power of two of the width, and its neighbours.
template <class T>
std::vector<T> Landmarks() {
    std::vector<T> values = {0, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()};
    for (int bit = 0; bit < std::numeric_limits<T>::digits; ++bit) {
        const T power = static_cast<T>(static_cast<T>(1) << bit);
        for (const T value :
             {static_cast<T>(power - 1), power, static_cast<T>(power + 1), static_cast<T>(T(0) - power)})
            values.push_back(value);
    }
    return values;
}

template <class T>
void ExpectRoundTrip(T (IO::eStream::*get)(), T (IO::eStream::*peek)()) {
    const std::vector<T> values = Landmarks<T>();
    IO::eMemoryStream stream;
    for (const T value : values)
        stream << value;
    EXPECT_EQ(stream.Size(), values.size() * sizeof(T));
    stream.Reset();
    for (const T value : values) {
        EXPECT_EQ((stream.*peek)(), value);
        EXPECT_EQ((stream.*get)(), value);
    }
    stream.Reset();
    for (const T value : values) {
        T read = 1;
        stream >> read;
        EXPECT_EQ(read, value);
    }
    EXPECT_TRUE(stream.Eos());
}

} // namespace

TEST(TypedValues, AreLittleEndianWithoutPadding) {
    struct eRow {
        std::string written, expected;
    };
    const eRow rows[] = {
        {Written(true), "01 "},
        {Written(false), "00 "},
        {Written('A'), "41 "},
        {Written(static_cast<unsigned char>(0xFE)), "FE "},
        {Written(static_cast<short>(-2)), "FE FF "},
        {Written(static_cast<unsigned short>(0x0102)), "02 01 "},
        {Written(0x01020304), "04 03 02 01 "},
        {Written(0xA1B2C3D4u), "D4 C3 B2 A1 "},
        {Written(-1ll), "FF FF FF FF FF FF FF FF "},
        {Written(0x0102030405060708ull), "08 07 06 05 04 03 02 01 "},
        {Written(std::int64_t{1}), "01 00 00 00 00 00 00 00 "},
        {Written(std::uint64_t{0x0102030405060708}), "08 07 06 05 04 03 02 01 "},
        {Written(1.0f), "00 00 80 3F "},
        {Written(-2.5), "00 00 00 00 00 00 04 C0 "},
    };
    for (const eRow& row : rows)
        EXPECT_EQ(row.written, row.expected);
}

TEST(TypedValues, ReadBackWhatWasWritten) {
    ExpectRoundTrip<short>(&IO::eStream::GetInt16, &IO::eStream::Int16);
    ExpectRoundTrip<unsigned short>(&IO::eStream::GetUint16, &IO::eStream::Uint16);
    ExpectRoundTrip<int>(&IO::eStream::GetInt32, &IO::eStream::Int32);
    ExpectRoundTrip<unsigned int>(&IO::eStream::GetUint32, &IO::eStream::Uint32);
    ExpectRoundTrip<long long>(&IO::eStream::GetInt64, &IO::eStream::Int64);
    ExpectRoundTrip<unsigned long long>(&IO::eStream::GetUint64, &IO::eStream::Uint64);
    ExpectRoundTrip<char>(&IO::eStream::GetChar, &IO::eStream::Char);
    ExpectRoundTrip<unsigned char>(&IO::eStream::GetUint8, &IO::eStream::Uint8);
}

TEST(TypedValues, FloatsKeepTheirBits) {
    for (const std::uint32_t bits : {0x00000000u, 0x80000000u, 0x00000001u, 0x7F800000u, 0x7FC12345u, 0x3F9D70A4u}) {
        IO::eMemoryStream stream;
        stream << std::bit_cast<float>(bits) << std::bit_cast<double>(std::uint64_t{bits} << 32 | 7);
        stream.Reset();
        EXPECT_EQ(std::bit_cast<std::uint32_t>(stream.Float()), bits);
        float value = 1;
        stream >> value;
        EXPECT_EQ(std::bit_cast<std::uint32_t>(value), bits);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(stream.Double()), std::uint64_t{bits} << 32 | 7);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(stream.GetDouble()), std::uint64_t{bits} << 32 | 7);
    }
}

TEST(TypedValues, AnyByteButZeroIsTrue) {
    eMemory stream = Holding(std::string("\x02\x00\xFF", 3));
    EXPECT_TRUE(stream.Bool());
    EXPECT_TRUE(stream.GetBool());
    EXPECT_FALSE(stream.Bool());
    EXPECT_FALSE(stream.GetBool());
    bool value = false;
    stream >> value;
    EXPECT_TRUE(value);
}

TEST(TypedValues, PeekingStaysAndGettingMoves) {
    IO::eMemoryStream stream;
    stream << 1 << 2;
    stream.Reset();
    EXPECT_EQ(stream.Int32(), 1);
    EXPECT_EQ(stream.Int32(), 1);
    EXPECT_EQ(stream.GetInt32(), 1);
    EXPECT_EQ(stream.GetInt32(), 2);
}

TEST(TypedValues, BytesWritesTheLowBytesAndReadsThemZeroExtended) {
    struct eRow {
        int n;
        std::string bytes;
        unsigned int value;
    };
    for (const eRow& row : {eRow{1, "78 ", 0x78}, eRow{2, "78 F6 ", 0xF678}, eRow{3, "78 F6 34 ", 0x34F678},
                            eRow{4, "78 F6 34 F2 ", 0xF234F678}, eRow{0, "", 0}, eRow{5, "", 0}, eRow{-1, "", 0}}) {
        IO::eMemoryStream stream;
        stream.Bytes(row.n, 0xF234F678);
        EXPECT_EQ(Hex(stream), row.bytes) << row.n;
        stream << -1;
        stream.Reset();
        EXPECT_EQ(stream.Bytes(row.n), row.value) << row.n;
        EXPECT_EQ(stream.Position(), 0u);
        EXPECT_EQ(stream.GetBytes(row.n), row.value) << row.n;
        EXPECT_EQ(stream.Position(), row.bytes.size() / 3);
    }
}

TEST(TypedValues, BytesOfAnyOtherCountTouchNothing) {
    unsigned char bytes[4] = {};
    eBareStream stream(bytes, 4, 4, 0);
    stream.Skip(4);
    for (const int n : {0, -1, 5}) {
        stream.Bytes(n, 0x12345678);
        EXPECT_EQ(stream.Bytes(n), 0u) << n;
        EXPECT_EQ(stream.GetBytes(n), 0u) << n;
    }
    EXPECT_EQ(stream.overflows, 0);
    EXPECT_TRUE(stream.Disabled(Mode::Modified));
}

TEST(TypedValues, ATbyteHasThreeBytes) {
    IO::eMemoryStream stream;
    stream.Bytes(3, 0x12345678);
    EXPECT_EQ(Hex(stream), "78 56 34 ");
    stream << -1;
    stream.Reset();
    EXPECT_EQ(stream.Tbyte(), 0x345678u);
    EXPECT_EQ(stream.GetTbyte(), 0x345678u);
    EXPECT_EQ(stream.Position(), 3u);
    EXPECT_EQ(stream.GetTbyte(), 0xFFFFFFu);
}

TEST(TypedValues, FixedWidthReadsDoNotLookWhereTheDataEnd) {
    const eReports reports;
    eMemory stream = Holding("ab");
    EXPECT_EQ(stream.GetInt32(), 'a' + ('b' << 8));
    EXPECT_EQ(stream.Position(), 4u);
    EXPECT_EQ(stream.Size(), 2u);
    EXPECT_TRUE(stream.Disabled(Mode::Bad));
    EXPECT_TRUE(reports.errors().empty());
}

TEST(TypedValues, WritingExtendsTheDataOnlyBeyondTheirEnd) {
    eMemory stream = Holding("0123456789");
    stream << 'a' << 'b';
    EXPECT_EQ(stream.Size(), 10u);
    EXPECT_TRUE(stream.Enabled(Mode::Modified));
    stream.Seek(0, IO::eSeekDir::End);
    stream << 1;
    EXPECT_EQ(stream.Size(), 14u);
}

TEST(TypedValues, StayWithinBuffersOfEverySmallSize) {
    for (unsigned long long size = 1; size <= 12; ++size) {
        const eReports reports;
        std::vector<unsigned char> bytes(size, 0x11);
        IO::eBufferStream stream(bytes.data(), size, size);
        EXPECT_EQ(stream.GetUint64(), size >= 8 ? 0x1111111111111111u : 0x1111111111111111u >> (8 * (8 - size)))
            << size;
        EXPECT_EQ(stream.Position(), 8u);
        stream.Reset();
        stream << 0x2222222222222222ull;
        EXPECT_EQ(std::count(bytes.begin(), bytes.end(), 0x22), static_cast<long>(std::min(size, 8ull))) << size;
        EXPECT_EQ(stream.Position(), 8u);
        EXPECT_EQ(stream.Size(), std::max(size, 8ull));
    }
}

// The position plus a value's length wraps to a small number.
TEST(TypedValues, JustBeforeTheStartTouchNothingWithOrWithoutABuffer) {
    for (unsigned long long back = 1; back <= 20; ++back) {
        const eReports reports;
        unsigned char bytes[64] = {};
        IO::eMemoryStream empty(0);
        IO::eBufferStream view(bytes, sizeof bytes, sizeof bytes);
        for (IO::eStream* stream : {static_cast<IO::eStream*>(&empty), static_cast<IO::eStream*>(&view)}) {
            stream->Seek(0 - back, IO::eSeekDir::Begin);
            *stream << 'x' << short{0x7878} << 0x78787878 << 0x7878787878787878ll << "xxxxxxxxx";
            *stream << std::string(12, 'x');
            std::string text = "kept until read";
            *stream >> text;
            EXPECT_EQ(stream->GetUint8(), 0) << back;
            EXPECT_EQ(stream->GetUint16(), 0) << back;
            EXPECT_EQ(stream->GetUint32(), 0u) << back;
            EXPECT_EQ(stream->GetUint64(), 0u) << back;
            EXPECT_EQ(stream->Uint64(), 0u) << back;
            EXPECT_EQ(text, "") << back;
            EXPECT_EQ(stream->Position(), 0 - back);
            EXPECT_TRUE(stream->Enabled(Mode::Bad));
        }
        EXPECT_EQ(std::count(std::begin(bytes), std::end(bytes), 0), 64) << back;
        EXPECT_FALSE(reports.errors().empty());
    }
}
