// SPDX-License-Identifier: BSL-1.0
#include <filesystem>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>

#include "sdl_source.h"
#include "support/temp_folder.h"
#include "support/written_text.h"

using namespace std::string_view_literals;

TEST(StandardTexts, AreWrittenAsTheWritersOwnAre) {
    const std::string text = WrittenText([](eSDLWriter& writer) {
        writer << "a\"b"sv
               << "abc"sv.substr(1, 1) << u8"caf\u00e9" << std::u8string(u8"x") << u8"y"sv << std::string_view()
               << "a\0b"sv;
    });
    EXPECT_EQ(text, "\"a\\\"b\" \"b\" \"caf\xc3\xa9\" \"x\" \"y\" \"\" \"a\"");
}

TEST(StandardTexts, AreRead) {
    eSDLReader reader = ReaderOf("\"caf\\xc3\\xa9\" \"folder/caf\xc3\xa9\" \"next\" 1");
    std::u8string text;
    std::filesystem::path path;
    reader >> text >> path;
    EXPECT_TRUE(text == u8"caf\u00e9");
    EXPECT_TRUE(path.generic_u8string() == u8"folder/caf\u00e9");
    EXPECT_TRUE(reader.TryGet(path));
    EXPECT_TRUE(path.u8string() == u8"next");
    EXPECT_FALSE(reader.TryGet(path));
    EXPECT_FALSE(reader.TryGet(text));
    EXPECT_EQ(FailureOf([&] { reader >> text; }), ReaderFailure(336, "String expected!"));
}

TEST(StandardTexts, PathsThatAreWrittenReadBack) {
    const std::filesystem::path path = std::filesystem::path(u8"folder") / u8"caf\u00e9.txt";
    const std::string text = WrittenText([&](eSDLWriter& writer) { writer << path; });
    std::filesystem::path read;
    eSDLReader reader = ReaderOf(text);
    reader >> read;
    EXPECT_EQ(read, path);
}

TEST(StandardTexts, PathsNameTheFilesOfReadersAndWriters) {
    const eTempFolder folder;
    const std::filesystem::path path = folder.Path() / "a.sdl";
    eSDLWriter(path) << 7;
    EXPECT_EQ(folder.Read("a.sdl"), "7");
    eSDLReader reader(path, nullptr);
    EXPECT_EQ(reader.GetInt(), 7);
}

TEST(KeywordsGuard, PopsTheTableHoweverItEnds) {
    static eSDLKeyword* outer;
    static eSDLKeyword outerWord(outer, "word", 1);
    static eSDLKeyword* inner;
    static eSDLKeyword innerWord(inner, "word", 2);
    eSDLReader reader = ReaderOf("word word word");
    const eSDLKeywordsGuard guard(reader, outer);
    EXPECT_EQ(reader.GetKeyword(), 1);
    try {
        const eSDLKeywordsGuard innerGuard(reader, inner);
        EXPECT_EQ(reader.GetKeyword(), 2);
        static_cast<void>(reader.GetInt());
    } catch (const xError::eException&) {
    }
    EXPECT_EQ(reader.Keywords(), outer);
    EXPECT_EQ(WrittenText(outer,
                          [](eSDLWriter& writer) {
                              {
                                  const eSDLKeywordsGuard innerGuard(writer, inner);
                                  writer << keyword{2};
                              }
                              writer << keyword{1};
                          }),
              "word word");
}
