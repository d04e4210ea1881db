// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>

#include <windows.h>

#include "faults/injection.h"
#include "support/platform/windows/import_table.h"

// Stand-ins for the system's calls, put into the import tables of the libraries. Each asks eInjection before it passes
// a call on.

template <std::size_t size>
struct eCallName {
    char text[size];

    consteval eCallName(const char (&name)[size]) { std::copy_n(name, size, text); }
};

// The system's number for an error number of the C library.
inline DWORD SystemsError(int error) {
    switch (error) {
    case EACCES:
        return ERROR_ACCESS_DENIED;
    case EMFILE:
        return ERROR_TOO_MANY_OPEN_FILES;
    case ENOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    case ENOSPC:
        return ERROR_DISK_FULL;
    case EBADF:
        return ERROR_INVALID_HANDLE;
    case EBUSY:
        return ERROR_SHARING_VIOLATION;
    default:
        return ERROR_GEN_FAILURE;
    }
}

// How calls tell that they failed.
namespace Fails {

inline void Note(int error) {
    ::SetLastError(SystemsError(error));
    errno = error;
    _doserrno = SystemsError(error);
}
inline constexpr auto WithZero = [](int error) {
    Note(error);
    return 0;
};
inline constexpr auto WithMinusOne = [](int error) {
    Note(error);
    return -1;
};
inline constexpr auto WithoutHandle = [](int error) {
    Note(error);
    return INVALID_HANDLE_VALUE;
};
inline constexpr auto WithSystemsError = [](int error) { return SystemsError(error); };
inline constexpr auto WithError = [](int error) { return error; };

} // namespace Fails

// Whether a call may need room on the disk.
enum class eRoom : bool { No, May };

// The handles of the system and of the run-time in one sequence of numbers.
inline long long HandleIn(HANDLE handle) {
    return reinterpret_cast<long long>(handle);
}
inline long long HandleIn(int file) {
    constexpr long long kRunTimes = 1ll << 40;
    return kRunTimes + file;
}
template <class Other>
long long HandleIn(const Other&) {
    return -1;
}

template <eCallName name, class Call, auto fails, eRoom room = eRoom::No>
class eStandIn;

template <eCallName name, class Result, class First, class... Others, auto fails, eRoom room>
class eStandIn<name, Result (*)(First, Others...), fails, room> {
public:
    explicit eStandIn(const char* module)
        : import(module, name.text, reinterpret_cast<void*>(&Instead), reinterpret_cast<void**>(&systems)) {}

private:
    static Result Instead(First first, Others... others) {
        const eSystemCall call{.function = name.text,
                               .handles = {HandleIn(first), -1},
                               .takesRoom = room == eRoom::May,
                               .interruptible = false,
                               .bytes = nullptr};
        const int failure = eInjection::TakesCall(call);
        return failure != 0 ? static_cast<Result>(fails(failure)) : systems(first, others...);
    }

    static inline Result (*systems)(First, Others...) = nullptr;
    const eReplacedImport import;
};

template <eCallName name, class Result, auto fails, eRoom room>
class eStandIn<name, Result (*)(), fails, room> {
public:
    explicit eStandIn(const char* module)
        : import(module, name.text, reinterpret_cast<void*>(&Instead), reinterpret_cast<void**>(&systems)) {}

private:
    static Result Instead() {
        const int failure = eInjection::TakesCall(
            {.function = name.text, .handles = {-1, -1}, .takesRoom = false, .interruptible = false, .bytes = nullptr});
        return failure != 0 ? static_cast<Result>(fails(failure)) : systems();
    }

    static inline Result (*systems)() = nullptr;
    const eReplacedImport import;
};
