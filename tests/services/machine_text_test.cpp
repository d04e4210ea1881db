// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "machine/cached_text.h"
#include "machine/growing_query.h"
#include "machine/version_name.h"
#include "platform/pure/disk_descriptor.h"

namespace {

using IO::Platform::eQueryEnd;
using IO::System::AskGrowing;
using IO::System::eCachedText;
using IO::System::SerialInDescriptor;
using IO::System::SerialInPage80;
using IO::System::VersionName;

TEST(VersionName, IsChosenByVersionAndRole) {
    struct eRow {
        unsigned major, minor;
        std::string workstation, server;
    };
    const eRow rows[] = {
        {10, 0, "windows_10", "windows_server_2016"},
        {6, 3, "windows_8_point1", "windows_server_2012_r2"},
        {6, 2, "windows_8", "windows_server_2012"},
        {6, 1, "windows_7", "windows_server_2008_r2"},
        {6, 0, "windows_vista", "windows_server_2008"},
        {5, 2, "windows_xp_x64", "windows_server_2003_r2"},
        {5, 1, "windows_xp", "unknown"},
        {5, 0, "windows_2000", "unknown"},
        {6, 4, "unknown", "unknown"},
        {11, 0, "unknown", "unknown"},
        {10, 1, "unknown", "unknown"},
        {4, 0, "unknown", "unknown"},
        {0, 0, "unknown", "unknown"},
        {1, 0, "unknown", "unknown"},
    };
    for (const eRow& row : rows) {
        EXPECT_EQ(row.workstation, VersionName(row.major, row.minor, false)) << row.major << "." << row.minor;
        EXPECT_EQ(row.server, VersionName(row.major, row.minor, true)) << row.major << "." << row.minor;
    }
}

// A stored value of a given number of bytes 'x', and the sizes of the buffers that it was queried with.
struct eStoredValue {
    unsigned int size;
    std::vector<unsigned int> asked;

    eQueryEnd operator()(void* buffer, unsigned int* bytes) {
        asked.push_back(*bytes);
        const unsigned int room = *bytes;
        *bytes = size;
        if (size > room)
            return eQueryEnd::MoreData;
        std::fill_n(static_cast<char*>(buffer), size, 'x');
        return eQueryEnd::Done;
    }
};

TEST(GrowingQuery, ReturnsTheWholeBufferWithZerosAfterTheValue) {
    struct eRow {
        unsigned int value;
        std::vector<unsigned int> asked;
    };
    const eRow rows[] = {
        {0, {1024}}, {23, {1024}}, {1024, {1024}}, {1025, {1024, 2050}}, {5000, {1024, 10000}},
    };
    for (const eRow& row : rows) {
        eStoredValue stored{row.value, {}};
        const std::string text = AskGrowing<char>(std::ref(stored));
        EXPECT_EQ(row.asked, stored.asked) << row.value;
        EXPECT_EQ(std::string(row.value, 'x') + std::string(row.asked.back() - row.value, '\0'), text) << row.value;
    }
}

TEST(GrowingQuery, CountsBytesForWideTextsToo) {
    eStoredValue stored{2000, {}};
    const std::wstring text = AskGrowing<wchar_t>(std::ref(stored));
    EXPECT_EQ((std::vector<unsigned int>{1024, 4000}), stored.asked);
    EXPECT_EQ(4000 / sizeof(wchar_t), text.size());
    EXPECT_EQ(0, text.back());
}

TEST(GrowingQuery, AFailureGivesZerosInThePlaceOfWhateverArrived) {
    const auto fails = [](void* buffer, unsigned int*) {
        static_cast<char*>(buffer)[0] = 'x';
        return eQueryEnd::Failed;
    };
    EXPECT_EQ(std::string(1024, '\0'), AskGrowing<char>(fails));
    EXPECT_EQ(std::wstring(1024 / sizeof(wchar_t), L'\0'), AskGrowing<wchar_t>(fails));
}

TEST(GrowingQuery, EndsWhenTheNeedIsNeverMet) {
    for (const unsigned int claimed : {0u, 1u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        std::size_t largest = 0;
        const auto greedy = [&](void*, unsigned int* bytes) {
            largest = std::max(largest, std::size_t{*bytes});
            *bytes = claimed;
            return eQueryEnd::MoreData;
        };
        const std::string text = AskGrowing<char>(greedy);
        EXPECT_EQ(largest, text.size());
        EXPECT_EQ(text.npos, text.find_first_not_of('\0'));
    }
}

using eBytes = std::vector<unsigned char>;

// A descriptor with the given offset that ends with the text.
eBytes Descriptor(unsigned int offset, std::string_view text) {
    eBytes bytes(40 + text.size(), 0);
    for (std::size_t byte = 0; byte < 4; ++byte)
        bytes[24 + byte] = static_cast<unsigned char>(offset >> 8 * byte);
    std::copy(text.begin(), text.end(), bytes.begin() + 40);
    return bytes;
}

TEST(DeviceDescriptor, GivesTheTextAtItsOffsetAndNothingBeyond) {
    using namespace std::string_view_literals;
    struct eRow {
        unsigned int offset;
        std::string_view text;
        std::string serial;
    };
    const eRow rows[] = {
        {40, "S123\0rest"sv, "S123"},
        {40, "  leading blanks\0"sv, "  leading blanks"},
        {42, "S123\0"sv, "23"},
        {40, "not terminated"sv, "not terminated"},
        {40, "\0"sv, ""},
        {0, "S123\0"sv, ""},
        {44, "S123"sv, ""},
        {43, "S123"sv, "3"},
        {45, "S123"sv, ""},
        {0x7FFFFFFF, "S123\0"sv, ""},
        {0x80000000, "S123\0"sv, ""},
        {0xFFFFFFFF, "S123\0"sv, ""},
        {0xFFFFFFE0, "S123\0"sv, ""},
    };
    for (const eRow& row : rows)
        EXPECT_EQ(row.serial, SerialInDescriptor(Descriptor(row.offset, row.text))) << row.offset << " " << row.text;
}

TEST(DeviceDescriptor, OneThatIsCutShortHasNoSerial) {
    const eBytes whole = Descriptor(24, "S123");
    for (std::size_t size = 0; size < 28; ++size)
        EXPECT_EQ("", SerialInDescriptor(std::span(whole).first(size))) << size;
    EXPECT_EQ("\x18", SerialInDescriptor(std::span(whole).first(28)));
}

TEST(DiskPage80, GivesTheTextThatItsLengthNames) {
    struct eRow {
        eBytes page;
        std::string serial;
    };
    const eRow rows[] = {
        {{0, 0x80, 0, 3, 'a', 'b', 'c', 'd'}, "abc"},
        {{0, 0x80, 0, 9, 'a', 'b'}, "ab"},
        {{0, 0x80, 0xFF, 0xFF, 'a'}, "a"},
        {{0, 0x80, 0, 3, ' ', 'b', 0}, " b"},
        {{0, 0x80, 0, 0, 'a'}, ""},
        {{0, 0x80, 0, 0}, ""},
        {{0, 0x83, 0, 3, 'a', 'b', 'c'}, ""},
        {{0, 0x80, 0}, ""},
        {{}, ""},
    };
    for (const eRow& row : rows)
        EXPECT_EQ(row.serial, SerialInPage80(row.page)) << row.page.size();
}

TEST(CachedText, TriesAgainUntilThereIsOneAndKeepsThat) {
    eCachedText<char> text;
    int asked = 0;
    const auto ask = [&] { return ++asked < 3 ? std::string() : "answer" + std::to_string(asked); };
    EXPECT_EQ("", text.Get(ask));
    EXPECT_EQ("", text.Get(ask));
    const std::string& filled = text.Get(ask);
    EXPECT_EQ("answer3", filled);
    EXPECT_EQ(&filled, &text.Get(ask));
    EXPECT_EQ(3, asked);
}

TEST(CachedText, AReferenceToAnEmptyTextStaysEmpty) {
    eCachedText<wchar_t> text;
    const std::wstring& none = text.Get([] { return std::wstring(); });
    text.Get([] { return std::wstring(L"answer"); });
    EXPECT_EQ(L"", none);
}

TEST(CachedText, MayBeReadByTheQueryThatFillsIt) {
    eCachedText<char> text;
    const std::string& outer = text.Get([&] { return text.Get([] { return std::string("inner"); }) + "x"; });
    EXPECT_EQ("inner", outer);
}

TEST(CachedText, GivesManyThreadsOneTextAtOneAddress) {
    constexpr int kThreadCount = 8;
    eCachedText<char> text;
    std::atomic<int> number = 0;
    std::vector<const std::string*> seen(kThreadCount);
    std::vector<std::thread> threads;
    for (int index = 0; index < kThreadCount; ++index)
        threads.emplace_back([&, index] {
            const auto ask = [&] { return number++ % 3 == 0 ? std::string() : "answer" + std::to_string(number); };
            const std::string* answer = nullptr;
            while (!answer || answer->empty())
                answer = &text.Get(ask);
            seen[static_cast<std::size_t>(index)] = answer;
        });
    for (std::thread& thread : threads)
        thread.join();
    for (const std::string* answer : seen)
        EXPECT_EQ(seen.front(), answer);
}

} // namespace
