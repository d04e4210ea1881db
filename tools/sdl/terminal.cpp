// SPDX-License-Identifier: BSL-1.0
#include "terminal.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <system_error>

#include <qzl_base/convert.h>

#include "platform/console.h"
#include "utf8.h"

namespace terminal {

namespace {

std::size_t shown = 0; // characters of the line on the screen

bool IsTime() {
    using eClock = std::chrono::steady_clock;
    static eClock::time_point next = eClock::now() + std::chrono::milliseconds(300);
    if (eClock::now() < next)
        return false;
    next = eClock::now() + std::chrono::milliseconds(100);
    return true;
}

bool IsInteractive() {
    static const bool interactive = console::IsTerminal(console::eStream::Error);
    return interactive;
}

void Show(const std::string& text) {
    EndProgress();
    std::cerr << text << std::flush;
    shown = text.size();
}

// Marks of direction and what has no width hide what a text says.
bool IsHidden(char32_t character) {
    return (character >= 0x200B && character <= 0x200F) || (character >= 0x2028 && character <= 0x202E) ||
           (character >= 0x2060 && character <= 0x206F) || character == 0xFEFF || character == 0x61C;
}

bool IsControl(char32_t character) {
    return (character < 0x20 && character != '\t') || (character >= 0x7F && character < 0xA0);
}

// "<U+001B>", as rendered diagnostics show it.
std::string Numbered(char32_t character) {
    std::string digits = ToString(static_cast<unsigned>(character), true).substr(2);
    for (char& digit : digits)
        digit = digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit;
    return "<U+" + std::string(digits.size() < 4 ? 4 - digits.size() : 0, '0') + digits + '>';
}

} // namespace

std::string Printable(std::string_view text) {
    std::string printable;
    printable.reserve(text.size());
    while (!text.empty()) {
        const utf8::eCharacter first = utf8::FirstOf(text);
        if (IsControl(first.value) || IsHidden(first.value))
            printable += Numbered(first.value);
        else if (first.wellFormed)
            printable += text.substr(0, first.size);
        else
            printable += utf8::kReplacement;
        text.remove_prefix(first.size);
    }
    return printable;
}

void ShowProgress(const std::string& text) {
    if (IsInteractive() && IsTime())
        Show(text);
}

void ShowStep(const std::string& text, const std::string& file) {
    constexpr std::uintmax_t kLarge = 8'000'000;
    std::error_code unknown;
    const std::uintmax_t size = std::filesystem::file_size(std::u8string(file.begin(), file.end()), unknown);
    if (!unknown && size >= kLarge && IsInteractive())
        Show(text);
}

void ShowProgress(const std::string& text, unsigned long long done, unsigned long long total) {
    ShowProgress(text + ", " + std::to_string(total ? done * 100 / total : 0) + " %");
}

void EndProgress() {
    if (shown == 0)
        return;
    std::cerr << '\r' << std::string(shown, ' ') << '\r' << std::flush;
    shown = 0;
}

bool TakesColours() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): this program never changes its environment
    const char* const refused = std::getenv("NO_COLOR");
    return (!refused || !*refused) && console::IsTerminal(console::eStream::Output);
}

} // namespace terminal
