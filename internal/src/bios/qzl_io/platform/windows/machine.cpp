// SPDX-License-Identifier: BSL-1.0
#include "platform/machine.h"

#include <algorithm>
#include <array>
#include <memory>
#include <type_traits>

#include <windows.h>

#include "platform/pure/extended_name.h"
#include "platform/windows/native_name.h"

namespace IO::Platform {

namespace {

// The system's narrow functions for narrow texts, and its wide functions for wide texts.
namespace Calls {

BOOL ComputerName(char* name, DWORD* size) {
    return ::GetComputerNameA(name, size);
}
BOOL ComputerName(wchar_t* name, DWORD* size) {
    return ::GetComputerNameW(name, size);
}
BOOL UserName(char* name, DWORD* size) {
    return ::GetUserNameA(name, size);
}
BOOL UserName(wchar_t* name, DWORD* size) {
    return ::GetUserNameW(name, size);
}

LSTATUS OpenKey(HKEY root, const char* name, REGSAM access, HKEY* key) {
    return ::RegOpenKeyExA(root, name, 0, access, key);
}
LSTATUS OpenKey(HKEY root, const wchar_t* name, REGSAM access, HKEY* key) {
    return ::RegOpenKeyExW(root, name, 0, access, key);
}
LSTATUS QueryValue(HKEY key, const char* name, void* buffer, DWORD* bytes) {
    return ::RegQueryValueExA(key, name, nullptr, nullptr, static_cast<BYTE*>(buffer), bytes);
}
LSTATUS QueryValue(HKEY key, const wchar_t* name, void* buffer, DWORD* bytes) {
    return ::RegQueryValueExW(key, name, nullptr, nullptr, static_cast<BYTE*>(buffer), bytes);
}

} // namespace Calls

constexpr DWORD kComputerNameRoom = 16;
constexpr DWORD kUserNameRoom = 257;
constexpr DWORD kModuleNameRoom = 520;

// The longest name that fits is one character shorter than the room.
template <class Char, DWORD Room>
std::basic_string<Char> AskName(BOOL (*ask)(Char*, DWORD*)) {
    std::array<Char, Room> name{};
    DWORD size = Room;
    return ask(name.data(), &size) ? std::basic_string<Char>(name.data()) : std::basic_string<Char>();
}

const char* ProductKey(char) {
    return R"(SOFTWARE\Microsoft\Windows NT\CurrentVersion)";
}
const wchar_t* ProductKey(wchar_t) {
    return L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
}
const char* ProductValue(char) {
    return "Productid";
}
const wchar_t* ProductValue(wchar_t) {
    return L"Productid";
}

// Empty if the system does not tell it.
std::wstring ShortName(const std::wstring& name) {
    std::array<wchar_t, kModuleNameRoom> shortName{};
    const DWORD length = ::GetShortPathNameW(name.c_str(), shortName.data(), kModuleNameRoom);
    return length < kModuleNameRoom ? std::wstring(shortName.data(), length) : std::wstring();
}

std::wstring ModuleName() {
    std::array<wchar_t, kModuleNameRoom> name{};
    const DWORD length = ::GetModuleFileNameW(nullptr, name.data(), kModuleNameRoom);
    return {name.data(), length};
}

// Uses the short name if the code page lacks a character of the long one.
std::string NarrowModuleName(const std::wstring& name) {
    std::string narrow;
    if (!NarrowName(System::PlainName(name), &narrow))
        NarrowName(System::PlainName(ShortName(name)), &narrow);
    return narrow;
}

eQueryEnd EndOf(LSTATUS status) {
    if (status == ERROR_SUCCESS)
        return eQueryEnd::Done;
    return status == ERROR_MORE_DATA ? eQueryEnd::MoreData : eQueryEnd::Failed;
}

bool IsServer() {
    OSVERSIONINFOEXW wanted{};
    wanted.dwOSVersionInfoSize = sizeof(wanted);
    static_assert(sizeof(wanted) == 284);
    wanted.wProductType = VER_NT_WORKSTATION;
    const ULONGLONG equal = ::VerSetConditionMask(0, VER_PRODUCT_TYPE, VER_EQUAL);
    return !::VerifyVersionInfoW(&wanted, VER_PRODUCT_TYPE, equal);
}

// Version 0.0 if the system has no such function.
OSVERSIONINFOEXW RunningVersion() {
    using eGetVersion = LONG(WINAPI*)(OSVERSIONINFOEXW*);
    OSVERSIONINFOEXW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    const HMODULE ntdll = ::GetModuleHandleW(L"ntdll.dll");
    const FARPROC found = ntdll ? ::GetProcAddress(ntdll, "RtlGetVersion") : nullptr;
    if (found)
        reinterpret_cast<eGetVersion>(reinterpret_cast<void*>(found))(&version);
    return version;
}

// Numbers of processors as IsWow64Process2 tells them.
constexpr USHORT kX86 = 0x014c;
constexpr USHORT kX64 = 0x8664;
constexpr USHORT kArm64 = 0xaa64;

// The processors that the compiler makes this library for.
#if defined(_M_ARM64) || defined(__aarch64__)
constexpr USHORT kOwnMachine = kArm64;
#elif defined(_M_X64) || defined(__x86_64__)
constexpr USHORT kOwnMachine = kX64;
#else
constexpr USHORT kOwnMachine = kX86;
#endif

const char* ArchitectureOf(USHORT machine) {
    switch (machine) {
    case kX86:
        return "x86";
    case kX64:
        return "x86_64";
    case kArm64:
        return "aarch64";
    default:
        return "";
    }
}

// GetNativeSystemInfo shows an emulated process the processors that are emulated; systems without the function that
// tells the truth emulate none.
USHORT NativeMachine() {
    using eAsk = BOOL(WINAPI*)(HANDLE, USHORT*, USHORT*);
    const HMODULE kernel = ::GetModuleHandleW(L"kernel32.dll");
    const FARPROC found = kernel ? ::GetProcAddress(kernel, "IsWow64Process2") : nullptr;
    USHORT process = 0;
    USHORT native = 0;
    if (found && reinterpret_cast<eAsk>(reinterpret_cast<void*>(found))(::GetCurrentProcess(), &process, &native))
        return native;
    SYSTEM_INFO info{};
    ::GetNativeSystemInfo(&info);
    return info.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_AMD64 ? kX64 : kX86;
}

// Where the groups of processors cannot be told, as under Wine without /sys, those of the program's own group.
unsigned Processors() {
    if (const DWORD count = ::GetActiveProcessorCount(ALL_PROCESSOR_GROUPS))
        return count;
    SYSTEM_INFO info{};
    ::GetNativeSystemInfo(&info);
    return info.dwNumberOfProcessors;
}

// In lower case, as ids are compared. Empty if the registry does not hold it.
std::string MachineGuid() {
    HKEY key = nullptr;
    if (::RegOpenKeyExA(HKEY_LOCAL_MACHINE, R"(SOFTWARE\Microsoft\Cryptography)", 0, KEY_QUERY_VALUE | KEY_WOW64_64KEY,
                        &key) != ERROR_SUCCESS)
        return {};
    const std::shared_ptr<HKEY__> owner(key, &::RegCloseKey);
    std::array<char, 64> text{};
    DWORD size = text.size() - 1;
    DWORD type = 0;
    const LSTATUS status =
        ::RegQueryValueExA(key, "MachineGuid", nullptr, &type, reinterpret_cast<BYTE*>(text.data()), &size);
    if (status != ERROR_SUCCESS || type != REG_SZ)
        return {};
    std::string guid = text.data();
    std::transform(guid.begin(), guid.end(), guid.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'F' ? static_cast<char>(letter + 32) : letter;
    });
    return guid;
}

} // namespace

template <class Char>
std::basic_string<Char> ComputerName() {
    return AskName<Char, kComputerNameRoom>(&Calls::ComputerName);
}

template <class Char>
std::basic_string<Char> AccountName() {
    return AskName<Char, kUserNameRoom>(&Calls::UserName);
}

template <class Char>
std::basic_string<Char> ExecutableName() {
    std::wstring name = ModuleName();
    if constexpr (std::is_same_v<Char, wchar_t>)
        return name;
    else
        return NarrowModuleName(name);
}

template <class Char>
eProductIdQuery OpenProductId() {
    HKEY key = nullptr;
    if (Calls::OpenKey(HKEY_LOCAL_MACHINE, ProductKey(Char()), KEY_QUERY_VALUE, &key) != ERROR_SUCCESS)
        return {};
    const std::shared_ptr<HKEY__> owner(key, &::RegCloseKey);
    return [owner](void* buffer, unsigned int* bytes) {
        DWORD size = *bytes;
        const LSTATUS status = Calls::QueryValue(owner.get(), ProductValue(Char()), buffer, &size);
        *bytes = size;
        return EndOf(status);
    };
}

eSystemVersion SystemVersion() {
    const OSVERSIONINFOEXW version = RunningVersion();
    return {version.dwMajorVersion, version.dwMinorVersion, IsServer(), version.dwBuildNumber};
}

eMachineFacts AskMachine() {
    eMachineFacts facts;
    facts.architecture = ArchitectureOf(kOwnMachine);
    facts.machineArchitecture = ArchitectureOf(NativeMachine());
    facts.processors = Processors();
    MEMORYSTATUSEX memory{};
    memory.dwLength = sizeof(memory);
    if (::GlobalMemoryStatusEx(&memory))
        facts.memory = memory.ullTotalPhys;
    facts.machineId = MachineGuid();
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
