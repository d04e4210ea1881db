// SPDX-License-Identifier: BSL-1.0
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_io/sdl.h>

#include "sdl_source.h"
#include "support/temp_folder.h"
#include "turning_cipher.h"

namespace {

const std::string kMark = "\xEF\xBB\xBF";

using eParameters = std::map<eStringKey, eStringKey>;

class ByteOrderMark : public testing::Test {
protected:
    eFileName File(const std::string& name, const std::string& text) const {
        return eFileName(folder.Write(name, text));
    }

    const eTempFolder folder;
};

TEST_F(ByteOrderMark, IsSkippedAtTheStartOfEverySource) {
    const eFileName file = File("a.sdl", kMark + "{scene 1}");
    const eFileNameW wide(folder.NameW(L"a.sdl"));
    EXPECT_EQ(eSDLReader(file, "scene", nullptr).GetInt(), 1);
    EXPECT_EQ(eSDLReader(wide, "scene", nullptr).GetInt(), 1);
    EXPECT_EQ(eSDLReader(file, nullptr).GetSignature(), "scene");
    EXPECT_EQ(eSDLReader(wide, nullptr).GetSignature(), "scene");
    EXPECT_EQ(eSDLReader(file, static_cast<eSDLKeyword*>(nullptr), nullptr).GetSignature(), "scene");
    EXPECT_TRUE(ReaderOf(kMark + "{").Start());
    EXPECT_TRUE(ReaderOf(kMark + "}").End());
    EXPECT_EQ(ReaderOf(kMark + "7").GetInt(), 7);
    EXPECT_TRUE(ReaderOf(kMark).Check(sdlNone));
    eSDLReader skipping = ReaderOf(kMark + "1 {2} } 3");
    skipping.SkipBlock();
    EXPECT_EQ(skipping.GetInt(), 3);
}

TEST_F(ByteOrderMark, IsSkippedInIncludedFilesAndDecipheredTexts) {
    eSDLReader reader = ReaderOf("1 4");
    EXPECT_EQ(reader.GetInt(), 1);
    reader.Include(File("b.sdl", kMark + "2 3"));
    for (const int expected : {2, 3, 4})
        EXPECT_EQ(reader.GetInt(), expected);
    const auto cipher = std::make_shared<eTurningCipher>();
    EXPECT_EQ(eSDLReader(File("c.sdl", Turned(kMark + "{c 5}")), "c", cipher).GetInt(), 5);
    // A mark before the enciphered text is not skipped.
    EXPECT_EQ(FailureOf([&] { eSDLReader(File("d.sdl", kMark + Turned("{c 5}")), "c", cipher); }),
              ReaderFailure(17, "Not SDL file!"));
}

TEST_F(ByteOrderMark, IsSkippedAtTheStreamsPosition) {
    const std::string text = "header" + kMark + "8";
    IO::eBufferStream stream(text);
    stream.Seek(6, IO::eSeekDir::Begin);
    EXPECT_EQ(eSDLReader(&stream, nullptr).GetInt(), 8);
}

TEST_F(ByteOrderMark, IsSkippedOnceAndOnlyAsAWhole) {
    for (const std::string& text :
         {kMark + kMark + "1", " " + kMark + "1", kMark.substr(0, 2) + "1", kMark.substr(0, 1)})
        EXPECT_TRUE(ReaderOf(text).Check(sdlError)) << text;
}

TEST_F(ByteOrderMark, OfADefineOrAParameterIsAnErrorLikeAnyOther) {
    const std::vector<eSDLKeyword*> tables;
    eSDLParser define(eDefine{"d", kMark + "1"}, tables, {});
    define.Get();
    EXPECT_EQ(define.Token().type, sdlError);
    const std::string text = "%a 1";
    IO::eBufferStream stream(text);
    eSDLParser parser("", stream, tables, eParameters{{eStringKey("a"), eStringKey(kMark)}}, nullptr);
    parser.Get();
    EXPECT_EQ(parser.Token().type, sdlError);
}

TEST_F(ByteOrderMark, IsNotPartOfAPlaceInTheText) {
    const std::vector<eSDLKeyword*> tables;
    const std::string text = kMark + "%a 2\n3";
    IO::eBufferStream stream(text);
    eSDLParser parser("", stream, tables, eParameters{{eStringKey("a"), eStringKey("word")}}, nullptr);
    EXPECT_EQ(parser.GetContext(), "1: \xABword 2\n2: 3");
    EXPECT_EQ(parser.Line(), 1);
    EXPECT_STREQ(parser.Cptr(), "word 2\n3");
    parser.Get();
    EXPECT_EQ(parser.GetContext(), "1: word\xAB 2\n2: 3");
    eSDLParser copy(parser);
    EXPECT_EQ(copy.GetContext(), "1: word\xAB 2\n2: 3");
    EXPECT_EQ(copy.DSE_Full(), copy.GetContext());
    copy.Back();
    EXPECT_STREQ(copy.Cptr(), "word 2\n3");
    const eFileName file = File("e.sdl", kMark + "{e x}");
    const std::string shown = '"' + file.str() + "\", 1\n1: {e x\xAB}\n";
    EXPECT_EQ(ContextOf([&] { eSDLReader(file, "e", nullptr).GetInt(); }).substr(0, shown.size()), shown);
}

} // namespace
