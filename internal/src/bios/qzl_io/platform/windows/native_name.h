#pragma once

#include <string>
#include <string_view>

#include <windows.h>

namespace IO::Platform {

// Names are UTF-16 on disk; narrow names are in the code page that the system's narrow file calls use. A name goes to
// the system as it stands where that will do, and otherwise in extended form ("\\?\"), which no caller ever sees: where
// it is too long for a call, or where a component ends in a dot or a blank. What the system takes for a device ("con",
// "aux.txt") is one in a short name, and a file or folder of that name in extended form.

// Empty when the name holds what is no character of the code page, so that it names nothing.
std::wstring WideName(std::string_view name);

// A name as a narrow one. False, and nothing written, where that would not lead back to it: where the code page lacks
// a character, or for a back slash, which a file name value turns even as the second half of a double-byte character.
bool NarrowName(std::wstring_view name, std::string* narrow);

// A name as the system takes it.
class eNativeName {
public:
    explicit eNativeName(const char* name);
    explicit eNativeName(const wchar_t* name);

    const wchar_t* c_str() const { return text.c_str(); }

private:
    std::wstring text;
};

// A search's pattern as the system takes it: its mask means what it means in the name as given.
class eNativePattern {
public:
    explicit eNativePattern(const char* pattern);
    explicit eNativePattern(const wchar_t* pattern);

    const wchar_t* c_str() const { return text.c_str(); }

private:
    std::wstring text;
};

// A folder's name in extended form, without a slash behind it unless it is a root. Names are appended to it as they
// stand on disk.
std::wstring FolderName(const char* name);
std::wstring FolderName(const wchar_t* name);

// The name by which a caller can reach a listed entry. False where no narrow name leads to it, not even its short one;
// none holds / \ : * ? " < > | .
bool ListedName(const WIN32_FIND_DATAW& entry, std::string* name);
bool ListedName(const WIN32_FIND_DATAW& entry, std::wstring* name);

} // namespace IO::Platform
