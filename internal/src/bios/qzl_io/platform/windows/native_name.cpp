// SPDX-License-Identifier: BSL-1.0
#include "platform/windows/native_name.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "platform/pure/extended_name.h"

namespace IO::Platform {

namespace {

using System::eNameKind;

constexpr std::size_t kLongestName = 32767;
constexpr std::size_t kLongestNarrowName = 4 * kLongestName;

UINT FileCodePage() {
    return ::AreFileApisANSI() ? CP_ACP : CP_OEMCP;
}

template <class Char>
bool IsAscii(std::basic_string_view<Char> text) {
    return std::all_of(text.begin(), text.end(), [](Char letter) { return letter >= 0 && letter < 0x80; });
}

// Empty if a part is ill-formed.
std::wstring Widened(std::string_view text) {
    const int size = static_cast<int>(text.size());
    const auto convert = [&](wchar_t* room, int count) {
        return ::MultiByteToWideChar(FileCodePage(), MB_ERR_INVALID_CHARS, text.data(), size, room, count);
    };
    std::wstring wide(static_cast<std::size_t>(convert(nullptr, 0)), L'\0');
    convert(wide.data(), static_cast<int>(wide.size()));
    return wide;
}

// Characters that the page lacks are replaced, or the result is empty.
std::string Narrowed(std::wstring_view text) {
    const int size = static_cast<int>(text.size());
    DWORD flags = WC_NO_BEST_FIT_CHARS;
    const auto convert = [&](char* room, int count) {
        return ::WideCharToMultiByte(FileCodePage(), flags, text.data(), size, room, count, nullptr, nullptr);
    };
    int count = convert(nullptr, 0);
    // Pages that have every character reject the flag.
    if (count == 0 && ::GetLastError() == ERROR_INVALID_FLAGS) {
        flags = 0;
        count = convert(nullptr, 0);
    }
    std::string narrow(static_cast<std::size_t>(count), '\0');
    convert(narrow.data(), count);
    return narrow;
}

template <class Ask>
std::wstring AskFolder(Ask ask) {
    std::wstring folder(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = ask(folder.data(), static_cast<DWORD>(folder.size()));
        const bool fits = length < folder.size();
        folder.resize(length);
        if (fits)
            return folder;
    }
}

std::wstring CurrentFolder() {
    return AskFolder([](wchar_t* room, DWORD size) { return ::GetCurrentDirectoryW(size, room); });
}

wchar_t UpperLetter(wchar_t letter) {
    return letter >= L'a' && letter <= L'z' ? static_cast<wchar_t>(letter - L'a' + L'A') : letter;
}

// The run-time libraries store the current folders of other drives in the environment.
std::wstring CurrentFolderOf(wchar_t drive) {
    std::wstring folder = CurrentFolder();
    if (folder.size() > 1 && folder[1] == L':' && UpperLetter(folder[0]) == UpperLetter(drive))
        return folder;
    const wchar_t variable[] = {L'=', drive, L':', L'\0'};
    folder = AskFolder([&](wchar_t* room, DWORD size) { return ::GetEnvironmentVariableW(variable, room, size); });
    return folder.empty() ? std::wstring{drive, L':', L'\\'} : folder;
}

// Empty for an absolute name.
std::wstring FolderBelow(std::wstring_view name) {
    const eNameKind kind = System::KindOfName(name);
    if (name.empty() || System::IsAbsolute(kind))
        return {};
    return kind == eNameKind::OnDrive ? CurrentFolderOf(name[0]) : CurrentFolder();
}

std::wstring SystemName(std::wstring_view name) {
    return System::SystemName(name, FolderBelow(name));
}

std::wstring SystemPattern(std::wstring_view pattern) {
    return System::SystemPattern(pattern, FolderBelow(pattern));
}

bool IsRoot(std::wstring_view extended) {
    const std::size_t start = System::NameSteps::kExtendedStart.size();
    return extended.find(L'\\', start) == extended.size() - 1;
}

} // namespace

UINT NameCodePage() {
    return ::AreFileApisANSI() ? ::GetACP() : ::GetOEMCP();
}

std::wstring WideName(std::string_view name) {
    if (IsAscii(name))
        return {name.begin(), name.end()};
    return name.size() > kLongestNarrowName ? std::wstring() : Widened(name);
}

bool NarrowName(std::wstring_view name, std::string* narrow) {
    if (name.size() > kLongestName)
        return false;
    const bool ascii = IsAscii(name);
    std::string converted = ascii ? std::string(name.begin(), name.end()) : Narrowed(name);
    if (converted.find('\\') != std::string::npos || (!ascii && Widened(converted) != name))
        return false;
    *narrow = std::move(converted);
    return true;
}

std::string ShownName(std::wstring_view name) {
    return name.empty() ? std::string() : Narrowed(name);
}

eNativeName::eNativeName(const char* name) : text(SystemName(WideName(name))) {}
eNativeName::eNativeName(const wchar_t* name) : text(SystemName(name)) {}

eNativePattern::eNativePattern(const char* pattern) : text(SystemPattern(WideName(pattern))) {}
eNativePattern::eNativePattern(const wchar_t* pattern) : text(SystemPattern(pattern)) {}

std::wstring FolderName(const char* name) {
    return FolderName(WideName(name).c_str());
}

std::wstring FolderName(const wchar_t* name) {
    std::wstring folder = System::ExtendedName(name, FolderBelow(name));
    if (folder.ends_with(L'\\') && !IsRoot(folder))
        folder.pop_back();
    return folder;
}

bool ListedName(const WIN32_FIND_DATAW& entry, std::string* name) {
    for (const std::wstring_view given : {entry.cFileName, entry.cAlternateFileName})
        if (!given.empty() && given.find_first_of(L"/:*?\"<>|") == std::wstring_view::npos && NarrowName(given, name))
            return true;
    return false;
}

bool ListedName(const WIN32_FIND_DATAW& entry, std::wstring* name) {
    *name = entry.cFileName;
    return true;
}

} // namespace IO::Platform
