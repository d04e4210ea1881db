// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/diagnostic.h>
#include <qzl_io/sdl.h>

#include "place_text.h"
#include "sdl_source.h"
#include "support/reports.h"
#include "support/temp_folder.h"

// Finish, the application's own complaints, and what the destructor then reports.

namespace {

using Messages = std::vector<std::string>;

constexpr const char* kNoEnd = "Block terminator expected!";
constexpr const char* kRest = "Text after the end!";

class Finish : public testing::Test {
protected:
    // The messages of all reports while a reader of a text with the signature `a` is used and then destroyed. What a
    // handler or the reader throws is caught while the reader lives.
    Messages MessagesOf(const std::string& text, eReports::eMode mode,
                        const std::function<void(eSDLReader&)>& use) const {
        const eFileName file(folder.Write("a.sdl", text));
        const eReports reports(mode);
        try {
            eSDLReader reader(file, "a", nullptr);
            try {
                use(reader);
            } catch (const xError::eException&) {
            }
        } catch (const xError::eException&) {
        }
        return ::MessagesOf(reports.errors());
    }

    const eTempFolder folder;
};

TEST_F(Finish, ReadsTheLastBraceOrReportsInPlaceOfTheDestructor) {
    const struct {
        const char* what;
        const char* text;
        std::function<void(eSDLReader&)> use;
        Messages reports;
    } rows[] = {
        {"end", "{a }", [](eSDLReader& reader) { reader.Finish(); }, {}},
        {"no end", "{a ", [](eSDLReader& reader) { reader.Finish(); }, {kNoEnd}},
        {"a value", "{a 1 }", [](eSDLReader& reader) { reader.Finish(); }, {kNoEnd}},
        {"twice", "{a } ", [](eSDLReader& reader) { reader.Finish(), reader.Finish(); }, {}},
        {"after its own report",
         "{a 1",
         [](eSDLReader& reader) {
             EXPECT_THROW(reader.Finish(), xError::eException);
             reader.Finish();
         },
         {kNoEnd}},
        {"without the check", "{a ", [](eSDLReader& reader) { reader.CheckEOF(false), reader.Finish(); }, {}},
        {"the check set again",
         "{a ",
         [](eSDLReader& reader) {
             reader.Finish();
             reader.CheckEOF(true);
         },
         {kNoEnd}},
        {"more text", "{a } 1 }", [](eSDLReader& reader) { reader.Finish(); }, {}},
        {"more text, told", "{a } 1", [](eSDLReader& reader) { reader.Finish(eSDLRest::Refuse); }, {kRest}},
        {"no end, rest told", "{a 1", [](eSDLReader& reader) { reader.Finish(eSDLRest::Refuse); }, {kNoEnd}},
        {"a brace too many", "{a }}", [](eSDLReader& reader) { reader.Finish(eSDLRest::Refuse); }, {kRest}},
        {"a character that begins no token",
         "{a } $",
         [](eSDLReader& reader) { reader.Finish(eSDLRest::Refuse); },
         {kRest}},
        {"blanks and comments",
         "{a } = ; c\r\n (\"note\" {}) {##h 1}\t",
         [](eSDLReader& reader) { reader.Finish(eSDLRest::Refuse); },
         {}},
        {"zero", "{a }\0 1", [](eSDLReader& reader) { reader.Finish(eSDLRest::Refuse); }, {}},
        {"rest told later",
         "{a } 1",
         [](eSDLReader& reader) {
             reader.Finish();
             reader.Finish(eSDLRest::Refuse);
         },
         {kRest}},
        {"a sum", "{a } (+ 1 2)", [](eSDLReader& reader) { reader.Finish(eSDLRest::Refuse); }, {kRest}},
    };
    for (const auto& row : rows)
        for (const auto mode : {eReports::Throws, eReports::Returns})
            EXPECT_EQ(MessagesOf(row.text, mode, row.use), row.reports) << row.what;
}

TEST_F(Finish, WithoutASignatureChecksTheRestAlone) {
    eSDLReader reader = ReaderOf("1 2");
    reader.Finish();
    EXPECT_EQ(reader.GetInt(), 1);
    EXPECT_EQ(FailureOf([&] { reader.Finish(eSDLRest::Refuse); }), ReaderFailure(650, kRest));
    EXPECT_EQ(FailureOf([&] { reader.Finish(eSDLRest::Refuse); }), eFailure());
}

TEST_F(Finish, ReportsAtTheLineOfTheDestructor) {
    const eFileName file(folder.Write("a.sdl", "{a 1"));
    EXPECT_EQ(FailureOf([&] { eSDLReader(file, "a", nullptr).Finish(); }), ReaderFailure(553, kNoEnd));
}

TEST_F(Finish, ReadsTheRestOfIncludedSourcesToo) {
    const eFileName included(folder.Write("b.sdl", "} 1"));
    EXPECT_EQ(MessagesOf("{a ", eReports::Throws,
                         [&](eSDLReader& reader) {
                             reader.Include(included);
                             reader.Finish(eSDLRest::Refuse);
                         }),
              Messages({kRest}));
}

TEST_F(Finish, SpeaksForAllCopies) {
    for (const bool byCopy : {false, true})
        EXPECT_EQ(MessagesOf("{a 1", eReports::Throws,
                             [&](eSDLReader& reader) {
                                 std::optional<eSDLReader> copy(reader);
                                 EXPECT_THROW((byCopy ? *copy : reader).Finish(), xError::eException);
                             }),
                  Messages({kNoEnd}));
}

TEST_F(Finish, HoldsOnWhateverThreadTheReaderEnds) {
    const eFileName file(folder.Write("a.sdl", "{a 1 "));
    const eReports reports(eReports::Throws);
    auto reader = std::make_unique<eSDLReader>(file, "a", nullptr);
    std::thread([&] { EXPECT_THROW(reader->Finish(), xError::eException); }).join();
    std::thread([&] { EXPECT_NO_THROW(reader.reset()); }).join();
    EXPECT_EQ(::MessagesOf(reports.errors()), Messages({kNoEnd}));
}

TEST_F(Finish, IsNotNeededWhileAnotherExceptionUnwinds) {
    const eFileName file(folder.Write("a.sdl", "{a 1"));
    const eReports reports(eReports::Throws);
    EXPECT_THROW(
        {
            const eSDLReader reader(file, "a", nullptr);
            throw std::runtime_error("on its way");
        },
        std::runtime_error);
    EXPECT_TRUE(reports.errors().empty());
}

// --- After a report ---

TEST_F(Finish, OfAnErrorThatIsCaughtIsLeftToTheDestructorUnlessToldOtherwise) {
    const auto fail = [](eSDLReader& reader) { reader.GetString(); };
    const auto failOnce = [](eSDLReader& reader) {
        reader.ReportOnce();
        reader.GetString();
    };
    const Messages one = {"String expected!"};
    const Messages two = {"String expected!", kNoEnd};
    for (const auto mode : {eReports::Throws, eReports::Returns}) {
        EXPECT_EQ(MessagesOf("{a 1 2 }", mode, fail), two);
        EXPECT_EQ(MessagesOf("{a 1 }", mode, fail), one);
        EXPECT_EQ(MessagesOf("{a 1 2 }", mode, failOnce), one);
        EXPECT_EQ(MessagesOf("{a 1 2 }", mode, [](eSDLReader& reader) { reader.ReportOnce(); }), Messages({kNoEnd}));
    }
}

TEST_F(Finish, OfAReaderThatReportsOnceCountsReportsOfItsCopiesAndSources) {
    EXPECT_EQ(MessagesOf("{a 1 2", eReports::Throws,
                         [](eSDLReader& reader) {
                             reader.ReportOnce();
                             eSDLReader copy(reader);
                             copy.GetString();
                         }),
              Messages({"String expected!"}));
    class eParameters : public eSDLReader {
    public:
        using eSDLReader::eSDLReader;
        void Read() {
            std::map<eStringKey, eStringKey> parameters;
            GetParameters(&parameters);
        }
    };
    const eFileName file(folder.Write("a.sdl", "{a size 1"));
    const eReports reports(eReports::Throws);
    {
        eParameters reader(file, "a", nullptr);
        reader.ReportOnce();
        EXPECT_THROW(reader.Read(), xError::eException);
    }
    EXPECT_EQ(::MessagesOf(reports.errors()), Messages({"'(' required"}));
}

// --- The application's own errors ---

TEST_F(Finish, AComplaintIsTheLastReport) {
    for (const auto mode : {eReports::Throws, eReports::Returns})
        EXPECT_EQ(MessagesOf("{a 1 2 ", mode, [](eSDLReader& reader) { reader.Complain("wrong"); }),
                  Messages({"wrong"}));
}

TEST_F(Finish, AComplaintIsReportedLikeTheReadersOwnErrors) {
    const std::string text = "{a\n  {ball -3 \"x\" } }";
    const eFileName file(folder.Write("b.sdl", text));
    eSDLReader reader(file, "a", nullptr);
    reader.GetSignature();
    const xError::ePlace ball = reader.BlockPlace();
    reader.GetInt();
    const xError::ePlace radius = reader.Place();
    EXPECT_EQ(FailureOf([&] { reader.Complain("radius must be positive"); }),
              ReaderFailure(640, "radius must be positive"));
    reader.GetString();
    const struct {
        std::function<void()> complain;
        std::size_t offset;
        const char* marked;
    } rows[] = {
        {[&] { reader.Complain("wrong"); }, text.find("\"x\""), "\"x\""},
        {[&] { reader.Complain("wrong", radius); }, text.find("-3"), "-3"},
        {[&] { reader.Complain("wrong", ball); }, text.find("{ball"), "{"},
    };
    for (const auto& row : rows) {
        xError::eReport report;
        try {
            row.complain();
        } catch (const xError::eException& exception) {
            report = exception.Report();
        }
        EXPECT_EQ(report.context.find('"' + file.str() + "\", 2\n2:   {ball -3 \"x\"\xAB"), 0u) << report.context;
        ASSERT_TRUE(report.diagnostic);
        const xError::eExcerpt& excerpt = report.diagnostic->excerpt;
        EXPECT_EQ(report.diagnostic->message, "wrong");
        EXPECT_EQ(excerpt.place.source, file.str());
        EXPECT_EQ(excerpt.place.line, 2);
        EXPECT_EQ(excerpt.place.offset, row.offset);
        EXPECT_EQ(excerpt.text, "  {ball -3 \"x\" } }");
        EXPECT_EQ(excerpt.text.substr(excerpt.markBegin, excerpt.markEnd - excerpt.markBegin), row.marked);
        EXPECT_EQ(report.diagnostic->found + report.diagnostic->expected, "");
    }
}

TEST_F(Finish, AComplaintOfAPlaceNamesItEvenIfItsSourceIsClosed) {
    const eFileName included(folder.Write("c.sdl", "1 2"));
    eSDLReader reader(eFileName(folder.Write("b.sdl", "3 4")), nullptr);
    reader.GetInt();
    const xError::ePlace outer = reader.Place();
    reader.Include(included);
    reader.GetInt();
    const xError::ePlace inner = reader.Place();
    const auto diagnosticOf = [&](const xError::ePlace& place) {
        try {
            reader.Complain("wrong", place);
        } catch (const xError::eException& exception) {
            return *exception.Report().diagnostic;
        }
    };
    EXPECT_EQ(diagnosticOf(inner).excerpt.text, "1 2");
    EXPECT_EQ(diagnosticOf(inner).includedFrom, std::vector({outer}));
    EXPECT_EQ(diagnosticOf(outer).excerpt.text, "3 4");
    EXPECT_TRUE(diagnosticOf(outer).includedFrom.empty());
    reader.GetInt();
    reader.GetInt();
    EXPECT_EQ(diagnosticOf(inner).excerpt.place, inner);
    EXPECT_EQ(diagnosticOf(inner).excerpt.text, "");
    const xError::ePlace wrong{inner.source, 1'000'000, 7, 7, 7};
    EXPECT_EQ(diagnosticOf(wrong).excerpt.place, wrong);
    EXPECT_EQ(diagnosticOf({outer.source, 1, 2, 7, 7}).excerpt.text, "");
}

} // namespace
