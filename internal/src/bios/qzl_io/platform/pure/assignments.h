// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace IO::System {

// The value of a shell assignment: without its quotes, and with characters after a backslash taken as they are. In
// single quotes a backslash is a character. The value ends at a blank that is not quoted.
inline std::string AssignedValue(std::string_view text) {
    std::string value;
    char quote = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char letter = text[at];
        if (quote == 0 && (letter == '"' || letter == '\''))
            quote = letter;
        else if (quote != 0 && letter == quote)
            quote = 0;
        else if (letter == '\\' && quote != '\'' && at + 1 < text.size())
            value += text[++at];
        else if (quote == 0 && (letter == ' ' || letter == '\t' || letter == '\r'))
            break;
        else
            value += letter;
    }
    return value;
}

// The value of the last line NAME=VALUE in a file of such lines (os-release, user-dirs.dirs); empty if there is none.
inline std::string AssignedTo(std::string_view name, std::string_view file) {
    std::string value;
    while (!file.empty()) {
        const std::size_t end = file.find('\n');
        std::string_view line = file.substr(0, end);
        file = end == std::string_view::npos ? std::string_view() : file.substr(end + 1);
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
        if (line.starts_with(name) && line.substr(name.size()).starts_with('='))
            value = AssignedValue(line.substr(name.size() + 1));
    }
    return value;
}

} // namespace IO::System
