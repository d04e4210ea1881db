// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <charconv>
#include <string>

namespace bench {

// The least that a reader of the text format can do: a switch over the first character, one copy of each token's text,
// numbers converted by from_chars. It counts no lines, keeps no place and checks nothing. The text must end in a zero.
class eBareTokenizer {
public:
    enum class eType { End, Error, Ident, String, BlockStart, BlockEnd, Open, Close, Float, Int, Operator };

    explicit eBareTokenizer(const char* source) : next(source) {}

    eType Next() {
        for (;;) {
            const char* start = next;
            switch (*next) {
            case '\t':
            case '\n':
            case '\r':
            case ' ':
            case '=':
                ++next;
                continue;
            case ';':
                while (*next != '\n' && *next != '\r' && *next != 0)
                    ++next;
                continue;
            case '"':
                return String();
            case '{':
                ++next;
                if (*next == '#')
                    while (*next == '#' || *next == '-' || *next == '+' || IsWord(*next))
                        ++next;
                text.assign(start + 1, next);
                return eType::BlockStart;
            case '}':
                return Mark(eType::BlockEnd);
            case '(':
                return Mark(eType::Open);
            case ')':
                return Mark(eType::Close);
            case '*':
            case '/':
                ++next;
                text.assign(start, next);
                return eType::Operator;
            case '+':
            case '-':
                if (next[1] < '0' || next[1] > '9') {
                    ++next;
                    text.assign(start, next);
                    return eType::Operator;
                }
                [[fallthrough]];
            case '0':
            case '1':
            case '2':
            case '3':
            case '4':
            case '5':
            case '6':
            case '7':
            case '8':
            case '9':
                return Number();
            case 0:
                return eType::End;
            default:
                if (!IsWord(*next) && *next != '%')
                    return eType::Error;
                ++next;
                while (IsWord(*next))
                    ++next;
                text.assign(start, next);
                return eType::Ident;
            }
        }
    }

    std::string text;
    float real = 0;
    int integer = 0;
    bool isEscaped = false; // the string contains a backslash

private:
    static bool IsWord(char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    }
    static bool IsDigit(char c) { return c >= '0' && c <= '9'; }

    eType Mark(eType type) {
        ++next;
        text.clear();
        return type;
    }

    eType String() {
        const char* start = ++next;
        isEscaped = false;
        while (*next != '"') {
            if (*next == '\\') {
                isEscaped = true;
                ++next;
            }
            if (*next == 0 || *next == '\n' || *next == '\r')
                return eType::Error;
            ++next;
        }
        text.assign(start, next++);
        return eType::String;
    }

    eType Number() {
        const char* start = next;
        ++next;
        while (IsDigit(*next))
            ++next;
        if (*next != '.' && *next != 'e' && *next != 'E') {
            text.assign(start, next);
            std::from_chars(start + (*start == '+'), next, integer);
            return eType::Int;
        }
        while (IsDigit(*next) || *next == '.' || *next == 'e' || *next == 'E' || *next == '-' || *next == '+')
            ++next;
        text.assign(start, next);
        std::from_chars(start + (*start == '+'), next, real);
        return eType::Float;
    }

    const char* next;
};

} // namespace bench
