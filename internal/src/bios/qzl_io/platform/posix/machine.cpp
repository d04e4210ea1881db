// SPDX-License-Identifier: BSL-1.0
#include "platform/machine.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <string_view>
#include <vector>

#include <pwd.h>
#include <unistd.h>

#include "platform/posix/descriptor.h"
#include "platform/posix/native_name.h"

namespace IO::Platform {

namespace {

std::string HostName() {
    std::array<char, 256> name{};
    if (::gethostname(name.data(), name.size() - 1) != 0)
        return {};
    return name.data();
}

std::string EffectiveUser() {
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
    if (failure != 0 || !found || !found->pw_name)
        return {};
    return found->pw_name;
}

std::string ExecutableBytes() {
    std::vector<char> name(PATH_MAX);
    const ssize_t length = Uninterrupted([&] { return ::readlink("/proc/self/exe", name.data(), name.size()); });
    if (length < 0)
        return {};
    return {name.data(), static_cast<std::size_t>(length)};
}

} // namespace

template <class Char>
std::basic_string<Char> ComputerName() {
    return NameText<Char>(HostName());
}

template <class Char>
std::basic_string<Char> AccountName() {
    return NameText<Char>(EffectiveUser());
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

template std::string ComputerName<char>();
template std::wstring ComputerName<wchar_t>();
template std::string AccountName<char>();
template std::wstring AccountName<wchar_t>();
template std::string ExecutableName<char>();
template std::wstring ExecutableName<wchar_t>();
template eProductIdQuery OpenProductId<char>();
template eProductIdQuery OpenProductId<wchar_t>();

} // namespace IO::Platform
