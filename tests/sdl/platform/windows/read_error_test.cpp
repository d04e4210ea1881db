// SPDX-License-Identifier: BSL-1.0
#include <cstdlib>
#include <string>

#include <io.h>
#include <windows.h>

#include <gmock/gmock.h>

#include <qzl_io/sdl.h>

#include "sdl/sdl_source.h"
#include "support/platform/windows/import_table.h"
#include "support/temp_folder.h"

namespace {

using testing::HasSubstr;

decltype(&::_read) systemsRead;

int FailingRead(int, void*, unsigned int) {
    _doserrno = ERROR_CRC;
    return -1;
}

TEST(ReadErrors, AreReportedWithTheSystemsReason) {
    const eTempFolder folder;
    const std::string name = folder.Write("list.sdl", "{list 1 2}");
    const eReplacedCall failing("qzl_io.dll", "_read", &FailingRead, &systemsRead);
    const std::string reason = "could not be read to its end: ";
    const auto open = [&] { eSDLReader reader(eFileName(name), "list", nullptr); };
    EXPECT_EQ(FailureOf(open).message, name + " - read error!");
    EXPECT_THAT(ContextOf(open), HasSubstr(reason));
    const auto include = [&] { ReaderOf("1").Include(eFileName(name)); };
    EXPECT_EQ(FailureOf(include).message, name + " - read error!");
    EXPECT_THAT(ContextOf(include), HasSubstr(reason));
}

} // namespace
