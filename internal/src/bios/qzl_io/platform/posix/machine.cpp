// SPDX-License-Identifier: BSL-1.0
#include "platform/machine.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <string_view>
#include <vector>

#include <pwd.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "platform/posix/descriptor.h"
#include "platform/posix/native_name.h"
#include "platform/posix/small_file.h"
#include "platform/posix/user_record.h"

namespace IO::Platform {

namespace {

std::string HostName() {
    std::array<char, 256> name{};
    if (::gethostname(name.data(), name.size() - 1) != 0)
        return {};
    return name.data();
}

std::string ExecutableBytes() {
    std::vector<char> name(PATH_MAX);
    const ssize_t length = Uninterrupted([&] { return ::readlink("/proc/self/exe", name.data(), name.size()); });
    if (length < 0)
        return {};
    return {name.data(), static_cast<std::size_t>(length)};
}

// The processors that the compiler makes this library for.
constexpr const char* OwnArchitecture() {
#if defined(__x86_64__)
    return "x86_64";
#elif defined(__aarch64__)
    return "aarch64";
#elif defined(__i386__)
    return "x86";
#else
    return "";
#endif
}

unsigned long long AskConfiguration(int what) {
    const long told = ::sysconf(what);
    return told > 0 ? static_cast<unsigned long long>(told) : 0;
}

// The first line of a file.
std::string FirstLine(const char* name) {
    const std::string content = ReadSmallFile(name);
    return content.substr(0, content.find('\n'));
}

} // namespace

std::string UserRecord(char* passwd::*text) {
    constexpr std::size_t kMostBytes = std::size_t{1} << 20;
    std::vector<char> room(1024);
    passwd record{};
    passwd* found = nullptr;
    int failure = ERANGE;
    while (failure == ERANGE && room.size() <= kMostBytes) {
        room.resize(room.size() * 2);
        Uninterrupted([&] {
            errno = failure = ::getpwuid_r(::geteuid(), &record, room.data(), room.size(), &found);
            return failure == 0 ? 0 : -1;
        });
    }
    if (failure != 0 || !found || !(found->*text))
        return {};
    return found->*text;
}

template <class Char>
std::basic_string<Char> ComputerName() {
    return NameText<Char>(HostName());
}

template <class Char>
std::basic_string<Char> AccountName() {
    return NameText<Char>(UserRecord(&passwd::pw_name));
}

template <class Char>
std::basic_string<Char> ExecutableName() {
    return NameText<Char>(ExecutableBytes());
}

// This system has no product id.
template <class Char>
eProductIdQuery OpenProductId() {
    return {};
}

eSystemVersion SystemVersion() {
    return {};
}

eMachineFacts AskMachine() {
    eMachineFacts facts;
    utsname told{};
    if (::uname(&told) == 0) {
        facts.release = told.release;
        facts.machineArchitecture = told.machine;
    }
    facts.architecture = OwnArchitecture();
    facts.processors = static_cast<unsigned>(AskConfiguration(_SC_NPROCESSORS_ONLN));
    facts.memory = AskConfiguration(_SC_PHYS_PAGES) * AskConfiguration(_SC_PAGE_SIZE);
    facts.osRelease = ReadSmallFile("/etc/os-release");
    if (facts.osRelease.empty())
        facts.osRelease = ReadSmallFile("/usr/lib/os-release");
    facts.machineId = FirstLine("/etc/machine-id");
    facts.idIsConfidential = true;
    return facts;
}

template std::string ComputerName<char>();
template std::wstring ComputerName<wchar_t>();
template std::string AccountName<char>();
template std::wstring AccountName<wchar_t>();
template std::string ExecutableName<char>();
template std::wstring ExecutableName<wchar_t>();
template eProductIdQuery OpenProductId<char>();
template eProductIdQuery OpenProductId<wchar_t>();

} // namespace IO::Platform
