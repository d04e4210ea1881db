#pragma once

#include <string>

// One line of progress on standard error, shown only where that is a terminal.
namespace terminal {

// Replaces the line.
void ShowProgress(const std::string& text);
// Clears the line, so that other output can follow.
void EndProgress();

} // namespace terminal
