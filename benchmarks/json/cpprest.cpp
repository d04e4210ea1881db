// SPDX-License-Identifier: BSL-1.0
#include <cpprest/json.h>

#include <array>
#include <charconv>
#include <memory>
#include <string>
#include <string_view>

#include "../platform/raw_file.h"
#include "work.h"

namespace bench {
namespace {

using platform::eRawFile;

// The text that a document is converted to, written without a library.
class eHandText {
public:
    void Value(const web::json::value& value) {
        switch (value.type()) {
        case web::json::value::Number:
            Number(value.as_number());
            break;
        case web::json::value::Boolean:
            Item(value.as_bool() ? "1" : "0");
            break;
        case web::json::value::String:
            String(value.as_string());
            break;
        case web::json::value::Object:
            for (const auto& [name, inner] : value.as_object())
                Member(name, inner);
            break;
        case web::json::value::Array:
            for (const web::json::value& inner : value.as_array())
                Element(inner);
            break;
        case web::json::value::Null:
            break;
        }
    }

    std::string text;

private:
    static bool IsTree(const web::json::value& value) { return value.is_object() || value.is_array(); }

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
    void Number(const web::json::number& number) {
        std::array<char, 32> digits;
        char* end =
            number.is_int32()
                ? std::to_chars(digits.data(), digits.data() + digits.size(), number.to_int32()).ptr
                : std::to_chars(digits.data(), digits.data() + digits.size(), static_cast<float>(number.to_double()))
                      .ptr;
        Item({digits.data(), static_cast<size_t>(end - digits.data())});
    }
    void String(const std::string& string) {
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
    void Member(const std::string& name, const web::json::value& value) {
        Open(name);
        isLine = IsTree(value);
        Value(value);
        isLine = isLine || IsTree(value);
        Close();
    }
    void Element(const web::json::value& value) {
        if (!IsTree(value)) {
            Value(value);
            isLine = true;
            return;
        }
        Open({});
        isLine = true;
        Value(value);
        isLine = true;
        Close();
    }

    size_t depth = 0;
    bool isLine = false;
    bool isSpaced = false;
};

web::json::value Parsed(const std::string& text) {
    web::json::keep_object_element_order(true);
    return web::json::value::parse(text);
}

std::string Whole(const std::string& name) {
    const eRawFile file(name.c_str(), eRawFile::Reading);
    std::string text(file.Size(), '\0');
    text.resize(file.Read(text.data(), text.size()));
    return text;
}

size_t Convert(const std::string& from, const std::string& to) {
    eHandText written;
    written.Value(Parsed(Whole(from)));
    const eRawFile file(to.c_str(), eRawFile::Writing);
    file.Write(written.text.data(), written.text.size());
    return written.text.size();
}

const eContender contender(1, [](eSuite& suite) {
    for (const eJsonWork& work : JsonWorks(suite.Options())) {
        if (!suite.Wants(work.name))
            continue;
        const std::string in = work.Input();
        const std::string out = WorkFile("peer.sdl");
        const std::string& text = work.Json();
        const auto check = [=] {
            Convert(in, out);
            return SumOfConverted(out);
        };
        suite.Add(work.name, work.Count(),
                  {"cpprestsdk's parse and hand-written text",
                   eKind::Peer,
                   0.9,
                   text.size(),
                   {},
                   [=] { return Convert(in, out); },
                   check});
        suite.Add(work.name, work.Count(),
                  {"cpprestsdk's parse alone",
                   eKind::Limit,
                   1.3,
                   text.size(),
                   {},
                   [&text] { return Parsed(text).size(); },
                   check});
    }
});

} // namespace
} // namespace bench
