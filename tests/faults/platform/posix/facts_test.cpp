// SPDX-License-Identifier: BSL-1.0
// Facts that are asked for once in a process: each fault strikes a process of its own.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <new>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <qzl_io/system.h>

#include "faults/injection.h"
#include "faults/platform/system.h"
#include "faults/torture.h"
#include "support/long_tests.h"
#include "support/reports.h"

// Where coverage is counted: keeps what this process has reached.
extern "C" [[gnu::weak]] void __gcov_dump();

namespace {

namespace System = IO::System;

enum eExit { kNotStruck = 10, kStruck, kWrong, kNotAgain, kOpenHandle };

std::string HostName() {
    char name[256] = {};
    ::gethostname(name, sizeof(name) - 1);
    std::string lower = name;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
    return lower;
}

// What is not known is empty, and never a part of the fact.
bool IsTold(const std::string& host, bool all) {
    const auto holds = [all](const auto& told, const auto& fact) { return told == fact || (!all && told.empty()); };
    const bool names = holds(System::MachineName(), host) &&
                       holds(System::MachineNameW(), std::wstring(host.begin(), host.end())) &&
                       System::WindowsVersion() == "unknown" && System::WindowsVersionW() == L"unknown";
    const bool users = !all || (!System::UserName().empty() && !System::UserNameW().empty());
    System::HDDSerialNumber();
    System::HDDSerialNumberW();
    return names && users;
}

int InOwnProcess(const eFaultMode& mode, unsigned long long n) {
    const std::string host = HostName();
    const eReports silent;
    const long long handles = OpenHandles();
    bool struck = false;
    {
        const eInjection injection(mode, n);
        try {
            const bool told = IsTold(host, false);
            struck = injection.Struck();
            if (!told)
                return kWrong;
        } catch (const std::bad_alloc&) {
            struck = true;
        }
    }
    if (OpenHandles() != handles)
        return kOpenHandle;
    return !IsTold(host, true) ? kNotAgain : struck ? kStruck : kNotStruck;
}

int Strike(const eFaultMode& mode, unsigned long long n) {
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        const int end = InOwnProcess(mode, n);
        if (__gcov_dump)
            __gcov_dump();
        ::_exit(end);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

TEST(Faults, AskingForFactsThatAreKept) {
    if (!AreCallsRouted())
        GTEST_SKIP() << "the libraries' calls do not pass through the test program";
    const unsigned long long step = LongTests() ? 1 : 7;
    unsigned long long faults = 0, modes = 0;
    for (const eFaultMode& mode : FaultModes()) {
        int end = kStruck;
        for (unsigned long long n = 1 + modes++ % step; end == kStruck; n += step) {
            end = Strike(mode, n);
            ASSERT_TRUE(end == kStruck || end == kNotStruck) << mode.name << ", use " << n << ": " << end;
            faults += end == kStruck ? 1 : 0;
        }
    }
    CountFaults("facts of the machine that are kept", faults);
}
