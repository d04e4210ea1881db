// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>

#include "support/long_tests.h"
#include "support/reports.h"
#include "support/temp_folder.h"

#include "counted_memory.h"
#include "hostile_shapes.h"
#include "painted_stack.h"

// A document of n bytes takes at most 3n + 64 KiB of memory, what the reader hands over not counted, and 64 KiB of
// stack, whatever is in it.

namespace {

constexpr std::size_t kConstantPart = 64 * 1024;
constexpr std::size_t kLeftAtMost = 1024; // for a thread's own objects

std::size_t SizeOfDocuments() {
    return LongTests() ? 4'000'000 : 200'000;
}

std::size_t Many() {
    return LongTests() ? 1'000'000 : 20'000;
}

void ExpectWithin(const eCountedMemory& memory, std::size_t size, const std::string& what) {
    const std::size_t most = memory.Peak(), left = memory.Left();
    EXPECT_GE(most, size) << what;
    EXPECT_LE(most, 3 * size + kConstantPart) << what;
    EXPECT_LE(left, kLeftAtMost) << what;
}

class eCopyingCipher : public eSDLCipher {
public:
    std::size_t GetEncodedSize(std::size_t size) override { return size; }
    std::size_t Encode(void* to, std::size_t, const void* from, std::size_t size) override {
        std::copy_n(static_cast<const char*>(from), size, static_cast<char*>(to));
        return size;
    }
};

// Throws what it is told before it is destroyed, so that this counts, too.
template <class eRead>
void ReadUntilRefused(const eRead& read) {
    try {
        read();
    } catch (const xError::eException& failure) {
        EXPECT_LE(failure.Report().message.size() + failure.Report().context.size(), 4096u);
    }
}

class eArguments : public eHostileReader {
public:
    using eHostileReader::eHostileReader;
    using eSDLReader::GetParameters;
    using eSDLReader::PushParser;
};

class ReaderBounds : public testing::Test {
protected:
    // What a thread needs for all of its readers.
    void SetUp() override { ReadHostile("(+ 1 1)", HostileReadings().front()); }
};

} // namespace

TEST_F(ReaderBounds, HostileDocumentsTakeThreeTimesTheirSizeAtMostAndLeaveNothing) {
    for (const eHostileShape& shape : HostileShapes()) {
        const std::string text = shape.OfSize(SizeOfDocuments());
        for (const eHostileReading& reading : HostileReadings()) {
            const eCountedMemory memory;
            ReadHostile(text, reading);
            ExpectWithin(memory, text.size(), std::string(shape.name) + ", " + reading.name);
        }
    }
}

TEST_F(ReaderBounds, LikewiseAsFilesWithASignatureAndThroughACipher) {
    const eTempFolder folder;
    for (const eHostileShape& shape : HostileShapes()) {
        const std::string text = shape.OfSize(SizeOfDocuments());
        const eFileName file(folder.Write("hostile.sdl", text));
        {
            const eCountedMemory memory;
            ReadUntilRefused([&] { eSDLReader reader(file, "scene", nullptr); });
            ExpectWithin(memory, text.size(), std::string(shape.name) + ", with a signature");
        }
        {
            const eCountedMemory memory;
            ReadUntilRefused([&] {
                eHostileReader reader(file, std::make_shared<eCopyingCipher>());
                while (reader.Read()) {
                }
            });
            ExpectWithin(memory, text.size(), std::string(shape.name) + ", through a cipher");
        }
    }
}

TEST_F(ReaderBounds, AWordOfAWholeFileInPlaceOfTheSignatureIsShownInPart) {
    const eTempFolder folder;
    const eFileName file(folder.Write("hostile.sdl", "{" + std::string(SizeOfDocuments(), 'A')));
    try {
        eSDLReader reader(file, "scene", nullptr);
        ADD_FAILURE() << "no report";
    } catch (const xError::eException& failure) {
        EXPECT_EQ(failure.Report().message,
                  "File signature mismatch (read '" + std::string(1000, 'a') + "...' instead of 'scene')");
    }
}

TEST_F(ReaderBounds, ParametersThatAreReplacedTakeTheMemoryOfBothTexts) {
    const std::string text = eHostileShape{"", "", "%a ", ""}.OfSize(SizeOfDocuments());
    const std::map<eStringKey, eStringKey> parameters = {{"a", "12"}, {"b", "3"}};
    const std::vector<eSDLKeyword*> tables;
    IO::eBufferStream stream(text);
    const eCountedMemory memory;
    { eSDLParser parser("", stream, tables, parameters, nullptr); }
    ExpectWithin(memory, text.size(), "parameters");
}

TEST_F(ReaderBounds, HostileDocumentsAreReadOn64KiBOfStack) {
    for (const eHostileShape& shape : HostileShapes()) {
        const std::string text = shape.OfSize(SizeOfDocuments());
        for (const eHostileReading& reading : HostileReadings())
            EXPECT_LE(StackOf([&] { ReadHostile(text, reading); }), kConstantPart)
                << shape.name << ", " << reading.name;
    }
}

TEST_F(ReaderBounds, ManySourcesAreOpenAtOnceOnTheSameStackEachInItsOwnMemory) {
    const std::vector<eSDLKeyword*> tables;
    const eDefine define{"d", "1"};
    const auto read = [&](std::size_t count) {
        IO::eMemoryStream empty;
        eArguments reader(&empty, nullptr);
        for (std::size_t source = 0; source < count; ++source)
            reader.PushParser(new eSDLParser(define, tables, {}));
        EXPECT_EQ(reader.GetInt(), 1);
        EXPECT_THROW(reader.GetString(), xError::eException);
        reader.BlockPlace();
        for (std::size_t source = 2; source < count / 2; ++source)
            EXPECT_EQ(reader.GetInt(), 1);
    };
    std::size_t peak[2] = {};
    for (const std::size_t times : {1u, 2u}) {
        const eCountedMemory memory;
        EXPECT_LE(StackOf([&] { read(times * Many() / 2); }), kConstantPart);
        peak[times - 1] = memory.Peak();
        EXPECT_LE(memory.Left(), kLeftAtMost);
    }
    EXPECT_LE(peak[1], 1024 * Many() + kConstantPart);
    EXPECT_LE(peak[1], 2 * peak[0] + kConstantPart);
}

TEST_F(ReaderBounds, ManyIncludesOneAfterAnotherTakeTheMemoryOfOne) {
    const eTempFolder folder;
    const eFileName file(folder.Write("included.sdl", "1 "));
    const std::size_t count = Many() / 10;
    const std::string text = eHostileShape{"", "", "2 ", ""}.OfSize(2 * count);
    IO::eBufferStream including(text);
    const eCountedMemory memory;
    {
        eSDLReader reader(&including, nullptr);
        for (std::size_t source = 0; source < count; ++source) {
            reader.Include(file);
            ASSERT_EQ(reader.GetInt(), 1);
            ASSERT_EQ(reader.GetInt(), 2);
        }
    }
    EXPECT_LE(memory.Peak(), text.size() + kConstantPart);
    EXPECT_LE(memory.Left(), kLeftAtMost);
}

TEST_F(ReaderBounds, ADocumentOfManyBlocksIsWrittenAndReadOnTheSameStack) {
    static eSDLKeyword* words;
    static const eSDLKeyword word(words, "block", 1);
    const std::size_t count = Many();
    for (const bool nested : {false, true}) {
        const auto work = [&] {
            IO::eMemoryStream stream;
            {
                eSDLWriter writer(&stream);
                writer.PushKeywords(words);
                for (std::size_t at = 0; at < count; ++at) {
                    writer << block{1} << 7;
                    if (!nested)
                        writer << endb;
                }
                for (std::size_t at = 0; nested && at < count; ++at)
                    writer << endb;
            }
            stream.Reset();
            eSDLReader reader(&stream, nullptr);
            reader.PushKeywords(words);
            for (std::size_t at = 0; at < count; ++at) {
                ASSERT_EQ(reader.GetBlock(1), 1);
                ASSERT_EQ(reader.GetInt(), 7);
                if (!nested)
                    reader >> endb;
            }
            for (std::size_t at = 0; nested && at < count; ++at)
                reader >> endb;
            EXPECT_FALSE(reader.Check(sdlBlockEnd));
        };
        EXPECT_LE(StackOf(work), kConstantPart) << nested;
    }
}

TEST_F(ReaderBounds, ATableOfManyWordsFindsEach) {
    const std::size_t count = Many();
    std::vector<std::string> names;
    for (std::size_t at = 0; at < count; ++at)
        names.push_back("word" + std::to_string(at));
    static eSDLKeyword* words;
    // An entry relies on memory that is zero before it is constructed.
    const auto room = std::make_unique<std::byte[]>(count * sizeof(eSDLKeyword));
    std::vector<eSDLKeyword*> entries;
    words = nullptr;
    for (std::size_t at = 0; at < count; ++at)
        entries.push_back(new (room.get() + at * sizeof(eSDLKeyword))
                              eSDLKeyword(words, names[at].c_str(), static_cast<int>(at) + 1));
    for (std::size_t at = 0; at < count; ++at) {
        ASSERT_EQ(words->Find(names[at].c_str()), static_cast<int>(at) + 1);
        ASSERT_EQ(words->Find(static_cast<int>(at) + 1), names[at].c_str());
    }
    for (eSDLKeyword* const entry : entries)
        entry->~eSDLKeyword();
}
