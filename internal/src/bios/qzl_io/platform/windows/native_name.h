// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>
#include <string_view>

#include <windows.h>

namespace IO::Platform {

// Names are UTF-16 on disk; narrow names are in the code page of the system's narrow file functions. A name is passed
// to the system unchanged if possible, and otherwise in extended form ("\\?\"), which no caller ever sees: if it is too
// long for a call, or if a component ends in a dot or a blank. A name that the system takes for a device ("con",
// "aux.txt") is a device if it is short, and a file or folder of that name in extended form.

// The number of the code page of narrow names.
UINT NameCodePage();

// The wide form of a narrow name. Empty, so that it names nothing, if the name contains a byte that is no character of
// the code page.
std::wstring WideName(std::string_view name);

// The narrow form of a name. False, with nothing written, if it would not lead back to the name: the code page lacks a
// character, or the name contains a backslash, which a file name value turns into a slash even as the second half of a
// double-byte character.
bool NarrowName(std::wstring_view name, std::string* narrow);

// A name for people in the narrow code page, with "?" for each character that the page lacks.
std::string ShownName(std::wstring_view name);

// A name in the form that the system takes.
class eNativeName {
public:
    explicit eNativeName(const char* name);
    explicit eNativeName(const wchar_t* name);

    const wchar_t* c_str() const { return text.c_str(); }

private:
    std::wstring text;
};

// A search pattern in the form that the system takes. Its mask means what it means in the original pattern.
class eNativePattern {
public:
    explicit eNativePattern(const char* pattern);
    explicit eNativePattern(const wchar_t* pattern);

    const wchar_t* c_str() const { return text.c_str(); }

private:
    std::wstring text;
};

// A folder's name in extended form, without a slash at the end unless it is a root. Names are appended to it as they
// are on disk.
std::wstring FolderName(const char* name);
std::wstring FolderName(const wchar_t* name);

// The name by which a caller can reach a listed entry. False if no narrow name leads to it, not even its short one. The
// name contains none of / \ : * ? " < > | .
bool ListedName(const WIN32_FIND_DATAW& entry, std::string* name);
bool ListedName(const WIN32_FIND_DATAW& entry, std::wstring* name);

} // namespace IO::Platform
