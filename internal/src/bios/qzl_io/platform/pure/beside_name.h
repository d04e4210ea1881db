// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace IO::System {

// The name of a file beside a target: "START" + target + "KIND", and the number unless it is 0. A long target is cut to
// a length that file systems accept; a hash tells apart names that begin alike.
template <class Char>
std::basic_string<Char> BesideName(const Char* start, const std::basic_string<Char>& target, const Char* kind,
                                   unsigned number) {
    constexpr std::size_t kLongest = 200;
    const auto append = [](std::basic_string<Char>* name, std::size_t value) {
        const std::string digits = std::to_string(value);
        name->append(digits.begin(), digits.end());
    };
    std::basic_string<Char> name = start + target.substr(0, kLongest);
    if (target.size() > kLongest) {
        name += Char('~');
        append(&name, std::hash<std::basic_string<Char>>()(target));
    }
    name += kind;
    if (number != 0)
        append(&name, number);
    return name;
}

} // namespace IO::System
