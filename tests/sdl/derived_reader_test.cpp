// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/reader.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include <qzl_io/streams.h>

#include "sdl_source.h"
#include "support/temp_folder.h"

// Readers that applications can derive by the protected operations.

namespace {

using testing::ElementsAre;

eSDLKeyword* words;
eSDLKeyword itemWord(words, "item", 10);

// Reads other files with arguments and expands defines, as an application may do.
class eMacroReader : public eSDLReader {
public:
    explicit eMacroReader(const std::string& text) : eSDLReader(std::make_unique<IO::eBufferStream>(text).get(), {}) {
        PushKeywords(words);
    }

    using eSDLReader::Defines;
    using eSDLReader::Init;
    using eSDLReader::Parser;
    using eSDLReader::PopParser;
    using eSDLReader::PushParser;

    // Continues with the file, which may use the arguments of the next list.
    void Call(const eFileName& file) {
        ASSERT_TRUE(Parser().Get());
        ASSERT_EQ(Token().type, sdlOpen);
        std::map<eStringKey, eStringKey> parameters;
        GetParameters(&parameters);
        PushParser(NewParser(file, parameters));
    }

    void CallWide(const eFileNameW& file) { PushParser(NewParser(file)); }

    void Expand(const std::string& name) { PushParser(new eSDLParser(Defines().at(name), noTables, {})); }

    // Executes the next control block, whatever it is.
    bool Execute() {
        Parser().Get();
        EXPECT_EQ(Token().type, sdlOpen);
        return ProcessControlBlock();
    }

private:
    const std::vector<eSDLKeyword*> noTables;
};

// Records its destruction.
class eNotedParser : public eSDLParser {
public:
    eNotedParser(int parserNumber, std::vector<int>& destroyedParsers, const std::vector<eSDLKeyword*>& tables)
        : eSDLParser(eDefine{"text", "1"}, tables, {}), number(parserNumber), destroyed(destroyedParsers) {}
    ~eNotedParser() override { destroyed.push_back(number); }

private:
    int number;
    std::vector<int>& destroyed;
};

} // namespace

TEST(SdlDerivedReader, HandsArgumentsToAFile) {
    const eTempFolder folder;
    eMacroReader reader("(args 7 \"x\" item) 1 (size(12) name(a b)) 2");
    reader.Call(eFileName(folder.Write("positional.sdl", "%0 %1 %2")));
    EXPECT_TRUE(reader.Parser().IsFile());
    EXPECT_EQ(reader.Parser().Name(), folder.Name("positional.sdl"));
    EXPECT_EQ(reader.GetInt(), 7);
    EXPECT_EQ(reader.GetString(), "x");
    EXPECT_EQ(reader.GetKeyword(), 10);
    EXPECT_EQ(reader.GetInt(), 1);
    reader.Call(eFileName(folder.Write("named.sdl", "\"%size %name\"")));
    EXPECT_EQ(reader.GetString(), "12 a b");
    EXPECT_EQ(reader.GetInt(), 2);
}

TEST(SdlDerivedReader, ReadsAFileByItsWideName) {
    const eTempFolder folder;
    folder.Write("wide.sdl", "item %0");
    eMacroReader reader("1");
    reader.CallWide(eFileNameW(folder.NameW(L"wide.sdl")));
    EXPECT_TRUE(reader.Parser().IsFile());
    EXPECT_EQ(reader.Parser().Name(), folder.Name("wide.sdl"));
    EXPECT_EQ(reader.GetKeyword(), 10);
    EXPECT_EQ(reader.GetIdent(), "%0");
    EXPECT_EQ(reader.GetInt(), 1);
}

TEST(SdlDerivedReader, ExpandsItsDefines) {
    eMacroReader reader("(define box item 3) 1");
    EXPECT_TRUE(reader.Defines().empty());
    EXPECT_EQ(reader.GetInt(), 1);
    EXPECT_TRUE(reader.Defines().empty());
    reader.Defines()["box"] = {"box", "item \"in\" 3"};
    reader.Expand("box");
    EXPECT_EQ(reader.Parser().Name(), "define 'box'");
    EXPECT_FALSE(reader.Parser().IsFile());
    EXPECT_EQ(reader.GetKeyword(), 10);
    EXPECT_EQ(reader.GetString(), "in");
    EXPECT_EQ(reader.GetInt(), 3);
    EXPECT_EQ(reader.GetToken().type, sdlNone);
    eMacroReader copy(reader);
    EXPECT_EQ(copy.Defines().size(), 1u);
}

TEST(SdlDerivedReader, ExecutesAControlBlockItself) {
    eMacroReader reader("(+ 1 2) 3 (\"note\" {x} 4) 5 (mod fast) 6 (unknown)");
    EXPECT_FALSE(reader.Execute());
    EXPECT_EQ(reader.Token().type, sdlFloat);
    EXPECT_EQ(reader.Token().floatValue, 3.0f);
    EXPECT_EQ(reader.GetInt(), 3);
    for (const int next : {5, 6}) {
        EXPECT_TRUE(reader.Execute());
        EXPECT_EQ(*reader.Parser().Cptr(), ')');
        EXPECT_EQ(reader.GetInt(), next);
    }
    EXPECT_EQ(FailureOf([&] { reader.Execute(); }), ReaderFailure(466, "Invalid control block!"));
}

TEST(SdlDerivedReader, BackReturnsBeforeAnExpressionOfItsOwnWhateverOthersHaveRead) {
    eMacroReader reader("7 (* 3 4) 21");
    EXPECT_EQ(reader.GetInt(), 7);
    {
        eSDLReader other = ReaderOf("11 (+ 1 2) 12");
        EXPECT_EQ(other.GetInt(), 11);
        EXPECT_EQ(other.GetFloat(), 3.0f);
    }
    EXPECT_FALSE(reader.Execute());
    EXPECT_EQ(reader.Token().floatValue, 12.0f);
    reader.Back();
    EXPECT_EQ(reader.Token().intValue, 7);
    EXPECT_EQ(reader.GetFloat(), 12.0f);
    EXPECT_EQ(reader.GetInt(), 21);
}

TEST(SdlDerivedReader, LeavesASourceBeforeItsEnd) {
    const eTempFolder folder;
    eMacroReader reader("1 2");
    EXPECT_EQ(reader.GetInt(), 1);
    reader.CallWide(eFileNameW(folder.NameW(L"missing.sdl")));
    reader.Defines()["three"] = {"three", "3 4"};
    reader.Expand("three");
    EXPECT_EQ(reader.GetInt(), 3);
    reader.PopParser();
    reader.PopParser();
    EXPECT_EQ(reader.Token().intValue, 1);
    EXPECT_EQ(reader.GetInt(), 2);
    reader.PopParser();
    reader.PopParser();
}

TEST(SdlDerivedReader, ParsersGoFromTheTopDown) {
    std::vector<int> destroyed;
    const std::vector<eSDLKeyword*> tables;
    {
        eMacroReader reader("");
        for (const int number : {1, 2, 3, 4})
            reader.PushParser(new eNotedParser(number, destroyed, tables));
        reader.PopParser();
        EXPECT_THAT(destroyed, ElementsAre(4));
        reader.GetInt();
        reader.Back();
        reader.Check(sdlInt);
        reader.Check(sdlInt);
        EXPECT_THAT(destroyed, ElementsAre(4, 3));
    }
    EXPECT_THAT(destroyed, ElementsAre(4, 3, 2, 1));
}

TEST(SdlDerivedReader, InitPutsTheFlagsBack) {
    const eTempFolder folder;
    class eUnsignedReader : public eSDLReader {
    public:
        explicit eUnsignedReader(const eFileName& file) : eSDLReader(file, "scene", nullptr) {
            CheckEOF(false);
            Init();
            EXPECT_TRUE(CheckEOF());
        }
    };
    const eFileName open(folder.Write("a.sdl", "{scene 1"));
    EXPECT_EQ(FailureOf([&] { eUnsignedReader reader(open); }), eFailure()) << "no signature, no terminator";
}
