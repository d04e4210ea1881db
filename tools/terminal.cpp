#include "terminal.h"

#include <cstddef>
#include <iostream>

#include "platform/terminal_output.h"

namespace terminal {

namespace {

std::size_t shown = 0; // characters of the line on the screen

} // namespace

void ShowProgress(const std::string& text) {
    static const bool interactive = ErrorOutputIsTerminal();
    if (!interactive)
        return;
    EndProgress();
    std::cerr << text << std::flush;
    shown = text.size();
}

void EndProgress() {
    if (shown == 0)
        return;
    std::cerr << '\r' << std::string(shown, ' ') << '\r' << std::flush;
    shown = 0;
}

} // namespace terminal
