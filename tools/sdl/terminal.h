// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>
#include <string_view>

// What the program shows to people.

namespace terminal {

// The text without anything that a terminal would obey: control characters but tabs, and characters that change the
// direction of a text or are invisible, are shown by their numbers, as <U+001B>, ill-formed parts as U+FFFD.
std::string Printable(std::string_view text);

// So many tokens are read between two looks at the time.
inline constexpr unsigned kTokensBetweenProgress = 1 << 16;

// Replaces the line of progress on standard error, ten times in a second at most and only on a terminal.
void ShowProgress(const std::string& text);
// The same at once, for work of one step on a file: only if the file is so large that this takes long.
void ShowStep(const std::string& text, const std::string& file);
// The same, with the part of `total` bytes that `done` are.
void ShowProgress(const std::string& text, unsigned long long done, unsigned long long total);
// Clears the line of progress to make room for other output.
void EndProgress();

// Whether standard output is a terminal that may be given colours: NO_COLOR forbids them.
bool TakesColours();

} // namespace terminal
