#include <qzl_io/sdl/json_to_sdl.h>

#include <string>

#include <dlfcn.h>

#include <gtest/gtest.h>

#include "short_file.h"
#include "support/reports.h"
#include "support/temp_folder.h"

TEST(JsonFile, ThatCannotBeReadToItsEndIsNotParsed) {
    const std::string shorter = FileShorterThanItSays();
    if (shorter.empty())
        GTEST_SKIP() << "no file that is shorter than it says";
    const eTempFolder folder;
    const eReports reports;
    EXPECT_FALSE(JsonToSdl(eFileName(shorter), eFileName(folder.Name("out.sdl"))));
    ASSERT_EQ(reports.warnings().size(), 1U);
    EXPECT_EQ(reports.warnings()[0].message, shorter + " - read error!");
    EXPECT_FALSE(folder.Exists("out.sdl"));
}

TEST(JsonFile, LeavesTheParsersOrderOfMembersAsTheProgramSetIt) {
    auto* const keepsOrder =
        static_cast<bool*>(::dlsym(RTLD_DEFAULT, "_ZN3web4json7details27g_keep_json_object_unsortedE"));
    if (!keepsOrder)
        GTEST_SKIP() << "the parser is part of the library";
    const eTempFolder folder;
    const eFileName input(folder.Write("in.json", R"({"b":1,"a":2})"));
    for (const bool set : {true, false}) {
        *keepsOrder = set;
        EXPECT_TRUE(JsonToSdl(input, eFileName(folder.Name("out.sdl"))));
        EXPECT_EQ(folder.Read("out.sdl"), "{b 1}\r\n{a 2}\r\n");
        EXPECT_EQ(*keepsOrder, set);
    }
}

TEST(JsonFile, ThatTheDiskDoesNotTakeIsAFailedConversion) {
    const std::string full = "/dev/full";
    const eTempFolder folder;
    std::string large = "[1";
    for (int number = 0; number < 100000; ++number)
        large += ",12345678";
    for (const std::string& json : {std::string("[1]"), large + "]"}) {
        const eReports reports;
        EXPECT_FALSE(JsonToSdl(eFileName(folder.Write("in.json", json)), eFileName(full)));
        EXPECT_TRUE(reports.errors().empty());
        ASSERT_EQ(reports.warnings().size(), 1U);
        EXPECT_EQ(reports.warnings()[0].message, full + " - write error!");
        EXPECT_NE(reports.warnings()[0].context.find(full), std::string::npos);
    }
}
