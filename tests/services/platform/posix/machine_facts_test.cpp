// The units under test are compiled here under other names, over a machine of the test's own.
#include <string>

#include <gtest/gtest.h>

#include <qzl_base/collectors.h>

#include <support/reports.h>

#include "platform/machine.h"

namespace {

struct eMachine {
    std::string serial;
    unsigned int failure = 0;
    int asked = 0;
    int accountsAsked = 0;
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
    return TextOf<Char>("WORKSTATION1");
}

template <class Char>
std::basic_string<Char> AccountName() {
    ++theMachine.accountsAsked;
    return TextOf<Char>("Some User");
}

template <class Char>
eProductIdQuery OpenProductId() {
    return {};
}

eSystemVersion SystemVersion() {
    return {10, 0, true};
}

unsigned int AskDiskSerial(std::string* serial) {
    ++theMachine.asked;
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

namespace System = IO::System;

TEST(MachineFacts, TheAppGroupAsksForTheUserOnceAndForAll) {
    xCollectors::xGlobal::Init("app");
    EXPECT_EQ(1, theMachine.accountsAsked);
    EXPECT_EQ("some user", System::UserName());
    EXPECT_EQ(1, theMachine.accountsAsked);
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

TEST(MachineFacts, ASerialNumberThatIsRefusedIsWarnedOfAndAskedForAgain) {
    const eReports reports;
    theMachine = {"half an answer", 5};
    for (int call = 1; call <= 2; ++call) {
        EXPECT_EQ("", System::HDDSerialNumber());
        EXPECT_EQ(call, theMachine.asked);
        ASSERT_EQ(static_cast<std::size_t>(call), reports.warnings().size());
        const xError::eReport& warning = reports.warnings().back();
        EXPECT_EQ("internal/src/bios/qzl_io/system_hdd", warning.file);
        EXPECT_EQ(92, warning.line);
        EXPECT_EQ("eHDDInfo: obtain serialNumber failure(5)", warning.message);
    }
    theMachine = {"  S\xE9rie", 0};
    EXPECT_EQ("  S\xE9rie", System::HDDSerialNumber());
    EXPECT_EQ(L"  S\u00e9rie", System::HDDSerialNumberW());
    theMachine = {"another", 0};
    EXPECT_EQ("  S\xE9rie", System::HDDSerialNumber());
    EXPECT_EQ(0, theMachine.asked);
    EXPECT_EQ(2u, reports.warnings().size());
    EXPECT_TRUE(reports.errors().empty());
}
