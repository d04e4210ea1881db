// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include <qzl_io/sdl.h>

#include "open_reader.h"
#include "sdl_source.h"
#include "support/seconds_of.h"
#include "support/temp_folder.h"

// The context of a report: what it shows of the sources that are being read.

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::size_t Count(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

// The context of a report that a string is expected, made after the token has been read.
std::string Failing(eSDLReader& reader) {
    return ContextOf([&] { reader.GetString(); });
}

class Context : public testing::Test {
protected:
    eFileName File(const std::string& name, const std::string& text = "1 2 3") const {
        return eFileName(folder.Write(name, text));
    }
    // The context of a source that begins with its name, after its first token has been read.
    std::string Shown(const std::string& name) const {
        return '"' + folder.Name(name) + "\", 1\n1: " + name.substr(0, 1) + "\xAB 2 3\n";
    }
    eSDLReader Reader(const std::string& name) const {
        return eSDLReader(File(name, name.substr(0, 1) + " 2 3"), nullptr);
    }

    const eTempFolder folder;
};

// --- Which source comes first ---

TEST_F(Context, NamesTheReportingReadersSourcesFirstInWhateverOrderReadersAreMade) {
    eSDLReader first = Reader("a.sdl");
    eSDLReader second = Reader("b.sdl");
    first.GetIdent();
    first.Include(File("c.sdl", "c 2 3"));
    second.GetIdent();
    second.Include(File("d.sdl", "d 2 3"));
    const std::string ofFirst = Shown("c.sdl") + Shown("a.sdl");
    const std::string ofSecond = Shown("d.sdl") + Shown("b.sdl");
    EXPECT_EQ(Failing(first).substr(0, ofFirst.size()), ofFirst);
    EXPECT_EQ(Failing(second), ofSecond + ofFirst);
    first.Back();
    EXPECT_EQ(Failing(first), ofFirst + ofSecond);
    second.Back();
    EXPECT_EQ(Failing(second), ofSecond + ofFirst);
}

TEST_F(Context, NamesTheSourcesOnWhateverThreadTheyAreRead) {
    eSDLReader reader = Reader("a.sdl");
    reader.GetIdent();
    reader.Include(File("b.sdl", "b 2 3"));
    const std::string expected = Shown("b.sdl") + Shown("a.sdl");
    for (int times = 0; times < 2; ++times) {
        std::string context;
        std::thread([&] { context = Failing(reader); }).join();
        EXPECT_EQ(context, expected);
        reader.Back();
    }
    EXPECT_EQ(Failing(reader), expected);
    std::thread([&] {
        eSDLReader other = Reader("c.sdl");
        EXPECT_EQ(Failing(other), Shown("c.sdl"));
    }).join();
}

TEST_F(Context, OfAReaderThatEndsOnAnotherThreadIsGoneWithIt) {
    auto reader = std::make_unique<eSDLReader>(File("a.sdl"), nullptr);
    std::thread([&] { Failing(*reader); }).join();
    std::thread([&] { reader.reset(); }).join();
    eSDLReader other = Reader("b.sdl");
    EXPECT_EQ(Failing(other), Shown("b.sdl"));
}

TEST_F(Context, ManyThreadsReadAndReportAtOnce) {
    std::vector<eSDLReader> readers;
    for (const char* name : {"a.sdl", "b.sdl", "c.sdl", "d.sdl"})
        readers.push_back(Reader(name));
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < readers.size(); ++i)
        threads.emplace_back([&, i] {
            const std::string expected = Shown(std::string(1, static_cast<char>('a' + i)) + ".sdl");
            for (int round = 0; round < 200; ++round) {
                EXPECT_EQ(Failing(readers[i]), expected);
                readers[i].Back();
            }
        });
    for (auto& thread : threads)
        thread.join();
}

TEST_F(Context, OfADestructorsReportIsTheReadersOwn) {
    const eFileName file = File("a.sdl", "{a 2 3");
    std::unique_ptr<eSDLReader> other;
    const std::string context = ContextOf([&] {
        const eSDLReader reader(file, "a", nullptr);
        other = std::make_unique<eSDLReader>(File("b.sdl"), nullptr);
    });
    EXPECT_THAT(context, StartsWith('"' + file.str() + "\", 1\n1: {a 2\xAB 3\n"));
}

TEST_F(Context, OfAParametersReportIsTheReadersOwn) {
    eOpenReader reader(File("a.sdl", "size (12)"), nullptr);
    const eSDLReader other = Reader("b.sdl");
    std::map<eStringKey, eStringKey> parameters;
    const auto get = [&] { reader.GetParameters(&parameters); };
    std::string context;
    std::thread([&] { context = ContextOf(get); }).join();
    EXPECT_THAT(context, StartsWith('"' + folder.Name("a.sdl") + "\", 1\n"));
}

// --- Missing files ---

TEST_F(Context, OfTheNextReportNamesAnIncludedFileThatIsNotThere) {
    eSDLReader reader = Reader("a.sdl");
    const std::string missing = folder.Name("no.sdl");
    reader.Include(eFileName(missing));
    EXPECT_EQ(reader.GetIdent(), "a");
    reader.Include(eFileName(folder.Name("nor this.sdl")));
    EXPECT_EQ(reader.GetInt(), 2);
    const std::string context = Failing(reader);
    const std::string current = '"' + folder.Name("a.sdl") + "\", 1\n1: a 2 3\n";
    EXPECT_THAT(context,
                StartsWith(current + '"' + folder.Name("nor this.sdl") + "\"\nThe file could not be opened: "));
    EXPECT_THAT(context, HasSubstr('"' + missing + "\"\nThe file could not be opened: "));
    reader.Back();
    EXPECT_EQ(Failing(reader), current);
}

TEST_F(Context, NamesAMissingFileWhileItIsTheCurrentSource) {
    const std::string missing = folder.Name("no.sdl");
    const std::string title = '"' + missing + "\", 1\nThe file could not be opened: ";
    EXPECT_THAT(ContextOf([&] { eSDLReader reader(eFileName(missing), "scene", nullptr); }), StartsWith(title));
    EXPECT_THAT(ContextOf([&] { eSDLReader reader(eFileNameW(folder.NameW(L"no.sdl")), "scene", nullptr); }),
                StartsWith(title));
    eOpenReader reader(File("a.sdl"), nullptr);
    reader.Include(eFileName(missing));
    eSDLParserToken operand;
    EXPECT_THAT(ContextOf([&] { reader.GetOperand(&operand); }), StartsWith(title));
}

TEST_F(Context, OfMissingFilesNamesTheLastEight) {
    eSDLReader reader = Reader("a.sdl");
    for (int i = 10; i < 30; ++i) {
        reader.Include(eFileName(folder.Name(std::to_string(i))));
        EXPECT_EQ(reader.Start(), false);
    }
    const std::string context = Failing(reader);
    EXPECT_EQ(Count(context, "could not be opened"), 8u);
    EXPECT_THAT(context, HasSubstr("/29\"\n"));
    EXPECT_THAT(context, HasSubstr("/22\"\n"));
}

// --- How much a report shows ---

TEST_F(Context, DescribesTheInnermostEightSourcesAndCountsTheRest) {
    const eFileName included = File("i.sdl");
    for (const int depth : {7, 8, 9, 10, 100}) {
        eSDLReader reader = Reader("a.sdl");
        for (int source = 1; source < depth; ++source)
            reader.Include(included);
        const std::string context = Failing(reader);
        EXPECT_EQ(Count(context, ".sdl\", 1\n1: "), static_cast<std::size_t>(std::min(depth, 8))) << depth;
        const std::string rest = "... and " + std::to_string(depth - 8) + " more\n";
        if (depth > 8)
            EXPECT_EQ(context.substr(context.size() - rest.size()), rest);
        else
            EXPECT_THAT(context, Not(HasSubstr("...")));
    }
}

TEST_F(Context, CountsTheSourcesOfAllReadersOfTheThread) {
    std::vector<eSDLReader> readers;
    for (int i = 0; i < 12; ++i)
        readers.push_back(Reader("a.sdl"));
    const std::string context = Failing(readers.front());
    EXPECT_EQ(Count(context, ".sdl\", 1\n1: "), 8u);
    EXPECT_THAT(context, StartsWith(Shown("a.sdl")));
    EXPECT_THAT(context, HasSubstr("... and 4 more\n"));
}

TEST_F(Context, TakesTimeThatGrowsNoFasterThanTheSources) {
    const eFileName included = File("i.sdl");
    eSDLReader reader = Reader("a.sdl");
    for (int source = 1; source < 20'000; ++source)
        reader.Include(included);
    // If the cost were quadratic, these reports would take a minute.
    const double seconds = SecondsOf([&] {
        for (int report = 0; report < 20; ++report) {
            EXPECT_THAT(Failing(reader), HasSubstr("... and 19992 more\n"));
            reader.Back();
        }
    });
    EXPECT_LT(seconds, 20);
}

TEST_F(Context, ShowsTheNeighbourhoodOfThePlaceInALongLine) {
    const std::string before(5000, 'b');
    const std::string behind(5000, 'e');
    const struct {
        std::string text;
        std::string shown;
    } rows[] = {
        {std::string(997, 'b') + " 12 ", "1: " + std::string(997, 'b') + " 12\xAB "},
        {std::string(998, 'b') + " 12 " + behind,
         "1: ..." + std::string(997, 'b') + " 12\xAB " + std::string(999, 'e') + "..."},
        {before + " 12\n3", "1: ..." + std::string(997, 'b') + " 12\xAB\n2: 3"},
        {"12 " + std::string(999, 'e') + "\n3", "1: 12\xAB " + std::string(999, 'e') + "\n2: 3"},
        {"12\n" + std::string(1000, 'e'), "1: 12\xAB\n2: " + std::string(1000, 'e')},
        {"12\n" + std::string(1001, 'e'), "1: 12\xAB\n2: " + std::string(1000, 'e') + "..."},
        {"1\n" + before + " 12 }", "2: ..." + std::string(997, 'b') + " 12\xAB }"},
    };
    for (const auto& row : rows) {
        eSDLReader reader(File("a.sdl", row.text), nullptr);
        while (reader.GetToken().text != "12")
            ;
        reader.Back();
        const std::string context = Failing(reader);
        EXPECT_EQ(context.substr(context.find('\n') + 1), row.shown + (row.shown.back() == '\n' ? "" : "\n"));
    }
}

TEST_F(Context, IsAsShortOnALineOfAnyLength) {
    std::string text;
    for (int word = 0; word < 20'000; ++word)
        text += "word ";
    eSDLReader reader(File("a.sdl", text), nullptr);
    for (int word = 0; word < 20'000; ++word)
        EXPECT_LT(ContextOf([&] { reader.GetInt(); }).size(), 2500u);
}

TEST_F(Context, LeavesGetContextWhole) {
    const std::string text = "a " + std::string(5000, 'b') + "\n" + std::string(5000, 'c') + "\nd";
    IO::eBufferStream stream(text);
    const std::vector<eSDLKeyword*> tables;
    eSDLParser parser("a.sdl", stream, tables, {}, nullptr);
    parser.Get();
    EXPECT_EQ(parser.GetContext(), "1: a\xAB" + text.substr(1, 5002) + "2: " + text.substr(5003, 5001) + "3: d");
    EXPECT_LT(parser.DSE_Full().size(), 2500u);
}

} // namespace
