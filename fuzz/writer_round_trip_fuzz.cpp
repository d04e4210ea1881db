// SPDX-License-Identifier: BSL-1.0
#include <bit>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_io/sdl.h>

#include "require.h"
#include "script.h"
#include "target.h"

// The bytes are a list of calls to a writer; a reader with the same list finds every value again.

namespace {

eSDLKeyword* words;
eSDLKeyword itemWord(words, "item", 1);
eSDLKeyword sizeWord(words, "size", 2);

std::string TextIn(eScript& calls) {
    const std::string text(calls.Text());
    return text.substr(0, text.find('\0'));
}

class eWriting {
public:
    explicit eWriting(IO::eStream* target) : writer(target) { writer.PushKeywords(words); }

    void Int(int value, bool hexadecimal) {
        writer.Stream().formatFlag = hexadecimal;
        writer << value;
    }
    void Float(float value) { writer << value; }
    void String(const std::string& text) { writer << text; }
    void Wide(const std::string& text) { writer << ToStringW(text); }
    void Begin(int id, bool vanishing) {
        writer << block{id};
        if (vanishing)
            writer.Stream().MarkEmpty();
    }
    void End() { writer << endb; }
    void Word(int id) { writer << keyword{id}; }
    void Line() { writer << endl; }

private:
    eSDLWriter writer;
};

class eReading {
public:
    explicit eReading(IO::eStream* source) : reader(source, nullptr) { reader.PushKeywords(words); }

    void Int(int value, bool) { Require(reader.GetInt() == value, "an integer"); }
    void Float(float value) {
        const float expected = std::isfinite(value) ? value : 0;
        Require(std::bit_cast<std::uint32_t>(reader.GetFloat()) == std::bit_cast<std::uint32_t>(expected), "a float");
    }
    void String(const std::string& text) { Require(reader.GetString() == text, "a string"); }
    void Wide(const std::string& text) { Require(reader.GetString() == ToString(ToStringW(text)), "a wide string"); }
    void Begin(int id, bool) { Require(reader.GetBlock(id) == id, "a block"); }
    void End() { reader >> endb; }
    void Word(int id) { Require(reader.GetKeyword() == id, "a keyword"); }
    void Line() {}

    void Finish() { Require(!reader.Check(sdlNumber) && reader.Token().type == sdlNone, "the end"); }

private:
    eSDLReader reader;
};

// Lines are as long as they are deep, so blocks are not nested deeper.
constexpr int kDeepest = 100;

// Makes the calls, and closes blocks that are left open at the end.
template <class eTarget>
void Make(eScript calls, eTarget& target) {
    constexpr bool reading = requires {
        target.Finish();
    };
    int depth = 0;
    while (!calls.IsOver()) {
        const unsigned call = calls.Byte();
        const int id = call & 0x10 ? 2 : 1;
        switch (call & 0x07) {
        case 0:
            target.Int(static_cast<int>(calls.Number(4)), (call & 0x10) != 0);
            break;
        case 1:
            target.Float(std::bit_cast<float>(static_cast<std::uint32_t>(calls.Number(4))));
            break;
        case 2:
            target.String(TextIn(calls));
            break;
        case 3:
            target.Wide(TextIn(calls));
            break;
        case 4:
            if (depth < kDeepest) {
                target.Begin(id, false);
                ++depth;
            }
            break;
        case 5:
            if (depth > 0) {
                target.End();
                --depth;
            }
            break;
        case 6:
            target.Word(id);
            break;
        case 7:
            if (call & 0x20) {
                if constexpr (!reading) {
                    target.Begin(id, true);
                    target.End();
                }
            }
            target.Line();
            break;
        }
    }
    for (; depth > 0; --depth)
        target.End();
}

} // namespace

void Check(std::string_view input) {
    [[maybe_unused]] static const auto replaced = xError::SetWarningHandler([](const xError::eReport&) {});
    const eScript calls(input);
    IO::eMemoryStream stream;
    {
        eWriting writing(&stream);
        Make(calls, writing);
    }
    stream.Reset();
    eReading reading(&stream);
    Make(calls, reading);
    reading.Finish();
}

void Work(std::string_view input) {
    IO::eMemoryStream stream;
    eWriting writing(&stream);
    Make(eScript(input), writing);
}
