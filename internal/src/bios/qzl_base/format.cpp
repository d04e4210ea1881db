// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/format.h>

#include <array>
#include <charconv>
#include <cstddef>

#include <qzl_base/convert.h>

namespace {

// The number of the argument that "%N%" at this place of the pattern stands for; 0 if there is no placeholder.
std::size_t PlaceAt(std::string_view pattern, std::size_t at) {
    const bool place = pattern.size() - at >= 3 && pattern[at] == '%' && pattern[at + 2] == '%' &&
                       pattern[at + 1] >= '1' && pattern[at + 1] <= '9';
    return place ? static_cast<std::size_t>(pattern[at + 1] - '0') : 0;
}

template <class T>
std::string NumberText(T number) {
    std::array<char, 32> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    return {text.data(), end};
}

} // namespace

format::format(const char* text) : pattern(text ? text : "") {}

format::format(std::string text) : pattern(std::move(text)) {}

std::string format::str() const {
    std::string text;
    std::size_t copied = 0;
    for (std::size_t at = pattern.find('%'); at != std::string::npos; at = pattern.find('%', at)) {
        const std::size_t place = PlaceAt(pattern, at);
        if (place == 0 || place > arguments.size()) {
            ++at;
            continue;
        }
        text.append(pattern, copied, at - copied).append(arguments[place - 1]);
        at += 3;
        copied = at;
    }
    return text.append(pattern, copied, std::string::npos);
}

format& format::Add(std::string argument) {
    arguments.push_back(std::move(argument));
    return *this;
}

format& format::AddWide(std::wstring_view argument) {
    return Add(ToString(std::wstring(argument)));
}

format& format::AddSigned(long long argument) {
    return Add(NumberText(argument));
}

format& format::AddUnsigned(unsigned long long argument) {
    return Add(NumberText(argument));
}

format& format::AddFloat(float argument) {
    return Add(NumberText(argument));
}

format& format::AddDouble(double argument) {
    return Add(NumberText(argument));
}
