// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/json_to_sdl.h>

#include <algorithm>
#include <cerrno>
#include <string>

#include <dlfcn.h>
#include <sys/stat.h>

#include <gmock/gmock.h>

#include "short_file.h"
#include "support/platform/posix/fault.h"
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

TEST(JsonFile, ThatFailsWhileItIsReadEndsTheConversionWithOneWarning) {
    if (!eFault::ReachesLibraries())
        GTEST_SKIP() << "the libraries' calls do not reach the test program";
    const eTempFolder folder;
    const std::string name = folder.Write("in.json", '[' + std::string(200'000, ' ') + ']');
    int reported = 0;
    const int failures = FailEachCall("pread", EIO, [&] {
        const eReports reports;
        if (JsonToSdl(eFileName(name), eFileName(folder.Name("out.sdl"))))
            return;
        ++reported;
        ASSERT_EQ(reports.warnings().size(), 1u);
        EXPECT_EQ(reports.warnings()[0].message, name + " - read error!");
        EXPECT_THAT(reports.warnings()[0].context,
                    testing::HasSubstr("could not be read to its end: Input/output error."));
    });
    EXPECT_GE(reported, std::max(failures - 1, 1));
}

TEST(JsonFile, ThatIsAFifoIsRefused) {
    const eTempFolder folder;
    const std::string fifo = folder.Name("fifo");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    const eReports reports;
    EXPECT_FALSE(JsonToSdl(eFileName(fifo), eFileName(folder.Name("out.sdl"))));
    ASSERT_EQ(reports.warnings().size(), 1u);
    EXPECT_EQ(reports.warnings()[0].message, fifo + " - open error!");
}
