// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/json_to_sdl.h>

#include <cstddef>
#include <filesystem>
#include <set>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <gmock/gmock.h>

#include "support/reports.h"
#include "support/temp_folder.h"

namespace {

static_assert(std::is_same_v<decltype(&JsonToSdl), bool (*)(const eFileName&, const eFileName&)>);

using testing::HasSubstr;

class JsonToSdlTest : public testing::Test {
protected:
    bool Convert(std::string_view json) {
        folder.Write("in.json", json);
        return JsonToSdl(eFileName(folder.Name("in.json")), eFileName(folder.Name("out.sdl")));
    }

    // The SDL text, or the failure.
    std::string Converted(std::string_view json) {
        return Convert(json) ? folder.Read("out.sdl") : "conversion failed";
    }

    void ExpectOneWarning(const std::string& message, const std::string& file) {
        EXPECT_TRUE(reports.errors().empty());
        ASSERT_EQ(reports.warnings().size(), 1U);
        const xError::eReport& warning = reports.warnings()[0];
        EXPECT_THAT(warning.message, HasSubstr(message));
        EXPECT_FALSE(warning.message.empty());
        EXPECT_THAT(warning.context, HasSubstr(file));
        EXPECT_EQ(warning.file, "internal/src/bios/qzl_io/json_to_sdl");
    }

    eTempFolder folder;
    eReports reports;
};

TEST_F(JsonToSdlTest, GivesTheWorkedExampleByteForByte) {
    EXPECT_EQ(Converted(R"({"a": 1, "b": {"c": "x"}, "d": [1, 2], "e": [{"f": 0.5}], "g": null})"), "{a 1}\r\n"
                                                                                                    "{b\r\n"
                                                                                                    "\t{c \"x\"}\r\n"
                                                                                                    "}\r\n"
                                                                                                    "{d\r\n"
                                                                                                    "\t1\r\n"
                                                                                                    "\t2\r\n"
                                                                                                    "}\r\n"
                                                                                                    "{e\r\n"
                                                                                                    "\t{\r\n"
                                                                                                    "\t\t{f 0.5}\r\n"
                                                                                                    "\t}\r\n"
                                                                                                    "}\r\n"
                                                                                                    "{g}\r\n");
    EXPECT_TRUE(reports.warnings().empty());
}

struct eCase {
    std::string_view json;
    std::string_view sdl;
};

TEST_F(JsonToSdlTest, WritesEachKindOfValueByItsRule) {
    using namespace std::string_view_literals;
    const eCase rows[] = {
        {"{}", ""},
        {"[]", ""},
        {"null", ""},
        {" \r\n\t{ } ", ""},
        {"1", "1"},
        {"true", "1"},
        {"false", "0"},
        {"\"\"", "\"\""},
        {"\"x\"", "\"x\""},
        {"[1,true,\"a\",null,2]", "1\r\n1\r\n\"a\"\r\n2\r\n"},
        {"[null]", ""},
        {"[null,1]", "\r\n1\r\n"},
        {"[[1]]", "{\r\n\t1\r\n}\r\n"},
        {"[[]]", "{\r\n}\r\n"},
        {"[{}]", "{\r\n}\r\n"},
        {"[[[]],[]]", "{\r\n\t{\r\n\t}\r\n}\r\n{\r\n}\r\n"},
        {R"({"a":{}})", "{a\r\n}\r\n"},
        {R"({"a":[]})", "{a\r\n}\r\n"},
        {R"({"a":[null]})", "{a\r\n}\r\n"},
        {R"({"a":null})", "{a}\r\n"},
        {R"({"a":true,"b":false})", "{a 1}\r\n{b 0}\r\n"},
        {R"({"b":1,"a":2,"b":3})", "{b 1}\r\n{a 2}\r\n{b 3}\r\n"},
        {R"({"z":{"y":1,"x":{"w":2}}})", "{z\r\n\t{y 1}\r\n\t{x\r\n\t\t{w 2}\r\n\t}\r\n}\r\n"},
        {R"({"":1})", "{ 1}\r\n"},
        {R"({"two words":1,"{":2,"1st":3,"q\"\\\n":4})", "{two words 1}\r\n{{ 2}\r\n{1st 3}\r\n{q\"\\\n 4}\r\n"},
        {R"({"a\u0000b":"c\u0000d"})", "{a \"c\"}\r\n"},
        {"\"\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x8C\x85\"", "\"\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x8C\x85\""},
        {R"("\u00e9 \u20AC \ud83c\udf05")", "\"\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x8C\x85\""},
        {"{\"D\xC3\xA4mmerung\":1}", "{D\xC3\xA4mmerung 1}\r\n"},
        {R"("\" \\ \/ \b\f\n\r\t \u0001\u007f")", R"("\" \\ / \x08\x0c\n\r\t \x01\x7f")"},
        {"\xEF\xBB\xBF[1]", "1\r\n"},
    };
    for (const eCase& row : rows)
        EXPECT_EQ(Converted(row.json), row.sdl) << row.json;
    EXPECT_TRUE(reports.warnings().empty());
}

TEST_F(JsonToSdlTest, WritesEachRangeOfNumbersByItsRule) {
    const eCase rows[] = {
        {"0", "0"},
        {"-0", "0"},
        {"-1", "-1"},
        {"2147483647", "2147483647"},
        {"-2147483648", "-2147483648"},
        {"2147483648", "-2147483648"},
        {"3000000000", "-1294967296"},
        {"4294967295", "-1"},
        {"1.0", "1"},
        {"0.5", "0.5"},
        {"-2.5e3", "-2500"},
        {"1e2", "100"},
        {"3000000000.0", "3e9"},
        {"0.1", "0.1"},
        {"1e-60", "0"},
        {"3.4028235e38", "34028235e31"},
        {"18446744073709551616", "18446744e12"},
        {"-9223372036854775809", "-9223372e12"},
    };
    for (const eCase& row : rows)
        EXPECT_EQ(Converted(row.json), row.sdl) << row.json;
    EXPECT_TRUE(reports.warnings().empty());
}

TEST_F(JsonToSdlTest, WarnsOfIntegersBeyondThirtyTwoBitsAndGoesOn) {
    for (const char* json :
         {"4294967296", "-2147483649", "9223372036854775807", "18446744073709551615", "-9223372036854775808"}) {
        reports.Clear();
        EXPECT_EQ(Converted("[" + std::string(json) + ",1]"), "0\r\n1\r\n") << json;
        ExpectOneWarning("Json number not parsed correctly.", "in.json");
    }
}

TEST_F(JsonToSdlTest, TellsThePlaceOfANumberThatItWarnsOf) {
    EXPECT_TRUE(Convert(R"([1,{"a b":[0,{"id":4294967296},1e99]},-4294967296])"));
    std::vector<std::string> contexts;
    for (const xError::eReport& warning : reports.warnings())
        contexts.push_back(warning.context);
    const std::string title = '"' + eFileName(folder.Name("in.json")).str() + "\", ";
    EXPECT_THAT(contexts, testing::ElementsAre(title + "/1/a b/1/id\n", title + "/1/a b/2\n", title + "/2\n"));
}

// Otherwise a document of a megabyte, half of it a name, half of it numbers, would take seconds.
TEST_F(JsonToSdlTest, ShowsTheFirstHundredBytesOfALongNameInAWarning) {
    const std::string shown(100, 'n'), euro = "\xE2\x82\xAC";
    const struct {
        std::string name, place;
    } rows[] = {
        {shown, shown},
        {shown + "n", shown + "..."},
        {shown + std::string(100'000, 'n'), shown + "..."},
        {shown.substr(3) + euro, shown.substr(3) + euro},
        {shown.substr(3) + euro + "n", shown.substr(3) + euro + "..."},
        {shown.substr(1) + euro, shown.substr(1) + "..."},
        {shown.substr(2) + euro, shown.substr(2) + "..."},
    };
    for (const auto& row : rows) {
        reports.Clear();
        EXPECT_TRUE(Convert("{\"" + row.name + "\":[4294967296]}"));
        ASSERT_EQ(reports.warnings().size(), 1U);
        EXPECT_TRUE(reports.warnings()[0].context.ends_with(", /" + row.place + "/0\n")) << row.place;
    }
}

TEST_F(JsonToSdlTest, WarnsOfNumbersBeyondTheFloatsAndGoesOn) {
    const eCase rows[] = {{"1e400", "inf"}, {"-1e400", "-inf"}, {"1e39", "inf"}, {"3.5e38", "inf"}};
    for (const eCase& row : rows) {
        reports.Clear();
        EXPECT_EQ(Converted("[" + std::string(row.json) + ",1]"), "0\r\n1\r\n") << row.json;
        ASSERT_EQ(reports.warnings().size(), 1U) << row.json;
        EXPECT_EQ(reports.warnings()[0].message,
                  "Saving invalid floating number " + std::string(row.sdl) + ". It was truncated to 0");
        EXPECT_THAT(reports.warnings()[0].context, HasSubstr("in.json"));
    }
}

TEST_F(JsonToSdlTest, FailsOnMalformedTextAndLeavesTheOutputAlone) {
    using namespace std::string_view_literals;
    const std::string_view rows[] = {
        "",
        " ",
        "\xEF\xBB\xBF",
        "{",
        "[1,",
        "[1 2]",
        "[4294967296,1e99",
        R"({"a" 1})",
        R"({"a":})",
        R"({a:1})",
        "[1] 2",
        "{}{}",
        "tru",
        "\"open",
        R"("\x")",
        R"("\u12")",
        R"("\ud83c")",
        R"("\udf05")",
        R"("\ud83c\u0041")",
        "\"a\nb\"",
        "+1",
        ".5",
        "1.",
        "1e",
        "-",
        "nan",
        "[\0]"sv,
        "\xFF\xFE[\0"sv,
    };
    folder.Write("out.sdl", "kept");
    for (const std::string_view json : rows) {
        reports.Clear();
        EXPECT_FALSE(Convert(json)) << testing::PrintToString(json);
        ExpectOneWarning("", "in.json");
        EXPECT_EQ(folder.Read("out.sdl"), "kept") << testing::PrintToString(json);
    }
}

TEST_F(JsonToSdlTest, JudgesTheEndOfALongTextAsItsBeginning) {
    for (const std::size_t size : {0U, 13U, 14U, 15U, 16U, 100U, 100000U}) {
        reports.Clear();
        const std::string plain(size, 'x');
        EXPECT_EQ(Converted('"' + plain + "\\u00e9 \xC3\xA9\""), '"' + plain + "\xC3\xA9 \xC3\xA9\"");
        EXPECT_TRUE(reports.warnings().empty());
        EXPECT_FALSE(Convert('"' + plain + "\\ud83c\""));
        ExpectOneWarning("surrogate", "in.json");
    }
}

TEST_F(JsonToSdlTest, RefusesWhatIsNestedTooDeepAndNeverCrashes) {
    const std::string deepest = std::string(128, '[') + std::string(128, ']');
    EXPECT_TRUE(Convert(deepest));
    EXPECT_TRUE(reports.warnings().empty());
    for (const std::size_t depth : {129U, 1000U, 1000000U}) {
        reports.Clear();
        EXPECT_FALSE(Convert(std::string(depth, '['))) << depth;
        ExpectOneWarning("", "in.json");
        reports.Clear();
        std::string objects;
        for (std::size_t level = 0; level < depth; ++level)
            objects += R"({"a":)";
        EXPECT_FALSE(Convert(objects)) << depth;
        ExpectOneWarning("", "in.json");
    }
}

TEST_F(JsonToSdlTest, FailsWithoutAnInputAndMakesNoOutput) {
    const eFileName missing(folder.Name("missing.json"));
    EXPECT_FALSE(JsonToSdl(missing, eFileName(folder.Name("out.sdl"))));
    ExpectOneWarning("missing.json - open error!", "missing.json");
    EXPECT_FALSE(folder.Exists("out.sdl"));
    reports.Clear();
    EXPECT_FALSE(JsonToSdl(eFileName(), eFileName(folder.Name("out.sdl"))));
    EXPECT_EQ(reports.warnings().size(), 1U);
    EXPECT_FALSE(folder.Exists("out.sdl"));
}

TEST_F(JsonToSdlTest, FailsOnAFolderAsInput) {
    EXPECT_FALSE(JsonToSdl(eFileName(folder.Name()), eFileName(folder.Name("out.sdl"))));
    EXPECT_EQ(reports.warnings().size(), 1U);
    EXPECT_FALSE(folder.Exists("out.sdl"));
}

TEST_F(JsonToSdlTest, FailsOnAnOutputThatCannotBeOpened) {
    folder.Write("in.json", "[1]");
    const std::string output = folder.Name("no such folder/out.sdl");
    EXPECT_FALSE(JsonToSdl(eFileName(folder.Name("in.json")), eFileName(output)));
    ExpectOneWarning(output + " - open error!", "out.sdl");
    reports.Clear();
    EXPECT_FALSE(JsonToSdl(eFileName(folder.Name("in.json")), eFileName()));
    EXPECT_EQ(reports.warnings().size(), 1U);
}

TEST_F(JsonToSdlTest, LeavesTheOutputAloneWhenAWarningHandlerThrows) {
    folder.Write("out.sdl", "kept");
    int warnings = 0;
    const xError::eHandler previous = xError::SetWarningHandler([&](const xError::eReport& report) {
        if (++warnings == 1)
            throw xError::eException(report);
    });
    EXPECT_FALSE(Convert("[1e400]"));
    xError::SetWarningHandler(previous);
    EXPECT_EQ(warnings, 2);
    EXPECT_EQ(folder.Read("out.sdl"), "kept");
}

TEST_F(JsonToSdlTest, FailsWithAWarningWhateverIsThrown) {
    int warnings = 0;
    const xError::eHandler previous = xError::SetWarningHandler([&](const xError::eReport&) {
        if (++warnings == 1)
            throw warnings;
    });
    EXPECT_FALSE(Convert("[1e400]"));
    xError::SetWarningHandler(previous);
    EXPECT_EQ(warnings, 2);
}

TEST_F(JsonToSdlTest, EachStepReportsALineOfItsOwn) {
    EXPECT_FALSE(Convert("["));
    EXPECT_TRUE(Convert("[4294967296]"));
    EXPECT_FALSE(JsonToSdl(eFileName(folder.Name("in.json")), eFileName(folder.Name("missing/out.sdl"))));
    ASSERT_EQ(reports.warnings().size(), 4U);
    std::set<int> lines;
    for (const xError::eReport& warning : reports.warnings())
        lines.insert(warning.line);
    EXPECT_EQ(lines.size(), 3U);
}

TEST_F(JsonToSdlTest, ReplacesALongerOutput) {
    folder.Write("out.sdl", std::string(100000, 'x'));
    EXPECT_EQ(Converted("[1]"), "1\r\n");
}

TEST_F(JsonToSdlTest, WritesOverItsOwnInput) {
    const eFileName name(folder.Write("in.json", "{\"a\":1}"));
    EXPECT_TRUE(JsonToSdl(name, name));
    EXPECT_EQ(folder.Read("in.json"), "{a 1}\r\n");
}

TEST_F(JsonToSdlTest, RunsInSeveralThreadsAtOnce) {
    folder.Write("in.json", R"({"b":[1,2,{"a":"x"}],"a":null,"b":2})");
    const auto convert = [&](int number) {
        const eFileName output(folder.Name(std::to_string(number) + ".sdl"));
        for (int round = 0; round < 50; ++round)
            EXPECT_TRUE(JsonToSdl(eFileName(folder.Name("in.json")), output));
    };
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
        threads.emplace_back(convert, number);
    for (std::thread& thread : threads)
        thread.join();
    for (int number = 0; number < 4; ++number)
        EXPECT_EQ(folder.Read(std::to_string(number) + ".sdl"),
                  "{b\r\n\t1\r\n\t2\r\n\t{\r\n\t\t{a \"x\"}\r\n\t}\r\n}\r\n{a}\r\n{b 2}\r\n");
}

// As stated in docs/sdl-format.md.
TEST(FormatPage, TellsWhatBecomesOfJson) {
    const eTempFolder folder;
    const eFileName input(folder.Write("in.json", "[100000000000000000000]"));
    EXPECT_TRUE(JsonToSdl(input, eFileName(folder.Name("out.sdl"))));
    EXPECT_EQ(folder.Read("out.sdl"), "1e20\r\n");
}

} // namespace

TEST(JsonToSdl, InputAndOutputMayBeOneFileByWhateverNames) {
    const std::string json = R"({"a": [1, 2.5, "text"]})";
    const std::string sdl = "{a\r\n\t1\r\n\t2.5\r\n\t\"text\"\r\n}\r\n";
    const eTempFolder folder;
    folder.Write("file", json);
    EXPECT_TRUE(JsonToSdl(eFileName(folder.Name("file")), eFileName(folder.Name("file"))));
    EXPECT_EQ(folder.Read("file"), sdl);
    folder.Write("file", json);
    EXPECT_TRUE(JsonToSdl(eFileName(folder.Name("file")), eFileName(folder.Name("./file"))));
    EXPECT_EQ(folder.Read("file"), sdl);
    folder.Write("file", json);
    std::filesystem::create_hard_link(folder.Path() / "file", folder.Path() / "other");
    EXPECT_TRUE(JsonToSdl(eFileName(folder.Name("file")), eFileName(folder.Name("other"))));
    EXPECT_EQ(folder.Read("file"), sdl);
    EXPECT_EQ(folder.Read("other"), sdl);
}
