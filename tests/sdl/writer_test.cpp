// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/writer.h>

#include <cstddef>
#include <memory>
#include <stdexcept>

#include <gmock/gmock.h>

#include <qzl_io/sdl/parser.h>
#include <qzl_io/sdl/reader.h>

#include "support/reports.h"
#include "support/temp_folder.h"
#include "support/written_text.h"
#include "turning_cipher.h"

namespace {

eSDLKeyword* words;
eSDLKeyword itemWord(words, "item", 10);
eSDLKeyword* otherWords;
eSDLKeyword otherWord(otherWords, "other", 10);

// A stream that counts how often it is deleted.
class eWatchedStream : public IO::eMemoryStream {
public:
    explicit eWatchedStream(int* deletions = nullptr) : deleted(deletions) {}
    ~eWatchedStream() override {
        if (deleted)
            ++*deleted;
    }

private:
    int* deleted;
};

// --- Opening and closing ---

TEST(Writer, WritesNothingBeforeItIsClosed) {
    IO::eMemoryStream target;
    eSDLWriter writer(&target);
    EXPECT_TRUE(writer.Opened());
    writer << 1 << "a";
    EXPECT_EQ(target.Size(), 0U);
    writer.Close();
    EXPECT_EQ(Content(target), "1 \"a\"");
    EXPECT_FALSE(writer.Opened());
    writer.Close();
    EXPECT_EQ(Content(target), "1 \"a\"");
}

TEST(Writer, TextsOfAnySizeReachTheirFileWhole) {
    const eTempFolder folder;
    const auto item = [](int index) { return std::string(1'000'000, static_cast<char>('a' + index % 26)); };
    for (const int items : {10, 40, 140}) {
        {
            eSDLWriter writer(eFileName(folder.Name("large.sdl")), nullptr);
            for (int i = 0; i < items; ++i)
                writer << item(i) << endl;
        }
        IO::eFileStream file(eFileName(folder.Name("large.sdl")), IO::StreamMode::Read);
        for (int i = 0; i < items; ++i)
            ASSERT_TRUE(file.GetLine() == '"' + item(i) + '"') << i;
        EXPECT_TRUE(file.Eos());
    }
}

TEST(Writer, TextsThatFollowALargeOneReachTheirFileWhole) {
    const eTempFolder folder;
    IO::eFileStream file(eFileName(folder.Name("a.sdl")), IO::StreamMode::Write | IO::StreamMode::Create);
    eSDLTextStream text;
    const std::string large(50'000'000, 'a');
    for (const std::string& item : {large, std::string("b"), large}) {
        text.WriteString(item.c_str());
        text.Flush(&file, nullptr);
    }
    file.Close();
    EXPECT_TRUE(folder.Read("a.sdl") == '"' + large + "\"\"b\"\"" + large + '"');
}

TEST(Writer, ALargeTextThatItsFileRefusesIsGone) {
    class eRefusingFile final : public IO::eFileStream {
    public:
        explicit eRefusingFile(const std::string& path)
            : eFileStream(eFileName(path), IO::StreamMode::Write | IO::StreamMode::Create) {}

    protected:
        void Overflow() override {
            if (Position() > 10'000'000)
                throw std::runtime_error("full");
            eFileStream::Overflow();
        }
    };
    const eTempFolder folder;
    eRefusingFile file(folder.Name("a.sdl"));
    eSDLTextStream text;
    text.WriteString(std::string(50'000'000, 'a').c_str());
    EXPECT_THROW(text.Flush(&file, nullptr), std::runtime_error);
    text.WriteInt(1);
    IO::eMemoryStream rest;
    text.Flush(&rest, nullptr);
    EXPECT_EQ(Content(rest), "1");
}

TEST(Writer, ContinuesAtTheTargetsPosition) {
    IO::eMemoryStream target;
    target.Write("head:", 5);
    { eSDLWriter(&target) << 1; }
    EXPECT_EQ(Content(target), "head:1");
}

TEST(Writer, ClosesWhenItIsDestroyed) {
    const eTempFolder folder;
    {
        eSDLWriter writer(eFileName(folder.Name("a.sdl")), nullptr);
        EXPECT_TRUE(writer.Opened());
        writer << 1 << endl;
    }
    EXPECT_EQ(folder.Read("a.sdl"), "1\r\n");
}

TEST(Writer, ThatWroteNothingLeavesAnEmptyFile) {
    const eTempFolder folder;
    folder.Write("a.sdl", "what was there before");
    { eSDLWriter writer(eFileName(folder.Name("a.sdl")), nullptr); }
    EXPECT_EQ(folder.Read("a.sdl"), "");
}

TEST(Writer, TakesWideNames) {
    const eTempFolder folder;
    { eSDLWriter(eFileNameW(folder.NameW(L"wide.sdl")), nullptr) << 1; }
    eSDLWriter writer;
    EXPECT_TRUE(writer.Open(eFileNameW(folder.NameW(L"opened.sdl"))));
    writer << 2;
    writer.Close();
    EXPECT_EQ(folder.Read("wide.sdl"), "1");
    EXPECT_EQ(folder.Read("opened.sdl"), "2");
}

TEST(Writer, LeavesABorrowedTargetToItsOwner) {
    int deleted = 0;
    {
        eWatchedStream target(&deleted);
        {
            eSDLWriter writer(&target);
            writer << 1;
        }
        EXPECT_EQ(deleted, 0);
        EXPECT_EQ(Content(target), "1");
    }
    EXPECT_EQ(deleted, 1);
}

TEST(Writer, ReportsNoFailedOpenAndDropsTheText) {
    const eTempFolder folder;
    const std::string name = folder.Name("no such folder/a.sdl");
    eReports reports;
    {
        eSDLWriter writer(eFileName(name), nullptr);
        EXPECT_FALSE(writer.Opened());
        writer << 1;
        EXPECT_FALSE(writer.Open(eFileName(name)));
        EXPECT_FALSE(writer.Open(eFileNameW(folder.NameW(L"no such folder/a.sdl"))));
        EXPECT_FALSE(writer.Open(eFileName()));
        EXPECT_FALSE(writer.Opened());
        writer << 2 << endl << endb;
    }
    EXPECT_TRUE(reports.errors().empty());
    EXPECT_TRUE(reports.warnings().empty());
    EXPECT_FALSE(folder.Exists("no such folder"));
}

TEST(Writer, WritesTheFirstDocumentOutWhenItIsOpenedAgain) {
    const eTempFolder folder;
    IO::eMemoryStream second;
    eSDLWriter writer(eFileName(folder.Name("first.sdl")), nullptr);
    writer.PushKeywords(words);
    writer << block{10} << endl << 1;
    writer.Open(&second);
    EXPECT_EQ(folder.Read("first.sdl"), "{item\r\n\t1");
    writer << block{10} << endl << 2 << endb;
    EXPECT_TRUE(writer.Open(eFileName(folder.Name("third.sdl"))));
    EXPECT_EQ(Content(second), "{item\r\n\t2}");
    writer << 3;
    EXPECT_TRUE(writer.Open(eFileNameW(folder.NameW(L"fourth.sdl"))));
    EXPECT_EQ(folder.Read("third.sdl"), "3");
}

TEST(Writer, WithANullStreamIsNotOpenAndDropsTheText) {
    eSDLWriter writer;
    writer.Open(static_cast<IO::eStream*>(nullptr));
    EXPECT_FALSE(writer.Opened());
    writer << 1 << endb;
    writer.Close();
    EXPECT_FALSE(writer.Opened());
}

// --- Writing without a document ---

struct eItem {
    const char* name;
    void (*write)(eSDLWriter&);
};

TEST(Writer, ThatIsNotOpenReportsEveryItem) {
    const eItem items[] = {
        {"int", [](eSDLWriter& w) { w << 1; }},
        {"float", [](eSDLWriter& w) { w << 1.0f; }},
        {"text", [](eSDLWriter& w) { w << "a"; }},
        {"ident", [](eSDLWriter& w) { w << ident{"a"}; }},
        {"block", [](eSDLWriter& w) { w << block{10}; }},
        {"end", [](eSDLWriter& w) { w << endb; }},
        {"hashed", [](eSDLWriter& w) { w.Stream().WriteHashed("a"); }},
        {"mark", [](eSDLWriter& w) { w.Stream().MarkEmpty(); }},
    };
    IO::eMemoryStream target;
    eSDLWriter never;
    eSDLWriter closed(&target);
    closed.Close();
    for (eSDLWriter* writer : {&never, &closed}) {
        for (const eItem& item : items) {
            eReports reports;
            EXPECT_THROW(item.write(*writer), xError::eException) << item.name;
            ASSERT_EQ(reports.errors().size(), 1U) << item.name;
            EXPECT_EQ(reports.errors()[0].message, "SDLWriter: Not open!") << item.name;
            EXPECT_EQ(reports.errors()[0].file, "internal/src/bios/qzl_io/sdl_writer");
            EXPECT_EQ(reports.errors()[0].line, 40);
        }
        writer->Stream().Flush(&target, nullptr);
    }
    EXPECT_EQ(target.Size(), 0U);
}

// --- Keywords ---

TEST(Writer, TakesNamesFromTheTableOnTop) {
    EXPECT_EQ(WrittenText(words,
                          [](eSDLWriter& writer) {
                              writer.PushKeywords(otherWords);
                              writer << keyword{10};
                              writer.PopKeywords();
                              writer << keyword{10};
                          }),
              "other item");
}

TEST(Writer, KeepsItsTablesAndCipherForTheNextDocument) {
    const auto cipher = std::make_shared<eTurningCipher>();
    IO::eMemoryStream first;
    IO::eMemoryStream second;
    eSDLWriter writer(&first, cipher);
    writer.PushKeywords(words);
    writer << keyword{10};
    writer.Close();
    writer.Open(&second);
    writer << keyword{10} << 2;
    writer.Close();
    EXPECT_EQ(Content(first), Turned("item"));
    EXPECT_EQ(Content(second), Turned("item 2"));
}

TEST(Writer, FailsAtAnUnknownKeyword) {
    for (const eReports::eMode mode : {eReports::Returns, eReports::Throws}) {
        eReports reports(mode);
        IO::eMemoryStream target;
        eSDLWriter writer(&target);
        EXPECT_THROW(writer << keyword{10}, xError::eException);
        writer.PushKeywords(nullptr);
        EXPECT_THROW(writer << keyword{10}, xError::eException);
        writer.PushKeywords(words);
        EXPECT_THROW(writer << keyword{0}, xError::eException);
        EXPECT_THROW(writer << block{12}, xError::eException);
        ASSERT_EQ(reports.errors().size(), 4U);
        for (const xError::eReport& report : reports.errors()) {
            EXPECT_EQ(report.message, "SDLWriter: Unknown keyword ID!");
            EXPECT_EQ(report.file, "internal/src/bios/qzl_io/sdl_writer");
        }
        writer.Close();
        EXPECT_EQ(Content(target), "{");
    }
}

TEST(Writer, SurvivesPoppingFromAnEmptyStack) {
    eSDLWriter writer;
    writer.PopKeywords();
    writer.PushKeywords(words);
    writer.PopKeywords();
    writer.PopKeywords();
    EXPECT_FALSE(writer.Opened());
}

// --- Cipher ---

TEST(Writer, GivesTheWholeTextToTheCipherOnceAndThenToTheTarget) {
    const auto cipher = std::make_shared<eTurningCipher>();
    cipher->spare = 5;
    IO::eMemoryStream target;
    std::string text;
    eSDLWriter writer(&target, cipher);
    for (int number = 0; number < 5000; ++number) {
        writer << number << endl;
        text += std::to_string(number) + "\r\n";
    }
    EXPECT_TRUE(cipher->sizes.empty());
    writer.Close();
    EXPECT_THAT(cipher->sizes, testing::ElementsAre(text.size()));
    EXPECT_THAT(cipher->capacities, testing::ElementsAre(text.size() + 5));
    EXPECT_EQ(Content(target), Turned(text));
}

TEST(Writer, AsksTheCipherForAnEmptyDocumentToo) {
    const auto cipher = std::make_shared<eTurningCipher>();
    IO::eMemoryStream target;
    { eSDLWriter writer(&target, cipher); }
    EXPECT_THAT(cipher->sizes, testing::ElementsAre(0U));
    EXPECT_THAT(cipher->capacities, testing::ElementsAre(0U));
    EXPECT_TRUE(cipher->emptyTarget);
    EXPECT_EQ(target.Size(), 0U);
}

TEST(Writer, TakesNoMoreFromTheCipherThanItsRoom) {
    const auto cipher = std::make_shared<eTurningCipher>();
    cipher->overstated = 1000;
    IO::eMemoryStream target;
    { eSDLWriter(&target, cipher) << 12345; }
    EXPECT_EQ(Content(target), Turned("12345"));
}

TEST(Writer, ReadsBackThroughTheSameCipher) {
    const eTempFolder folder;
    const eFileName name(folder.Name("secret.sdl"));
    const auto cipher = std::make_shared<eTurningCipher>();
    {
        eSDLWriter writer(name, cipher);
        writer.PushKeywords(words);
        writer << block{10} << "secret" << 3 << endb << endl;
    }
    EXPECT_EQ(folder.Read("secret.sdl"), Turned("{item \"secret\" 3}\r\n"));
    eSDLReader reader(name, words, cipher);
    EXPECT_EQ(reader.GetBlock(10), 10);
    EXPECT_EQ(reader.GetString(), "secret");
    EXPECT_EQ(reader.GetInt(), 3);
    reader >> endb;
}

TEST(Writer, IsClosedWhenItsCipherFails) {
    const eTempFolder folder;
    const auto cipher = std::make_shared<eTurningCipher>();
    cipher->failing = true;
    eSDLWriter writer(eFileName(folder.Name("a.sdl")), cipher);
    writer << 1;
    EXPECT_THROW(writer.Close(), std::runtime_error);
    EXPECT_FALSE(writer.Opened());
    writer.Close();
    EXPECT_EQ(folder.Read("a.sdl"), "");
}

TEST(Writer, LetsTheLastFlushesFailureOutOfItsDestructor) {
    const auto cipher = std::make_shared<eTurningCipher>();
    cipher->failing = true;
    IO::eMemoryStream target;
    EXPECT_THROW({ eSDLWriter(&target, cipher) << 1; }, std::runtime_error);
}

// --- While another exception is under way ---

TEST(Writer, KeepsSilentWhileAnotherExceptionIsUnderWay) {
    for (const bool reporting : {true, false}) {
        unsigned char room[4] = {};
        IO::eBufferStream target(room, sizeof room, 0);
        if (!reporting)
            target.Disable(IO::StreamMode::Errors);
        eReports reports(eReports::Throws);
        try {
            eSDLWriter writer(&target);
            writer << "a text that does not fit";
            throw std::logic_error("first");
        } catch (const std::logic_error& error) {
            EXPECT_STREQ(error.what(), "first");
        }
        EXPECT_TRUE(reports.errors().empty());
        EXPECT_EQ(target.Enabled(IO::StreamMode::Errors), reporting);
        EXPECT_EQ(std::string(reinterpret_cast<char*>(room), sizeof room), "\"a t");
    }
}

TEST(Writer, LeavesAFileAsItWasWhileAnotherExceptionIsUnderWay) {
    const eTempFolder folder;
    folder.Write("a.sdl", "old");
    EXPECT_THROW(
        {
            eSDLWriter writer(eFileName(folder.Name("a.sdl")), nullptr);
            writer << 1 << endl;
            throw std::logic_error("first");
        },
        std::logic_error);
    EXPECT_EQ(folder.Read("a.sdl"), "old");
}

TEST(Writer, ReplacesAFileWhenItCloses) {
    const eTempFolder folder;
    folder.Write("a.sdl", "the old document, which is longer");
    eSDLWriter writer;
    ASSERT_TRUE(writer.Open(eFileName(folder.Name("a.sdl"))));
    writer << 1 << endl;
    EXPECT_EQ(folder.Read("a.sdl"), "the old document, which is longer");
    writer.Close();
    EXPECT_EQ(folder.Read("a.sdl"), "1\r\n");
    ASSERT_TRUE(writer.Open(eFileNameW(folder.NameW(L"a.sdl"))));
    writer.SetSaveEnd(IO::eSaveEnd::InMemory);
    writer << 2 << endl;
    EXPECT_EQ(folder.Read("a.sdl"), "1\r\n");
    writer.Close();
    EXPECT_EQ(folder.Read("a.sdl"), "2\r\n");
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(folder.Path()), {}));
}

TEST(Writer, CreatesAMissingFileWhenItOpens) {
    const eTempFolder folder;
    eSDLWriter writer(eFileName(folder.Name("a.sdl")));
    ASSERT_TRUE(writer.Opened());
    writer << 1;
    EXPECT_EQ(folder.Read("a.sdl"), "");
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(folder.Path()), {}));
}

TEST(Writer, AFolderOrAFileInAMissingFolderDoesNotOpen) {
    const eTempFolder folder;
    const eReports reports;
    EXPECT_FALSE(eSDLWriter(eFileName(folder.Name())).Opened());
    EXPECT_FALSE(eSDLWriter(eFileName(folder.Name("missing/a.sdl"))).Opened());
    EXPECT_FALSE(eSDLWriter(eFileNameW(folder.NameW(L"missing/a.sdl"))).Opened());
    EXPECT_TRUE(reports.errors().empty() && reports.warnings().empty());
}

TEST(Writer, ACipherThatFailsLeavesTheFileAsItWas) {
    const eTempFolder folder;
    folder.Write("a.sdl", "old");
    const auto cipher = std::make_shared<eTurningCipher>();
    cipher->failing = true;
    eSDLWriter writer(eFileName(folder.Name("a.sdl")), cipher);
    writer << 1;
    EXPECT_ANY_THROW(writer.Close());
    EXPECT_EQ(folder.Read("a.sdl"), "old");
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(folder.Path()), {}));
}

TEST(Writer, WarnsOnceOfAFileThatCouldNotBeSaved) {
    const eTempFolder folder;
    std::filesystem::create_directory(folder.Path() / "gone");
    const eReports reports;
    {
        eSDLWriter writer(eFileName(folder.Name("gone/a.sdl")));
        ASSERT_TRUE(writer.Opened());
        writer << 1;
        std::filesystem::remove_all(folder.Path() / "gone");
    }
    EXPECT_TRUE(reports.errors().empty());
    ASSERT_EQ(1u, reports.warnings().size());
    const std::string message = reports.warnings()[0].message;
    EXPECT_TRUE(message.starts_with('"' + folder.Name("gone/a.sdl") + "\" cannot be saved: ")) << message;
}

TEST(Writer, KeepsItsCiphersFailureToItselfWhileAnotherExceptionIsUnderWay) {
    const auto cipher = std::make_shared<eTurningCipher>();
    cipher->failing = true;
    IO::eMemoryStream target;
    EXPECT_THROW(
        {
            eSDLWriter writer(&target, cipher);
            writer << 1;
            throw std::logic_error("first");
        },
        std::logic_error);
    EXPECT_EQ(cipher->capacities.size(), 1U);
    EXPECT_TRUE(target.Enabled(IO::StreamMode::Errors));
    EXPECT_EQ(target.Size(), 0U);
}

TEST(Writer, HasNothingToCloseWithoutATargetWhileAnotherExceptionIsUnderWay) {
    EXPECT_THROW(
        {
            const eSDLWriter writer;
            throw std::logic_error("first");
        },
        std::logic_error);
}

TEST(Writer, ReportsAFullTargetWhileNoOtherExceptionIsUnderWay) {
    unsigned char room[4] = {};
    IO::eBufferStream target(room, sizeof room, 0);
    eReports reports(eReports::Throws);
    EXPECT_THROW({ eSDLWriter(&target) << "a text that does not fit"; }, xError::eException);
    ASSERT_EQ(reports.errors().size(), 1U);
    EXPECT_EQ(reports.errors()[0].message, "Attempt to write beyond the stream!");
}

TEST(Writer, MadeWhileAnExceptionIsUnderWayReportsAsUsual) {
    struct eSaving {
        explicit eSaving(bool* wasThrown) : thrown(wasThrown) {}
        ~eSaving() {
            const auto cipher = std::make_shared<eTurningCipher>();
            cipher->failing = true;
            IO::eMemoryStream target;
            try {
                eSDLWriter(&target, cipher) << 1;
            } catch (const std::runtime_error&) {
                *thrown = true;
            }
        }
        bool* thrown;
    };
    bool thrown = false;
    try {
        const eSaving saving(&thrown);
        throw std::logic_error("first");
    } catch (const std::logic_error&) {
    }
    EXPECT_TRUE(thrown);
}

// --- Copies ---

TEST(Writer, CopiesWriteOneDocumentThatTheLastOneCloses) {
    const eTempFolder folder;
    const eFileName name(folder.Name("a.sdl"));
    auto first = std::make_unique<eSDLWriter>(name, nullptr);
    *first << 1;
    {
        eSDLWriter second(*first);
        EXPECT_TRUE(second.Opened());
        second << 2 << endl;
    }
    *first << 3;
    eSDLWriter third;
    third = *first;
    EXPECT_EQ(&third.Stream(), &first->Stream());
    first.reset();
    EXPECT_EQ(folder.Read("a.sdl"), "");
    third << 4;
    third.Close();
    EXPECT_EQ(folder.Read("a.sdl"), "1 2\r\n3 4");
}

TEST(Writer, ClosedByOneCopyIsClosedForAll) {
    const eTempFolder folder;
    eReports reports;
    eSDLWriter first(eFileName(folder.Name("a.sdl")), nullptr);
    eSDLWriter second(first);
    first << 1;
    second.Close();
    EXPECT_EQ(folder.Read("a.sdl"), "1");
    EXPECT_FALSE(first.Opened());
    EXPECT_THROW(first << 2, xError::eException);
    first.Close();
    EXPECT_EQ(folder.Read("a.sdl"), "1");
}

TEST(Writer, OpenedAgainSharesNothingWithItsCopies) {
    IO::eMemoryStream one;
    IO::eMemoryStream two;
    eSDLWriter first(&one);
    eSDLWriter second(first);
    second.Open(&two);
    EXPECT_FALSE(first.Opened());
    first.Open(&one);
    first << 1;
    second << 2;
    first.Close();
    EXPECT_TRUE(second.Opened());
    second.Close();
    EXPECT_EQ(Content(one), "1");
    EXPECT_EQ(Content(two), "2");
}

TEST(Writer, CopiesHaveKeywordStacksOfTheirOwn) {
    IO::eMemoryStream target;
    {
        eSDLWriter first(&target);
        first.PushKeywords(words);
        eSDLWriter second(first);
        second.PushKeywords(otherWords);
        first << keyword{10};
        second << keyword{10};
    }
    EXPECT_EQ(Content(target), "item other");
}

TEST(Writer, AssigningTakesOverTheKeywordStack) {
    IO::eMemoryStream target;
    {
        eSDLWriter first(&target), second;
        first.PushKeywords(words);
        second.PushKeywords(otherWords);
        second = first;
        second << keyword{10};
        second.PopKeywords();
        second.PushKeywords(otherWords);
        first << keyword{10};
    }
    EXPECT_EQ(Content(target), "item item");
}

TEST(Writer, AssignedOverClosesWhatItWasTheLastToHold) {
    IO::eMemoryStream one;
    IO::eMemoryStream two;
    eSDLWriter first(&one);
    eSDLWriter second(&two);
    first << 1;
    second << 2;
    eSDLWriter& itself = first;
    first = itself;
    EXPECT_TRUE(first.Opened());
    first = second;
    EXPECT_EQ(Content(one), "1");
    first << 3;
    second.Close();
    EXPECT_EQ(Content(two), "2 3");
}

TEST(Writer, DeletesAnOwnedTargetOnceHoweverManyCopiesThereWere) {
    const eTempFolder folder;
    std::vector<eSDLWriter> writers;
    writers.emplace_back(eFileName(folder.Name("a.sdl")), nullptr);
    for (int copy = 0; copy < 10; ++copy) {
        writers.push_back(writers.front());
        writers.back() << copy;
    }
    writers.clear();
    EXPECT_EQ(folder.Read("a.sdl"), "0 1 2 3 4 5 6 7 8 9");
}

// --- Derived writers and callers of the text stream ---

class eForgetfulWriter : public eSDLWriter {
public:
    using eSDLWriter::eSDLWriter;
    void Forget() { Init(); }
};

TEST(Writer, ThatIsInitialisedForgetsItsDocument) {
    IO::eMemoryStream target;
    eForgetfulWriter writer(&target);
    writer << 1;
    writer.Forget();
    EXPECT_FALSE(writer.Opened());
    writer.Close();
    EXPECT_EQ(target.Size(), 0U);
}

// The least that an application's own text stream must implement.
class ePlainStream : public eSDLWriter::eWriteStream {
public:
    void WriteString(const char*) override { ++items; }
    void WriteFloat(float) override { ++items; }
    void WriteControl(int) override { ++items; }
    void WriteIdent(const char*, int) override { ++items; }
    void WriteHashed(const char*) override { ++items; }
    void Flush(IO::eStream*, std::shared_ptr<eSDLCipher>) override {}

    int items = 0;
};

TEST(WriteStream, ByItselfClearsTheFormatFlagAndIgnoresMarks) {
    ePlainStream plain;
    EXPECT_FALSE(plain.formatFlag);
    EXPECT_FALSE(plain.newlinePending);
    plain.formatFlag = true;
    plain.newlinePending = true;
    plain.WriteInt(1);
    plain.MarkEmpty();
    EXPECT_FALSE(plain.formatFlag);
    EXPECT_TRUE(plain.newlinePending);
    EXPECT_EQ(plain.items, 0);
}

TEST(TextStream, FlushHandsOverAndEmptiesTheText) {
    IO::eMemoryStream target;
    eSDLTextStream text;
    text.WriteInt(1);
    text.Flush(&target, nullptr);
    text.Flush(&target, nullptr);
    EXPECT_EQ(Content(target), "1");
    text.WriteInt(2);
    text.newlinePending = true;
    text.Flush(&target, nullptr);
    EXPECT_EQ(Content(target), "12\r\n");
    EXPECT_FALSE(text.newlinePending);
    text.WriteInt(3);
    text.Flush(nullptr, std::make_shared<eTurningCipher>());
    text.Flush(&target, nullptr);
    EXPECT_EQ(Content(target), "12\r\n") << "without a target the text is emptied too";
}

TEST(TextStream, BeginsWithAStringOfAnyLength) {
    for (const std::size_t length : {500u, 1000u, 1010u, 1020u, 1021u, 1022u, 1023u, 1024u, 1025u, 2050u, 10000u}) {
        std::string escaped;
        for (std::size_t at = 0; at < length; ++at)
            escaped += "\\\"";
        EXPECT_EQ(WrittenText([&](eSDLWriter& writer) { writer << std::string(length, 'x') << 1; }),
                  '"' + std::string(length, 'x') + "\" 1");
        EXPECT_EQ(WrittenText([&](eSDLWriter& writer) { writer << std::string(length, '"') << 1; }),
                  '"' + escaped + "\" 1");
    }
}

TEST(TextStream, RemovesNothingThatHasBeenHandedOver) {
    IO::eMemoryStream target;
    eSDLTextStream text;
    for (int level = 0; level < 100; ++level)
        text.WriteControl(sdlBlockStart);
    text.MarkEmpty();
    text.Flush(&target, nullptr);
    text.WriteControl(sdlBlockEnd);
    text.WriteInt(1);
    text.MarkEmpty();
    text.WriteControl(sdlBlockEnd);
    text.Flush(&target, nullptr);
    EXPECT_EQ(Content(target), std::string(100, '{') + "}1}");
}

} // namespace
