// SPDX-License-Identifier: BSL-1.0
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>

#include <qzl_io/sdl/json_to_sdl.h>
#include <qzl_io/streams.h>

#include "support/reports.h"

// JsonToSdl between streams, and what it counts.

namespace {

// A document of the text in a stream that a reader may start with.
IO::eMemoryStream StreamOf(std::string_view text) {
    IO::eMemoryStream stream(64);
    stream.Write(text.data(), text.size());
    stream.Seek(0, IO::eSeekDir::Begin);
    return stream;
}

std::string TextOf(const IO::eMemoryStream& stream) {
    return {reinterpret_cast<const char*>(stream.Buffer()), static_cast<std::size_t>(stream.Size())};
}

eJsonLosses LossesOf(std::string_view json) {
    IO::eMemoryStream input = StreamOf(json);
    IO::eMemoryStream output;
    eJsonLosses losses;
    losses.names = 77; // of an earlier conversion
    EXPECT_TRUE(JsonStreamToSdl(input, output, &losses)) << json;
    return losses;
}

} // namespace

TEST(JsonStreams, ADocumentIsTakenFromTheInputsPositionAndWrittenAtTheOutputs) {
    IO::eMemoryStream input = StreamOf("before{\"a\": [1, \"x\"]}");
    input.Seek(6, IO::eSeekDir::Begin);
    IO::eMemoryStream output;
    output.Write("; made\r\n", 8);
    EXPECT_TRUE(JsonStreamToSdl(input, output));
    EXPECT_EQ(TextOf(output), "; made\r\n{a\r\n\t1\r\n\t\"x\"\r\n}\r\n");
}

TEST(JsonStreams, ADocumentIsTakenFromAStreamThatWasBadAlready) {
    IO::eMemoryStream input = StreamOf("{\"a\": 1}");
    input.Enable(IO::StreamMode::Bad);
    IO::eMemoryStream output;
    EXPECT_TRUE(JsonStreamToSdl(input, output));
    EXPECT_EQ(TextOf(output), "{a 1}\r\n");
}

TEST(JsonStreams, ARefusedDocumentIsAWarningAndWritesNothing) {
    const eReports reports;
    IO::eMemoryStream input = StreamOf("{\"a\": }");
    IO::eMemoryStream output;
    EXPECT_FALSE(JsonStreamToSdl(input, output));
    EXPECT_EQ(output.Size(), 0u);
    ASSERT_EQ(reports.warnings().size(), 1u);
    EXPECT_THAT(reports.warnings()[0].context, testing::StartsWith("\"Stream\""));
}

// What a document says of its values is told only once the whole of it is known to be JSON.
TEST(JsonStreams, ARefusedDocumentIsOneWarningWhateverItsValuesAre) {
    for (const char* json : {"[99999999999, \"a\", ]", "[1e999, [2}", "{\"a\": 1e999, \"b\": \"c\"", "[1e999] 2",
                             "[99999999999, 1e999, tru]", "[1, 2, 3, nul]", "{\"name of\": null, \"b\" 1}"}) {
        const eReports reports;
        IO::eMemoryStream input = StreamOf(json);
        IO::eMemoryStream output;
        eJsonLosses losses;
        EXPECT_FALSE(JsonStreamToSdl(input, output, &losses)) << json;
        EXPECT_EQ(output.Size(), 0u) << json;
        EXPECT_EQ(reports.warnings().size(), 1u) << json;
        EXPECT_EQ(losses.integers + losses.floats + losses.names + losses.nulls, 0u) << json;
        EXPECT_TRUE(losses.firstName.empty()) << json;
    }
}

TEST(JsonStreams, AValueThatIsWarnedOfChangesNothingElse) {
    const struct {
        const char* number;
        const char* written;
        const char* warning;
    } rows[] = {{"99999999999", "0", "Json number not parsed correctly."},
                {"1e999", "0", "Saving invalid floating number inf. It was truncated to 0"}};
    for (const auto& row : rows) {
        const eReports reports;
        const std::string longer(5000, 'x');
        IO::eMemoryStream input = StreamOf("{\"first\": \"text\", \"a b\": [true, \"quo\\\"ted\", \"" + longer +
                                           "\", {\"inner\": {\"x\": " + row.number + "}}, null], \"last\": \"\"}");
        IO::eMemoryStream output;
        eJsonLosses losses;
        EXPECT_TRUE(JsonStreamToSdl(input, output, &losses));
        EXPECT_EQ(TextOf(output), "{first \"text\"}\r\n{a b\r\n\t1\r\n\t\"quo\\\"ted\"\r\n\t\"" + longer +
                                      "\"\r\n\t{\r\n\t\t{inner\r\n\t\t\t{x " + row.written +
                                      "}\r\n\t\t}\r\n\t}\r\n}\r\n{last \"\"}\r\n");
        ASSERT_EQ(MessagesOf(reports.warnings()), std::vector<std::string>{row.warning});
        EXPECT_THAT(reports.warnings()[0].context, testing::HasSubstr("/a b/3/inner/x"));
        EXPECT_EQ(losses.booleans, 1u);
        EXPECT_EQ(losses.nulls, 1u);
        EXPECT_EQ(losses.names, 1u);
        EXPECT_EQ(losses.firstName, "/a b");
    }
}

TEST(JsonStreams, ADocumentBeyondALimitIsRefused) {
    const eReports reports;
    eJsonLimits limits;
    limits.bytes = 3;
    IO::eMemoryStream input = StreamOf("[10]");
    IO::eMemoryStream output;
    EXPECT_FALSE(JsonStreamToSdl(input, output, nullptr, limits));
    ASSERT_EQ(reports.warnings().size(), 1u);
    EXPECT_EQ(reports.warnings()[0].message, "Json size limit exceeded!");
}

TEST(JsonStreams, AnOutputThatRefusesBytesIsAWarning) {
    const eReports reports;
    unsigned char room[8] = {};
    IO::eBufferStream output(room, sizeof room, 0);
    IO::eMemoryStream input = StreamOf("[\"more than eight bytes\"]");
    output.Disable(IO::StreamMode::Errors);
    EXPECT_FALSE(JsonStreamToSdl(input, output));
    ASSERT_EQ(reports.warnings().size(), 1u);
    EXPECT_EQ(reports.warnings()[0].message, "Stream - write error!");
}

TEST(JsonStreams, NothingIsLostOfWhatSdlCanExpress) {
    const eJsonLosses none = LossesOf(R"({"a": [1, -2147483648, 2147483647, 0.5, 1e10, "x", [], [1]], "%b_2": null})");
    EXPECT_EQ(none.names + none.integers + none.floats + none.booleans + none.nulls + none.emptyObjects + none.texts,
              0u);
    EXPECT_EQ(none.firstName, "");
}

TEST(JsonStreams, EachKindOfLossIsCounted) {
    const struct {
        const char* json;
        unsigned long long eJsonLosses::*count;
        unsigned long long expected;
    } kTable[] = {
        {R"({"a b": 1, "": 2, "1a": 3, "a%": 4, "\u00e9": 5, "good": 6, "_1": 7})", &eJsonLosses::names, 5},
        {"[2147483647, 2147483648, 4294967295, 4294967296, -2147483648, -2147483649]", &eJsonLosses::integers, 4},
        {"[0.1, 0.5, 1e300, 123456789.5]", &eJsonLosses::floats, 3},
        {R"([true, {"a": false}])", &eJsonLosses::booleans, 2},
        {R"([null, {"a": null}, [null]])", &eJsonLosses::nulls, 2},
        {R"([{}, {"a": {}}, {"a": [], "b": 1}, []])", &eJsonLosses::emptyObjects, 2},
        {R"(["a\u0000b", "c"])", &eJsonLosses::texts, 1},
    };
    const eReports reports; // of integers and floats that are written as 0
    for (const auto& row : kTable)
        EXPECT_EQ(LossesOf(row.json).*row.count, row.expected) << row.json;
    EXPECT_EQ(LossesOf(R"({"a": [0, {"x y": 1, "z z": 2}]})").firstName, "/a/1/x y");
}
