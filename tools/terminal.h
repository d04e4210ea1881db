#pragma once

#include <string>

// One line of progress on standard error, shown only if that is a terminal.

namespace terminal {

// Replaces the line.
void ShowProgress(const std::string& text);
// Clears the line to make room for other output.
void EndProgress();

} // namespace terminal
