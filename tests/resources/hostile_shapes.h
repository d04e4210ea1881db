// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <qzl_base/error.h>
#include <qzl_io/sdl/reader.h>
#include <qzl_io/streams.h>

// Documents that are made to cost much, and the ways to read them.

struct eHostileShape {
    const char* name;
    std::string before;
    std::string unit; // repeated
    std::string after;

    std::string OfSize(std::size_t size) const {
        std::string text = before;
        while (text.size() + unit.size() + after.size() <= size)
            text += unit;
        return text + after;
    }
};

inline const std::vector<eHostileShape>& HostileShapes() {
    static const std::vector<eHostileShape> shapes = {
        {"opening braces", "", "{", ""},
        {"closing braces", "", "}", ""},
        {"marked braces", "", "{#a", ""},
        {"hidden blocks", "", "{##a}", ""},
        {"nested hidden blocks", "", "{##a ", ""},
        {"quotes", "", "\"", ""},
        {"strings of one character", "", "\"a\"", ""},
        {"strings of one escape", "", "\"\\n\"", ""},
        {"comments of one character", "", ";\n", ""},
        {"one comment", ";", ";", ""},
        {"blanks", "", " ", ""},
        {"line feeds", "", "\n", ""},
        {"words of one character", "", "a ", ""},
        {"numbers of one digit", "", "1 ", ""},
        {"operators", "", "+", ""},
        {"one word", "", "a", ""},
        {"one string", "\"", "a", "\""},
        {"one string of escapes", "\"", "\\\\", "\""},
        {"one string of continued lines", "\"", "\\\n", "\""},
        {"a string without an end", "\"", "a", ""},
        {"two strings of half the size", "\"", "a", "\""},
        {"one integer", "", "1", ""},
        {"one hexadecimal integer", "0x", "f", ""},
        {"one fraction", "1.", "1", ""},
        {"one exponent", "1e", "1", ""},
        {"one exponent of signs", "1e", "-", ""},
        {"one mark", "{#", "a", ""},
        {"one hidden mark", "{##", "a", "}"},
        {"control blocks of text", "", "(\"\")", ""},
        {"control blocks of a sum", "", "(+ 1 1)", ""},
        {"one long sum", "(+", " 1", ")"},
        {"a string before a sum", "\"", "\\\\", "\" (+ 1 1)"},
        {"a mark before a sum", "{#", "a", " (+ 1 1)"},
        {"a word before a comment block", "", "a", " (\"\")"},
        {"a control block of blocks", "(mod ", "{", ""},
        {"a control block of control blocks", "(mod ", "(", ""},
        {"percent signs", "", "%", ""},
        {"characters that begin no token", "", "\x80", ""},
    };
    return shapes;
}

// A character that begins no token stays unread, so it ends every way of reading.
class eHostileReader : public eSDLReader {
public:
    using eSDLReader::eSDLReader;

    bool Read() { return Get() && Token().type != sdlError; }
};

struct eHostileReading {
    const char* name;
    std::function<void(eHostileReader&)> read;
};

inline const std::vector<eHostileReading>& HostileReadings() {
    static const std::vector<eHostileReading> readings = {
        {"token by token",
         [](eHostileReader& reader) {
             while (reader.Read()) {
             }
         }},
        {"looking ahead",
         [](eHostileReader& reader) {
             do {
                 reader.Start();
                 reader.End();
                 reader.Test(sdlString);
             } while (reader.Read());
         }},
        {"going back",
         [](eHostileReader& reader) {
             while (reader.Read()) {
                 reader.Back();
                 if (!reader.Read())
                     break;
             }
         }},
        {"as strings",
         [](eHostileReader& reader) {
             for (;;)
                 reader.GetString();
         }},
        {"as words",
         [](eHostileReader& reader) {
             for (;;)
                 reader.GetIdent(true);
         }},
        {"as numbers",
         [](eHostileReader& reader) {
             for (;;)
                 reader.GetFloat();
         }},
        {"as blocks",
         [](eHostileReader& reader) {
             for (;;)
                 reader >> begb;
         }},
        {"as a signature", [](eHostileReader& reader) { reader.GetSignature(); }},
        {"skipped", [](eHostileReader& reader) { reader.SkipBlock(); }},
        {"skipped block by block",
         [](eHostileReader& reader) {
             while (reader.Read())
                 if (reader.Token().type == sdlBlockStart)
                     reader.SkipBlock();
         }},
    };
    return readings;
}

// Reads a document until it ends or is refused.
inline void ReadHostile(const std::string& text, const eHostileReading& reading) {
    try {
        IO::eBufferStream stream(text);
        eHostileReader reader(&stream, nullptr);
        reading.read(reader);
    } catch (const xError::eException&) {
    }
}
