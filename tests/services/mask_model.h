// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// The system's own procedure, with every alternative tried: the file search turns a mask into an expression with three
// more operators, "<" (any characters, but not the last dot), ">" (one character; nothing at a dot or the end) and "\""
// (a dot; nothing at the end), and the file system compares names with that.

inline std::wstring SystemExpression(std::wstring_view mask) {
    if (mask.find_first_of(L"*?") == mask.npos)
        return std::wstring(mask);
    std::wstring expression(mask.substr(0, mask.find_last_not_of(L". ") + 1));
    if (expression == L"*.*")
        return L"*";
    for (std::size_t at = 0; at < expression.size(); ++at) {
        const bool wild = expression[at] == L'?' || expression[at] == L'*';
        if (expression[at] == L'?')
            expression[at] = L'>';
        if (at > 0 && wild && expression[at - 1] == L'.')
            expression[at - 1] = L'"';
        if (at > 0 && expression[at] == L'.' && expression[at - 1] == L'*')
            expression[at - 1] = L'<';
    }
    if (mask.ends_with(L'.') && expression.ends_with(L'*'))
        expression.back() = L'<';
    return expression;
}

// The letters must be of one case.
inline bool InExpression(std::wstring_view expression, std::wstring_view name) {
    const std::size_t lastDot = name.rfind(L'.');
    // For each rest of the expression, whether each rest of the name is in it.
    std::vector<bool> next(name.size() + 1, false);
    next.back() = true;
    for (std::size_t place = expression.size(); place-- > 0;) {
        std::vector<bool> here(name.size() + 1, false);
        for (std::size_t at = name.size() + 1; at-- > 0;) {
            const bool atEnd = at == name.size();
            const bool atDot = !atEnd && name[at] == L'.';
            const bool skip = next[at];
            const bool take = !atEnd && next[at + 1];
            const bool stay = !atEnd && here[at + 1];
            switch (expression[place]) {
            case L'*':
                here[at] = skip || stay;
                break;
            case L'<':
                here[at] = skip || (at != lastDot && stay);
                break;
            case L'>':
                here[at] = atEnd || atDot ? skip : take;
                break;
            case L'"':
                here[at] = atEnd ? skip : atDot && take;
                break;
            default:
                here[at] = take && name[at] == expression[place];
                break;
            }
        }
        next = here;
    }
    return next.front();
}

inline bool MatchesInTheSystem(std::wstring_view mask, std::wstring_view name) {
    return !mask.empty() && InExpression(SystemExpression(mask), name);
}
