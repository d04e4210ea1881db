// SPDX-License-Identifier: BSL-1.0
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include <qzl_io/sdl/json_to_sdl.h>

#include "support/reports.h"
#include "support/temp_folder.h"
#include "json/text.h"

TEST(JsonLimits, ADocumentThatExceedsOneIsRefusedWithAWarningAndLeavesTheTargetAlone) {
    struct eRow {
        std::string json;
        eJsonLimits limits;
        std::string message; // empty: converted
    };
    const std::string size = "Json size limit exceeded!", depth = "Json depth limit exceeded!";
    const eRow rows[] = {
        {"[1, 2]", {}, ""},
        {"[1, 2]", {.bytes = 6}, ""},
        {"[1, 2]", {.bytes = 5}, size},
        {"[1, [2", {.bytes = 5}, size},
        {"1", {.bytes = 0}, size},
        {"1", {.depth = 0}, ""},
        {"[1]", {.depth = 0}, depth},
        {"[1]", {.depth = 1}, ""},
        {"[1, {\"a\": [2]}]", {.depth = 3}, ""},
        {"[1, {\"a\": [2]}]", {.depth = 2}, depth},
        {"[1, {\"a\": [2", {.depth = 2}, depth},
        {"[[1], [2], {\"a\": 3}]", {.depth = 2}, ""},
        {"{\"a[[{\\\"[[\": \"[[[\\\\\"}", {.depth = 1}, ""},
        {"\"\\\"[[\"", {.depth = 0}, ""},
        {"[[[1]]]", {.bytes = 7, .depth = 3}, ""},
        {std::string(100000, '['), {.depth = 100}, depth},
    };
    const eTempFolder folder;
    eReports reports;
    for (const eRow& row : rows) {
        reports.Clear();
        folder.Write("in.json", row.json);
        folder.Write("out.sdl", "as it was");
        const eFileName input(folder.Name("in.json")), output(folder.Name("out.sdl"));
        EXPECT_EQ(JsonToSdlWithin(row.limits, input, output), row.message.empty()) << row.json;
        EXPECT_EQ(folder.Read("out.sdl") == "as it was", !row.message.empty()) << row.json;
        if (row.message.empty()) {
            EXPECT_TRUE(reports.warnings().empty()) << row.json;
        } else {
            ASSERT_EQ(MessagesOf(reports.warnings()), std::vector<std::string>{row.message}) << row.json;
            EXPECT_THAT(reports.warnings()[0].context, testing::HasSubstr("in.json"));
            EXPECT_EQ(reports.warnings()[0].file, "internal/src/bios/qzl_io/json_to_sdl");
            EXPECT_EQ(reports.warnings()[0].line, 60);
        }
    }
}

TEST(JsonLimits, DepthIsCountedOutsideStringsOnly) {
    EXPECT_FALSE(json_text::IsDeeper("[\"", 1));
    EXPECT_FALSE(json_text::IsDeeper("[\"\\", 1));
    EXPECT_FALSE(json_text::IsDeeper("]]]]", 0));
    EXPECT_TRUE(json_text::IsDeeper("]]]][", 0));
    EXPECT_TRUE(json_text::IsDeeper("[\"]\"[", 1));
}
