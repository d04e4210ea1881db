// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/standard.h>

#include <array>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <limits>
#include <memory>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/strings.h>
#include <qzl_io/streams.h>

#include "support/content.h"
#include "support/reports.h"
#include "support/temp_folder.h"

using namespace std::string_view_literals;

// --- Names ---

TEST(StandardNames, EqualTexts) {
    const eFileName name("a\\b");
    EXPECT_TRUE(name == "a/b");
    EXPECT_TRUE("a/b" == name);
    EXPECT_TRUE(name == std::string("a/b"));
    EXPECT_TRUE(name == "a/b"sv);
    EXPECT_TRUE(name != "a\\b");
    EXPECT_FALSE(name != "a/b");
    EXPECT_TRUE(name == eFileName("a/b"));
    EXPECT_TRUE(eFileNameW(L"a\\b") == L"a/b");
    EXPECT_TRUE(eFileNameW(L"a\\b") != std::wstring(L"a"));
}

TEST(StandardNames, AreMadeFromViews) {
    const eFileName name = "c:\\a.txt"sv.substr(0, 4);
    EXPECT_EQ(name, "c:/a");
    eFileName assigned;
    assigned = "x\\y"sv;
    EXPECT_EQ(assigned, "x/y");
    EXPECT_EQ(eFileNameW(L"a\\b"sv), L"a/b");
    EXPECT_EQ(eFileName("a\0b"sv).size(), 3u);
    static_assert(!std::is_constructible_v<eFileName, std::wstring_view>);
}

TEST(StandardNames, AreKeysOfUnorderedContainers) {
    const std::unordered_map<eFileName, int> names = {{"a/b", 1}, {"a\\b", 2}, {"c", 3}};
    EXPECT_EQ(names.size(), 2u);
    std::unordered_map<eFileNameW, int> numbers;
    numbers[L"a"] = 1;
    EXPECT_EQ(numbers.at(L"a"), 1);
}

TEST(StandardNames, AreWrittenToStandardStreams) {
    std::ostringstream out;
    out << eFileName("a\\b") << '.';
    EXPECT_EQ(out.str(), "a/b.");
    std::wostringstream wide;
    wide << eFileNameW(L"a\\b") << L'.';
    EXPECT_EQ(wide.str(), L"a/b.");
}

TEST(StandardNames, AreFormatted) {
#if defined(__cpp_lib_format)
    EXPECT_EQ(std::format("{:>4}|", eFileName("a\\b")), " a/b|");
    EXPECT_EQ(std::format(L"{}", eFileNameW(L"a\\b")), L"a/b");
#else
    GTEST_SKIP() << "this standard library has no std::format";
#endif
}

// The names that have the characters of paths.
using eNativeName = std::conditional_t<std::is_same_v<std::filesystem::path::value_type, char>, eFileName, eFileNameW>;
using eOtherName = std::conditional_t<std::is_same_v<eNativeName, eFileName>, eFileNameW, eFileName>;

TEST(StandardNames, ComeFromPathsAndBecomePathsOfTheSameCharacters) {
    const std::filesystem::path path = std::filesystem::path("folder") / "file.txt";
    const eNativeName name = path;
    EXPECT_EQ(std::filesystem::path(name), path);
    EXPECT_TRUE(name == path.generic_string<eNativeName::eText::value_type>());
    static_assert(std::is_convertible_v<std::filesystem::path, eNativeName>);
    static_assert(!std::is_convertible_v<std::filesystem::path, eOtherName>);
    static_assert(!std::is_convertible_v<eNativeName, std::filesystem::path>);
}

TEST(StandardNames, LetFunctionsOfEitherNameTakePaths) {
    const eTempFolder folder;
    folder.Write("a.txt", "abc");
    const std::unique_ptr<IO::eStream> stream(IO::GetStream(folder.Path() / "a.txt", IO::StreamMode::Read));
    EXPECT_EQ(stream->Size(), 3u);
}

TEST(StandardTexts, PathsAreWrittenAsTheirCharacters) {
    const std::filesystem::path path = "file.txt";
    IO::eMemoryStream stream;
    stream << 'a' << path;
    IO::eMemoryStream expected;
    expected << 'a' << path.native();
    EXPECT_EQ(Content(stream), Content(expected));
}

// --- Texts and bytes on streams ---

TEST(StandardTexts, AreWrittenAsTheStreamsOwnAre) {
    IO::eMemoryStream stream;
    stream << "ab"sv << u8"cd"sv << std::u8string(u8"ef") << std::string_view() << "a\0b"sv;
    EXPECT_EQ(Content(stream), std::string("\2ab\2cd\2ef\0\1a", 12));
    stream.Reset();
    std::u8string text = u8"before";
    EXPECT_EQ(stream.GetString(), "ab");
    stream >> text;
    EXPECT_TRUE(text == u8"cd");
}

TEST(StandardTexts, OfAnyLengthAreWrittenAsPointersToThemAre) {
    for (const std::size_t length : {0u, 1u, 15u, 16u, 63u, 64u, 254u, 255u, 256u, 70'000u}) {
        const std::string text(length, 'x');
        IO::eMemoryStream expected;
        expected << text.c_str();
        IO::eMemoryStream stream;
        stream << std::string_view(text);
        EXPECT_EQ(Content(stream), Content(expected)) << length;
    }
}

TEST(StandardBytes, AreReadAndWritten) {
    const std::array<std::byte, 3> bytes = {std::byte{1}, std::byte{2}, std::byte{255}};
    IO::eMemoryStream stream;
    stream.Write(bytes);
    stream.Reset();
    std::array<std::byte, 2> read{};
    stream.Read(read);
    EXPECT_EQ(read[1], std::byte{2});
    EXPECT_EQ(stream.Position(), 2u);
    IO::eBufferStream view(bytes);
    EXPECT_EQ(view.Size(), 3u);
    EXPECT_EQ(view.GetUint16(), 0x0201);
    IO::eBufferStream text("abc"sv.substr(1));
    EXPECT_EQ(text.Size(), 2u);
    EXPECT_EQ(text.GetChar(), 'b');
}

TEST(StandardTexts, AreAddedToStringLists) {
    eStrings strings;
    strings.Add("ab"sv);
    strings.Add("cd"sv.substr(1));
    EXPECT_EQ(strings.Find("d"sv), 1u);
    std::string all;
    for (const eStringKey& each : strings)
        all += each.str();
    EXPECT_EQ(all, "abd");
}

// --- The buffer ---

TEST(StandardBuffer, WritesAtOnce) {
    IO::eMemoryStream stream;
    IO::eStandardBuffer buffer(stream);
    std::ostream out(&buffer);
    out << "number " << 42 << ' ' << 0.5;
    EXPECT_EQ(Content(stream), "number 42 0.5");
    EXPECT_EQ(out.tellp(), std::streampos(13));
    out.seekp(7) << "7";
    out.put('!');
    EXPECT_EQ(Content(stream), "number 7! 0.5");
    out.seekp(0, std::ios_base::end) << '.';
    EXPECT_EQ(stream.Position(), 14u);
    EXPECT_TRUE(out.good());
}

TEST(StandardBuffer, ReadsToTheEndOfTheData) {
    IO::eMemoryStream stream;
    std::string text;
    for (int number = 0; number < 1000; ++number)
        text += std::to_string(number) + '\n';
    stream.Write(text.data(), text.size()).Reset();
    IO::eStandardBuffer buffer(stream);
    std::istream in(&buffer);
    for (int number = 0; number < 1000; ++number) {
        int read = -1;
        ASSERT_TRUE(in >> read);
        ASSERT_EQ(read, number);
    }
    int none = 0;
    EXPECT_FALSE(in >> none);
    EXPECT_TRUE(in.eof());
    EXPECT_EQ(std::istreambuf_iterator<char>(&buffer), std::istreambuf_iterator<char>());
}

TEST(StandardBuffer, GivesBackWhatItHasReadAhead) {
    IO::eMemoryStream stream;
    stream.Write("12 34 56", 8).Reset();
    {
        IO::eStandardBuffer buffer(stream);
        std::istream in(&buffer);
        int number = 0;
        in >> number;
        EXPECT_EQ(number, 12);
        EXPECT_EQ(in.tellg(), std::streampos(2));
        EXPECT_EQ(stream.Position(), 2u);
        in >> number;
        in.sync();
        EXPECT_EQ(stream.Position(), 5u);
        in.get();
    }
    EXPECT_EQ(stream.Position(), 6u);
}

TEST(StandardBuffer, WritesWhereItHasReadTo) {
    IO::eMemoryStream stream;
    stream.Write("12 34", 5).Reset();
    IO::eStandardBuffer buffer(stream);
    std::iostream both(&buffer);
    int number = 0;
    both >> number;
    both << "!!";
    EXPECT_EQ(Content(stream), "12!!4");
    both >> number;
    EXPECT_EQ(number, 4);
}

TEST(StandardBuffer, RefusesPositionsOutsideTheData) {
    IO::eMemoryStream stream;
    stream.Write("abc", 3);
    IO::eStandardBuffer buffer(stream);
    using eOff = std::streambuf::off_type;
    const std::streampos refused(eOff(-1));
    EXPECT_EQ(buffer.pubseekoff(-1, std::ios_base::beg), refused);
    EXPECT_EQ(buffer.pubseekoff(4, std::ios_base::beg), refused);
    EXPECT_EQ(buffer.pubseekoff(1, std::ios_base::end), refused);
    EXPECT_EQ(buffer.pubseekoff(-4, std::ios_base::cur), refused);
    EXPECT_EQ(buffer.pubseekoff(std::numeric_limits<eOff>::max(), std::ios_base::cur), refused);
    EXPECT_EQ(buffer.pubseekoff(std::numeric_limits<eOff>::min(), std::ios_base::end), refused);
    EXPECT_EQ(stream.Position(), 3u);
    EXPECT_TRUE(stream.Disabled(IO::StreamMode::Bad));
    EXPECT_EQ(buffer.pubseekoff(-3, std::ios_base::end), std::streampos(0));
    EXPECT_EQ(buffer.in_avail(), 3);
}

TEST(StandardBuffer, OfAFileIsFlushedByTheStandardStream) {
    const eTempFolder folder;
    IO::eFileStream file(eFileName(folder.Name("a.txt")), 518);
    IO::eStandardBuffer buffer(file);
    std::ostream out(&buffer);
    out << "text" << std::flush;
    EXPECT_EQ(folder.Read("a.txt"), "text");
}

TEST(StandardBuffer, HasNoRoomWhereTheStreamHasNone) {
    const eReports reports;
    std::array<unsigned char, 4> bytes{};
    IO::eBufferStream stream(bytes.data(), bytes.size(), bytes.size());
    IO::eStandardBuffer buffer(stream);
    std::ostream out(&buffer);
    out << "abcdef";
    EXPECT_TRUE(out.bad());
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "abcd");
    EXPECT_EQ(buffer.pubsync(), -1);
    EXPECT_EQ(MessagesOf(reports.errors()), (std::vector<std::string>{"Attempt to write beyond the stream!"}));
}

TEST(StandardBuffer, ThatCannotGiveBackWhatItHasReadAheadMarksItsStream) {
    class eLeavingStream : public IO::eFileStream {
    public:
        using eFileStream::eFileStream;
        bool leaves = false;

    private:
        void Overflow() override {
            Leave();
            eFileStream::Overflow();
        }
        void Underflow() override {
            Leave();
            eFileStream::Underflow();
        }
        void Leave() const {
            if (leaves)
                throw std::runtime_error("gone");
        }
    };
    const eTempFolder folder;
    eLeavingStream stream(eFileName(folder.Write("a", std::string(100'000, 'a'))), IO::StreamMode::Read);
    stream.Seek(32'766, IO::eSeekDir::Begin);
    {
        IO::eStandardBuffer buffer(stream);
        EXPECT_EQ(buffer.sbumpc(), 'a');
        stream.leaves = true;
        EXPECT_FALSE(stream.Enabled(IO::StreamMode::Bad));
    }
    EXPECT_TRUE(stream.Enabled(IO::StreamMode::Bad));
}

TEST(StandardBuffer, TakesTheEndOfTheDataForNoCharacter) {
    struct eOpenBuffer : IO::eStandardBuffer {
        using eStandardBuffer::eStandardBuffer;
        using eStandardBuffer::overflow;
    };
    IO::eMemoryStream stream;
    eOpenBuffer buffer(stream);
    EXPECT_NE(buffer.overflow(eOpenBuffer::traits_type::eof()), eOpenBuffer::traits_type::eof());
    EXPECT_EQ(stream.Size(), 0u);
}

// --- Guards of handlers ---

TEST(HandlerGuards, RestoreWhatWasThere) {
    std::string told;
    const xError::eErrorHandlerGuard outer([&](const xError::eReport&) { told += 'o'; });
    const xError::eWarningHandlerGuard outerWarning([&](const xError::eReport&) { told += 'w'; });
    try {
        const xError::eErrorHandlerGuard inner([&](const xError::eReport&) { told += 'i'; });
        const xError::eWarningHandlerGuard innerWarning([&](const xError::eReport&) { told += 'v'; });
        xError::Error("unit", 1, "message", true);
        xError::Warning("unit", 1, "message", 0);
        throw std::runtime_error("");
    } catch (const std::runtime_error&) {
        told += '-';
    }
    xError::Error("unit", 1, "message", true);
    xError::Warning("unit", 1, "message", 0);
    EXPECT_EQ(told, "iv-ow");
}
