// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <charconv>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

// Receives the content of a JSON text in the order of the document.
class eJsonContent {
public:
    virtual ~eJsonContent() = default;

    virtual void BeginObject() = 0;
    virtual void Name(const std::string& name) = 0;
    virtual void EndMember() = 0;
    virtual void EndObject() = 0;
    virtual void BeginArray() = 0;
    virtual void EndArray() = 0;
    virtual void String(const std::string& text) = 0;
    virtual void Integer(const std::string& digits) = 0;
    virtual void Float(double value) = 0;
    virtual void Bool(bool value) = 0;
    virtual void Null() = 0;
};

// Walks a well-formed JSON text. It is written for the tests and shares nothing with the library's parser.
class eJsonWalker {
public:
    eJsonWalker(std::string_view json, eJsonContent* target) : text(json), content(*target) {
        if (text.starts_with("\xEF\xBB\xBF"))
            text.remove_prefix(3);
        Value();
        Require(Peek() == '\0');
    }

private:
    static void Require(bool wellFormed) {
        if (!wellFormed)
            throw std::runtime_error("The test document is not well-formed JSON.");
    }

    char Peek() {
        const std::size_t next = text.find_first_not_of(" \t\r\n");
        text.remove_prefix(next == std::string_view::npos ? text.size() : next);
        return text.empty() ? '\0' : text.front();
    }

    bool Accept(char character) {
        if (Peek() != character)
            return false;
        text.remove_prefix(1);
        return true;
    }

    bool AcceptWord(std::string_view word) {
        if (!text.starts_with(word))
            return false;
        text.remove_prefix(word.size());
        return true;
    }

    void Value() {
        switch (Peek()) {
        case '{':
            return Object();
        case '[':
            return Array();
        case '"':
            return content.String(String());
        default:
            return Scalar();
        }
    }

    void Object() {
        Accept('{');
        content.BeginObject();
        while (!Accept('}')) {
            Require(Peek() == '"');
            content.Name(String());
            Require(Accept(':'));
            Value();
            content.EndMember();
            Require(Accept(',') || Peek() == '}');
        }
        content.EndObject();
    }

    void Array() {
        Accept('[');
        content.BeginArray();
        while (!Accept(']')) {
            Value();
            Require(Accept(',') || Peek() == ']');
        }
        content.EndArray();
    }

    void Scalar() {
        if (AcceptWord("true"))
            return content.Bool(true);
        if (AcceptWord("false"))
            return content.Bool(false);
        if (AcceptWord("null"))
            return content.Null();
        Number();
    }

    void Number() {
        const std::string_view digits = text.substr(0, text.find_first_not_of("+-0123456789.eE"));
        text.remove_prefix(digits.size());
        if (digits.find_first_of(".eE") == std::string_view::npos)
            return content.Integer(std::string(digits));
        double value = 0;
        Require(std::from_chars(digits.data(), digits.data() + digits.size(), value).ec == std::errc());
        content.Float(value);
    }

    std::string String() {
        std::string result;
        text.remove_prefix(1);
        for (;;) {
            const std::size_t end = text.find_first_of("\"\\");
            Require(end != std::string_view::npos);
            result += text.substr(0, end);
            const bool escape = text[end] == '\\';
            text.remove_prefix(end + 1);
            if (!escape)
                return result;
            Escape(&result);
        }
    }

    void Escape(std::string* result) {
        constexpr std::string_view kLetters = "\"\\/bfnrt";
        constexpr std::string_view kCharacters = "\"\\/\b\f\n\r\t";
        const std::size_t which = kLetters.find(text.front());
        if (which != std::string_view::npos) {
            *result += kCharacters[which];
            text.remove_prefix(1);
            return;
        }
        unsigned point = Unit();
        if (point >= 0xD800 && point < 0xDC00) {
            Require(AcceptWord("\\"));
            point = 0x10000 + ((point - 0xD800) << 10) + (Unit() - 0xDC00);
        }
        AppendUtf8(result, point);
    }

    // The four digits after "u".
    unsigned Unit() {
        unsigned unit = 0;
        const char* const digits = text.data() + 1;
        Require(text.size() >= 5 && text.front() == 'u');
        Require(std::from_chars(digits, digits + 4, unit, 16).ptr == digits + 4);
        text.remove_prefix(5);
        return unit;
    }

    static void AppendUtf8(std::string* result, unsigned point) {
        const auto tail = [&](int shift) { *result += static_cast<char>(0x80 | ((point >> shift) & 0x3F)); };
        if (point < 0x80) {
            *result += static_cast<char>(point);
        } else if (point < 0x800) {
            *result += static_cast<char>(0xC0 | (point >> 6));
            tail(0);
        } else if (point < 0x10000) {
            *result += static_cast<char>(0xE0 | (point >> 12));
            tail(6), tail(0);
        } else {
            *result += static_cast<char>(0xF0 | (point >> 18));
            tail(12), tail(6), tail(0);
        }
    }

    std::string_view text;
    eJsonContent& content;
};
