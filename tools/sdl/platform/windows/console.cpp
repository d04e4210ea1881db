// SPDX-License-Identifier: BSL-1.0
#include "platform/console.h"

#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <memory>

#include <windows.h>

#include <shellapi.h>

#include <qzl_base/convert.h>

namespace console {

namespace {

HANDLE HandleOf(eStream stream) {
    switch (stream) {
    case eStream::Input:
        return GetStdHandle(STD_INPUT_HANDLE);
    case eStream::Output:
        return GetStdHandle(STD_OUTPUT_HANDLE);
    case eStream::Error:
        break;
    }
    return GetStdHandle(STD_ERROR_HANDLE);
}

void ShowColours(eStream stream) {
    DWORD mode = 0;
    if (GetConsoleMode(HandleOf(stream), &mode))
        SetConsoleMode(HandleOf(stream), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

} // namespace

bool IsTerminal(eStream stream) {
    DWORD mode = 0;
    return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

void Prepare() {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    if (!IsTerminal(eStream::Output) && !IsTerminal(eStream::Error))
        return;
    SetConsoleOutputCP(CP_UTF8);
    ShowColours(eStream::Output);
    ShowColours(eStream::Error);
}

// The narrow arguments of main are in the code page, which lacks characters that file names have.
std::vector<std::string> Arguments(int, char**) {
    int count = 0;
    const std::unique_ptr<wchar_t*, decltype(&LocalFree)> arguments(CommandLineToArgvW(GetCommandLineW(), &count),
                                                                    &LocalFree);
    std::vector<std::string> texts;
    for (int index = 1; index < count; ++index)
        texts.push_back(ToString(std::wstring(arguments.get()[index])));
    return texts;
}

} // namespace console
