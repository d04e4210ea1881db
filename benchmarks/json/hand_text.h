// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <array>
#include <charconv>
#include <cstddef>
#include <string>
#include <string_view>

#include "../platform/raw_file.h"
#include "work.h"

namespace bench {

// The text that a document is converted to, written without a library. `inner` writes a value, and `isTree` tells
// whether that is an object or an array.
class eHandText {
public:
    template <class T>
    void Number(T value) {
        std::array<char, 32> digits;
        const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
        Item({digits.data(), static_cast<std::size_t>(end - digits.data())});
    }
    void Bool(bool value) { Item(value ? "1" : "0"); }
    void String(std::string_view string) {
        Item("\"");
        for (const char c : string)
            switch (c) {
            case '"':
            case '\\':
                text += '\\';
                text += c;
                break;
            case '\n':
                text += "\\n";
                break;
            case '\r':
                text += "\\r";
                break;
            case '\t':
                text += "\\t";
                break;
            default:
                text += c;
            }
        text += '"';
    }
    template <class eInner>
    void Member(std::string_view name, bool isTree, eInner inner) {
        Open(name);
        isLine = isTree;
        inner();
        isLine = isLine || isTree;
        Close();
    }
    template <class eInner>
    void Element(bool isTree, eInner inner) {
        if (isTree) {
            Open({});
            isLine = true;
        }
        inner();
        isLine = true;
        if (isTree)
            Close();
    }

    std::string text;

private:
    void Line() {
        text += "\r\n";
        text.append(depth, '\t');
        isSpaced = false;
    }
    void Item(std::string_view item) {
        if (isLine)
            Line();
        if (isSpaced)
            text += ' ';
        text += item;
        isLine = false;
        isSpaced = true;
    }
    void Open(std::string_view name) {
        Item("{");
        text += name;
        ++depth;
    }
    void Close() {
        --depth;
        isSpaced = false;
        Item("}");
        isSpaced = false;
        isLine = true;
    }

    std::size_t depth = 0;
    bool isLine = false;
    bool isSpaced = false;
};

inline std::string WholeJson(const std::string& name) {
    const platform::eRawFile file(name.c_str(), platform::eRawFile::Reading);
    std::string text(file.Size(), '\0');
    text.resize(file.Read(text.data(), text.size()));
    return text;
}

inline std::size_t WriteConverted(const std::string& name, const std::string& text) {
    const platform::eRawFile file(name.c_str(), platform::eRawFile::Writing);
    file.Write(text.data(), text.size());
    return text.size();
}

} // namespace bench
