// SPDX-License-Identifier: BSL-1.0
#include <cstdlib>
#include <string>

#include <io.h>
#include <windows.h>

#include <gmock/gmock.h>

#include <qzl_io/sdl/json_to_sdl.h>

#include "support/platform/windows/import_table.h"
#include "support/reports.h"
#include "support/temp_folder.h"

namespace {

decltype(&::_read) systemsRead;

int FailingRead(int, void*, unsigned int) {
    _doserrno = ERROR_CRC;
    return -1;
}

TEST(JsonFile, ThatFailsWhileItIsReadEndsTheConversionWithOneWarning) {
    const eTempFolder folder;
    const std::string name = folder.Write("in.json", "[1, 2]");
    const eReplacedCall failing("qzl_io.dll", "_read", &FailingRead, &systemsRead);
    const eReports reports;
    EXPECT_FALSE(JsonToSdl(eFileName(name), eFileName(folder.Name("out.sdl"))));
    ASSERT_EQ(reports.warnings().size(), 1u);
    EXPECT_EQ(reports.warnings()[0].message, name + " - read error!");
    EXPECT_THAT(reports.warnings()[0].context, testing::HasSubstr("could not be read to its end: "));
}

} // namespace
