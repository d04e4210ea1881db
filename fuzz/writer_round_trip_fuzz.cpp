#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>
#include <string_view>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_io/sdl.h>

// The bytes are a list of calls to a writer; a reader with the same list finds every value again.

namespace {

eSDLKeyword* words;
eSDLKeyword itemWord(words, "item", 1);
eSDLKeyword sizeWord(words, "size", 2);

void Require(bool promise, const char* what) {
    if (promise)
        return;
    std::cerr << "not read back as written: " << what << '\n';
    std::abort();
}

// Splits the bytes into calls.
class eCalls {
public:
    explicit eCalls(std::string_view bytes) : rest(bytes) {}

    bool Next() { return !rest.empty(); }

    std::uint8_t Byte() {
        if (rest.empty())
            return 0;
        const auto byte = static_cast<std::uint8_t>(rest.front());
        rest.remove_prefix(1);
        return byte;
    }

    std::uint32_t Word() {
        std::uint32_t word = 0;
        for (int byte = 0; byte < 4; ++byte)
            word = word << 8 | Byte();
        return word;
    }

    std::string Text() {
        const std::string text(rest.substr(0, Byte()));
        rest.remove_prefix(std::min(rest.size(), text.size()));
        return text.substr(0, text.find('\0'));
    }

private:
    std::string_view rest;
};

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

// Makes the calls, and closes blocks that are left open at the end.
template <class eTarget>
void Make(eCalls calls, eTarget& target) {
    constexpr bool reading = requires {
        target.Finish();
    };
    int depth = 0;
    while (calls.Next()) {
        const std::uint8_t call = calls.Byte();
        const int id = call & 0x10 ? 2 : 1;
        switch (call & 0x07) {
        case 0:
            target.Int(static_cast<int>(calls.Word()), (call & 0x10) != 0);
            break;
        case 1:
            target.Float(std::bit_cast<float>(calls.Word()));
            break;
        case 2:
            target.String(calls.Text());
            break;
        case 3:
            target.Wide(calls.Text());
            break;
        case 4:
            target.Begin(id, false);
            ++depth;
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

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    [[maybe_unused]] static const auto replaced = xError::SetWarningHandler([](const xError::eReport&) {});
    const eCalls calls(std::string_view(reinterpret_cast<const char*>(data), size));
    IO::eMemoryStream stream;
    {
        eWriting writing(&stream);
        Make(calls, writing);
    }
    stream.Reset();
    eReading reading(&stream);
    Make(calls, reading);
    reading.Finish();
    return 0;
}
