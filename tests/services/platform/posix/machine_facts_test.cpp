// SPDX-License-Identifier: BSL-1.0
#include <cstdio>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include <qzl_base/collectors.h>

#include "support/reports.h"

#include "platform/characters.h"

// The units under test are compiled here under other names, over the test's own machine.

namespace IO::SimulatedPlatform {
using Platform::LowerCase;
}

#define Platform SimulatedPlatform
#include "platform/machine.h"

namespace {

struct eMachine {
    std::string serial;
    unsigned int failure = 0;
    int serialsAsked = 0;
    int versionsAsked = 0;
    std::string namesAsked = {}; // "c" and "u" for the computer's and the user's name, "C" and "U" for the wide ones
};

eMachine theMachine;

template <class Char>
std::basic_string<Char> TextOf(std::string_view ascii) {
    return {ascii.begin(), ascii.end()};
}

} // namespace

namespace IO::Platform {

template <class Char>
std::basic_string<Char> ComputerName() {
    theMachine.namesAsked += sizeof(Char) == 1 ? 'c' : 'C';
    return TextOf<Char>("WORKSTATION1");
}

template <class Char>
std::basic_string<Char> AccountName() {
    theMachine.namesAsked += sizeof(Char) == 1 ? 'u' : 'U';
    return TextOf<Char>("Some User");
}

template <class Char>
eProductIdQuery OpenProductId() {
    return {};
}

eSystemVersion SystemVersion() {
    ++theMachine.versionsAsked;
    return {10, 0, true};
}

unsigned int AskDiskSerial(std::string* serial) {
    ++theMachine.serialsAsked;
    *serial = theMachine.serial;
    return theMachine.failure;
}

} // namespace IO::Platform

#define MachineName SimulatedMachineName
#define MachineNameW SimulatedMachineNameW
#define UserName SimulatedUserName
#define UserNameW SimulatedUserNameW
#define ProductId SimulatedProductId
#define ProductIdW SimulatedProductIdW
#define WindowsVersion SimulatedWindowsVersion
#define WindowsVersionW SimulatedWindowsVersionW
#define HDDSerialNumber SimulatedHDDSerialNumber
#define HDDSerialNumberW SimulatedHDDSerialNumberW
#include "system_hdd.cpp"
#include "system_info.cpp"
#undef Platform

namespace System = IO::System;

const std::string kNamesAskedAtLoad = theMachine.namesAsked;

TEST(MachineFacts, TheAppGroupAsksForTheNarrowNamesInOrderAndOnce) {
    EXPECT_EQ("", kNamesAskedAtLoad);
    xCollectors::xGlobal::Init("app");
    EXPECT_EQ("cu", theMachine.namesAsked);
    System::UserName();
    System::MachineName();
    xCollectors::xGlobal::Exit("app");
    xCollectors::xGlobal::Init("app");
    EXPECT_EQ("cu", theMachine.namesAsked);
}

TEST(MachineFacts, NamesAreInLowerCase) {
    EXPECT_EQ("workstation1", System::MachineName());
    EXPECT_EQ(L"workstation1", System::MachineNameW());
    EXPECT_EQ("some user", System::UserName());
    EXPECT_EQ(L"some user", System::UserNameW());
}

TEST(MachineFacts, TheVersionIsNamedByItsNumbersAndRole) {
    EXPECT_EQ("windows_server_2016", System::WindowsVersion());
    EXPECT_EQ(L"windows_server_2016", System::WindowsVersionW());
}

struct eLastAsker {
    ~eLastAsker() {
        std::fprintf(stderr, "%s, %d questions", System::WindowsVersion().c_str(), theMachine.versionsAsked);
    }
};

TEST(MachineFacts, AreThereForTheDestructorsOfStaticObjects) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // in a new process, which has not queried any fact
    const auto askAndLeave = [] {
        static const eLastAsker asker;
        System::WindowsVersion();
        std::exit(0);
    };
    EXPECT_EXIT(askAndLeave(), testing::ExitedWithCode(0), "windows_server_2016, 1 questions");
}

TEST(MachineFacts, ASerialNumberThatIsRefusedIsWarnedOfAndAskedForAgain) {
    const eReports reports;
    theMachine = {"half an answer", 5};
    for (int question = 1; question <= 4; ++question) {
        if (question % 2 != 0)
            EXPECT_EQ("", System::HDDSerialNumber());
        else
            EXPECT_EQ(L"", System::HDDSerialNumberW());
        EXPECT_EQ(question, theMachine.serialsAsked);
        ASSERT_EQ(static_cast<std::size_t>(question), reports.warnings().size());
        const xError::eReport& warning = reports.warnings().back();
        EXPECT_EQ("internal/src/bios/qzl_io/system_hdd", warning.file);
        EXPECT_EQ(92, warning.line);
        EXPECT_EQ("eHDDInfo: obtain serialNumber failure(5)", warning.message);
    }
    theMachine = {"  S\xE9rie", 0};
    EXPECT_EQ("  S\xE9rie", System::HDDSerialNumber());
    EXPECT_EQ(1, theMachine.serialsAsked);
    EXPECT_EQ(L"  S\u00e9rie", System::HDDSerialNumberW());
    EXPECT_EQ(2, theMachine.serialsAsked);
    theMachine = {"another", 0};
    EXPECT_EQ("  S\xE9rie", System::HDDSerialNumber());
    EXPECT_EQ(L"  S\u00e9rie", System::HDDSerialNumberW());
    EXPECT_EQ(0, theMachine.serialsAsked);
    EXPECT_EQ(4u, reports.warnings().size());
    EXPECT_TRUE(reports.errors().empty());
}
