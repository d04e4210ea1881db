// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

namespace IO::System {

// The system takes a name up to its first NUL. A name that goes on after one names nothing, so that nothing happens to
// another file than the one that the application means.
template <class Char>
bool IsWhole(const std::basic_string<Char>& name) {
    return name.find(Char()) == std::basic_string<Char>::npos;
}

// A name as the system takes it; empty if it names nothing.
template <class Name>
const auto* WholeText(const Name& name) {
    static constexpr typename Name::eText::value_type kNothing[] = {0};
    return IsWhole(name.str()) ? name.c_str() : kNothing;
}

} // namespace IO::System
