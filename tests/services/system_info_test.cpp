// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstring>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/convert.h>
#include <qzl_io/system.h>

#include "support/reports.h"

#include "widths.h"

namespace {

using namespace IO::System;

template <class Char>
bool IsLowerCase(const std::basic_string<Char>& text) {
    return std::none_of(text.begin(), text.end(), [](Char letter) { return letter >= 'A' && letter <= 'Z'; });
}

TEST(SystemInfo, MachineNameIsLowerCasedAndKept) {
    const std::string& name = MachineName();
    EXPECT_FALSE(name.empty());
    EXPECT_TRUE(IsLowerCase(name)) << name;
    EXPECT_EQ(&name, &MachineName());
    EXPECT_EQ(ToStringW(name), MachineNameW());
    EXPECT_EQ(&MachineNameW(), &MachineNameW());
    EXPECT_LE(name.size(), kHasDrives ? 15u : 64u);
}

TEST(SystemInfo, UserNameIsLowerCasedAndKept) {
    const std::string& name = UserName();
    EXPECT_FALSE(name.empty());
    EXPECT_TRUE(IsLowerCase(name)) << name;
    EXPECT_EQ(&name, &UserName());
    EXPECT_EQ(ToStringW(name), UserNameW());
    EXPECT_EQ(&UserNameW(), &UserNameW());
    EXPECT_LE(name.size(), 256u);
}

TEST(SystemInfo, WindowsVersionIsAKnownNameAndKept) {
    const std::set<std::string> workstations = {"windows_10",    "windows_8_point1", "windows_8",  "windows_7",
                                                "windows_vista", "windows_xp_x64",   "windows_xp", "windows_2000"};
    const std::string& name = WindowsVersion();
    EXPECT_EQ(&name, &WindowsVersion());
    EXPECT_EQ(ToStringW(name), WindowsVersionW());
    EXPECT_EQ(&WindowsVersionW(), &WindowsVersionW());
    if (kHasDrives) {
        EXPECT_TRUE(workstations.count(name) || name.starts_with("windows_server_")) << name;
    } else {
        EXPECT_EQ("unknown", name);
    }
}

TEST(SystemInfo, ProductIdFillsItsWholeBufferWhereThereIsOne) {
    const std::string& id = ProductId();
    EXPECT_EQ(&id, &ProductId());
    if (!kHasDrives) {
        EXPECT_EQ("", id);
        EXPECT_EQ(L"", ProductIdW());
        return;
    }
    EXPECT_EQ(1024u, id.size());
    EXPECT_LT(std::strlen(id.c_str()), id.size());
    EXPECT_EQ(id.npos, id.find_first_not_of('\0', std::strlen(id.c_str())));
    EXPECT_EQ(ToStringW(id.c_str()), ProductIdW().c_str());
    EXPECT_GE(ProductIdW().size(), std::strlen(id.c_str()));
}

// A disk may have an empty serial number.
TEST(SystemInfo, ASerialNumberIsToldOrAWarningSaysWhyAtEachCall) {
    eReports reports;
    const auto& warnings = reports.warnings();
    HDDSerialNumber();
    const bool isTold = warnings.empty();
    for (std::size_t call = 2; call <= 4; ++call) {
        const std::string serial = HDDSerialNumber();
        ASSERT_EQ(isTold ? 0 : call, warnings.size());
        if (isTold)
            continue;
        EXPECT_EQ("", serial);
        EXPECT_EQ("internal/src/bios/qzl_io/system_hdd", warnings.back().file);
        EXPECT_EQ(92, warnings.back().line);
        const std::string begin = "eHDDInfo: obtain serialNumber failure(", end = ")";
        const std::string message = warnings.back().message;
        ASSERT_TRUE(message.starts_with(begin) && message.ends_with(end)) << message;
        const std::string code = message.substr(begin.size(), message.size() - begin.size() - end.size());
        EXPECT_GT(std::stoul(code), 0u);
        EXPECT_EQ(code.npos, code.find_first_not_of("0123456789"));
    }
    EXPECT_TRUE(reports.errors().empty());
}

TEST(SystemInfo, TheWideSerialNumberIsTheNarrowOne) {
    eReports reports;
    EXPECT_EQ(StringToWideChar(HDDSerialNumber(), 1252), HDDSerialNumberW());
    EXPECT_TRUE(reports.warnings().empty() || reports.warnings().size() == 2);
}

TEST(SystemInfo, ManyThreadsGetTheSameTexts) {
    eReports reports;
    constexpr std::size_t kThreadCount = 8;
    std::vector<std::vector<const void*>> seen(kThreadCount);
    std::vector<std::thread> threads;
    for (auto& addresses : seen)
        threads.emplace_back([&addresses] {
            addresses = {&MachineName(),    &MachineNameW(),    &UserName(),  &UserNameW(),
                         &WindowsVersion(), &WindowsVersionW(), &ProductId(), &ProductIdW()};
            HDDSerialNumber();
            HDDSerialNumberW();
        });
    for (std::thread& thread : threads)
        thread.join();
    for (const auto& addresses : seen)
        EXPECT_EQ(seen.front(), addresses);
}

} // namespace
