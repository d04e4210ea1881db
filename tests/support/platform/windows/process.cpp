// SPDX-License-Identifier: BSL-1.0
#include "support/process.h"

#include <fstream>
#include <iterator>

#include <windows.h>

#include <gtest/gtest.h>

#include <qzl_base/convert.h>

#include "support/temp_folder.h"

namespace {

std::string ContentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// The argument as CommandLineToArgvW takes it apart.
std::wstring Quoted(const std::string& argument) {
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t character : ToStringW(argument)) {
        if (character == L'"')
            quoted.append(backslashes + 1, L'\\');
        backslashes = character == L'\\' ? backslashes + 1 : 0;
        quoted += character;
    }
    return quoted.append(backslashes, L'\\') + L'"';
}

HANDLE OpenFor(const std::filesystem::path& file, DWORD access) {
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    return CreateFileW(file.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                       access == GENERIC_READ ? OPEN_EXISTING : CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

} // namespace

eEnded RunProgram(const std::string& program, const std::vector<std::string>& arguments, const std::string& input,
                  const std::filesystem::path& folder) {
    const eTempFolder streams;
    const auto in = streams.Path() / "input";
    const auto out = streams.Path() / "output";
    const auto error = streams.Path() / "errors";
    std::ofstream(in, std::ios::binary) << input;

    std::wstring line = Quoted(program);
    for (const std::string& argument : arguments)
        line += L' ' + Quoted(argument);

    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = OpenFor(in, GENERIC_READ);
    start.hStdOutput = OpenFor(out, GENERIC_WRITE);
    start.hStdError = OpenFor(error, GENERIC_WRITE);
    PROCESS_INFORMATION child = {};
    const BOOL started =
        CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, folder.c_str(), &start, &child);
    for (const HANDLE handle : {start.hStdInput, start.hStdOutput, start.hStdError})
        CloseHandle(handle);
    EXPECT_TRUE(started) << program;
    if (!started)
        return {};
    WaitForSingleObject(child.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(child.hProcess, &code);
    CloseHandle(child.hThread);
    CloseHandle(child.hProcess);
    return {static_cast<int>(code), ContentOf(out), ContentOf(error)};
}
