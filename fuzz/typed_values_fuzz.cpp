// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <qzl_base/error.h>
#include <qzl_base/strings.h>
#include <qzl_io/streams.h>

#include "require.h"
#include "script.h"
#include "target.h"
#include "work_folder.h"

// The bytes are calls of typed readers, and the hostile content of the stream that they read: where the data are
// complete, a value is what its bytes mean, and where they are not, the stream says so.

namespace {

namespace Mode = IO::StreamMode;

// The content of a stream and a position in it, which may be beyond.
class eModel {
public:
    explicit eModel(std::string_view bytes) : content(bytes) {}

    std::size_t position = 0;
    bool missing = false; // the last text or list was not complete

    bool Holds(std::size_t n) const { return position + n <= content.size(); }
    std::size_t Left() const { return position < content.size() ? content.size() - position : 0; }

    std::uint64_t Number(std::size_t n) {
        std::uint64_t number = 0;
        for (std::size_t byte = 0; byte < n && position + byte < content.size(); ++byte)
            number |= std::uint64_t{At(position + byte)} << 8 * byte;
        position += n;
        return number;
    }

    std::string Text() {
        std::string text = Bytes(Length());
        return text;
    }
    std::wstring Wide() {
        const std::string bytes = Bytes(2 * Length());
        std::wstring text;
        for (std::size_t at = 0; at < bytes.size(); at += 2)
            AppendUnit(&text, static_cast<unsigned char>(bytes[at]) | static_cast<unsigned char>(bytes[at + 1]) << 8);
        return text;
    }
    std::vector<std::string> List() {
        std::vector<std::string> texts;
        for (std::uint64_t left = Number(8); left > 0 && !missing; --left) {
            missing = Left() == 0;
            if (!missing)
                texts.push_back(Text());
        }
        return texts;
    }
    std::string Line(char delimiter) {
        const std::string_view rest = content.substr(std::min(position, content.size()));
        const std::string line(rest.substr(0, rest.find(delimiter)));
        position += line.size() + (line.size() < rest.size() ? 1 : 0);
        return line;
    }

private:
    unsigned char At(std::size_t at) const { return static_cast<unsigned char>(content[at]); }

    std::size_t Length() {
        const std::uint64_t first = Number(1);
        if (first < 255)
            return first;
        missing = Left() < 3;
        const std::size_t length = Left() > 0 ? At(position) : 0;
        position += std::min<std::size_t>(Left(), 3);
        return length;
    }
    std::string Bytes(std::size_t n) {
        std::string bytes(content.substr(std::min(position, content.size()), n));
        position += bytes.size();
        missing = missing || bytes.size() < n;
        bytes.resize(n);
        return bytes;
    }
    static void AppendUnit(std::wstring* text, int unit) {
        const bool low = unit >= 0xDC00 && unit <= 0xDFFF;
        if (sizeof(wchar_t) > 2 && low && !text->empty() && text->back() >= 0xD800 && text->back() <= 0xDBFF)
            text->back() = static_cast<wchar_t>(0x10000 + ((text->back() - 0xD800) << 10) + (unit - 0xDC00));
        else
            *text += static_cast<wchar_t>(unit);
    }

    std::string_view content;
};

// A stream and its model.
struct ePair {
    IO::eStream& stream;
    eModel model;
};

template <class T>
T ValueOf(std::uint64_t bits) {
    if constexpr (std::is_same_v<T, bool>)
        return bits != 0;
    else if constexpr (std::is_same_v<T, float>)
        return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
    else if constexpr (std::is_same_v<T, double>)
        return std::bit_cast<double>(bits);
    else
        return static_cast<T>(bits);
}

template <class T>
bool AreSame(T one, T other) {
    return std::memcmp(&one, &other, sizeof one) == 0;
}

template <class T>
void Take(ePair& pair) {
    const bool there = pair.model.Holds(sizeof(T));
    const T expected = ValueOf<T>(pair.model.Number(sizeof(T)));
    T value{};
    pair.stream >> value;
    Require(!there || AreSame(value, expected), "a value of " + std::to_string(sizeof(T)) + " bytes");
}

template <class T>
void Peek(ePair& pair, T (IO::eStream::*look)()) {
    const bool there = pair.model.Holds(sizeof(T));
    const T expected = ValueOf<T>(pair.model.Number(sizeof(T)));
    pair.model.position -= sizeof(T);
    const T value = (pair.stream.*look)();
    Require(!there || AreSame(value, expected), "a value of " + std::to_string(sizeof(T)) + " bytes, seen");
}

void TakeBytes(ePair& pair, int n) {
    const std::size_t size = n >= 1 && n <= 4 ? static_cast<std::size_t>(n) : 0;
    const bool there = pair.model.Holds(size);
    const auto expected = static_cast<unsigned>(pair.model.Number(size));
    const unsigned seen = pair.stream.Bytes(n);
    const unsigned value = pair.stream.GetBytes(n);
    Require(!there || (value == expected && seen == expected), "a value of some bytes");
}

void CheckMissing(const ePair& pair) {
    Require(!pair.model.missing || pair.stream.Enabled(Mode::Bad), "a text that is not complete sets Bad");
}

void TakeText(ePair& pair, bool get) {
    const bool there = pair.model.Holds(1);
    const std::string expected = pair.model.Text();
    std::string text = "old";
    if (get)
        text = pair.stream.GetString();
    else
        pair.stream >> text;
    if (there)
        RequireEqual(text, expected, "a text");
    if (there)
        CheckMissing(pair);
}

void TakeWide(ePair& pair) {
    const bool there = pair.model.Holds(1);
    const std::wstring expected = pair.model.Wide();
    std::wstring text = L"old";
    pair.stream >> text;
    if (there && !pair.model.missing)
        RequireEqual(text, expected, "a wide text");
    if (there)
        CheckMissing(pair);
}

void TakeList(ePair& pair) {
    const bool there = pair.model.Holds(8);
    const std::vector<std::string> expected = pair.model.List();
    eStrings texts;
    texts.Add("old");
    pair.stream >> texts;
    Require(texts.size() > 0 && texts[0] == eStringKey("old"), "a list is appended to");
    if (!there)
        return;
    Require(texts.size() == expected.size() + 1, "the number of texts in a list");
    for (std::size_t at = 0; at < expected.size(); ++at)
        RequireEqual(texts[at + 1].str(), expected[at], "a text in a list");
    CheckMissing(pair);
}

void TakeLine(ePair& pair, char delimiter) {
    RequireEqual(pair.stream.GetLine(delimiter), pair.model.Line(delimiter), "a line");
}

// Makes a call. Past the end of the data what a stream reads first is unspecified, so the comparison ends there.
void Call(ePair& pair, unsigned call) {
    using IO::eStream;
    const auto argument = call >> 5;
    switch (call % 26) {
    case 0:
        return Take<bool>(pair);
    case 1:
        return Take<char>(pair);
    case 2:
        return Take<unsigned char>(pair);
    case 3:
        return Take<short>(pair);
    case 4:
        return Take<unsigned short>(pair);
    case 5:
        return Take<int>(pair);
    case 6:
        return Take<unsigned>(pair);
    case 7:
        return Take<long long>(pair);
    case 8:
        return Take<unsigned long long>(pair);
    case 9:
        return Take<float>(pair);
    case 10:
        return Take<double>(pair);
    case 11:
        return TakeBytes(pair, static_cast<int>(argument) - 1);
    case 12:
        return Peek<bool>(pair, &eStream::Bool);
    case 13:
        return Peek<short>(pair, &eStream::Int16);
    case 14:
        return Peek<unsigned>(pair, &eStream::Uint32);
    case 15:
        return Peek<double>(pair, &eStream::Double);
    case 16:
    case 17:
        return TakeText(pair, false);
    case 18:
    case 19:
        return TakeText(pair, true);
    case 20:
    case 21:
        return TakeWide(pair);
    case 22:
    case 23:
        return TakeList(pair);
    default:
        return TakeLine(pair, argument % 2 == 0 ? '\n' : static_cast<char>(argument));
    }
}

void CheckCalls(std::string_view calls, IO::eStream& stream, std::string_view content) {
    ePair pair{stream, eModel(content)};
    for (const char call : calls) {
        stream.Disable(Mode::Bad);
        pair.model.missing = false;
        Call(pair, static_cast<unsigned char>(call));
        if (pair.model.position > content.size())
            return;
        Require(stream.Position() == pair.model.position, "the position after a value");
    }
}

void ReportsReturn() {
    [[maybe_unused]] static const auto previous = xError::SetErrorHandler([](const xError::eReport&) {});
}

const eWorkFolder& WorkFolder() {
    static const eWorkFolder folder;
    return folder;
}

void CheckView(std::string_view calls, std::string_view content) {
    const std::vector<unsigned char> bytes(content.begin(), content.end());
    if (bytes.empty())
        return;
    IO::eBufferStream stream(bytes.data(), bytes.size(), bytes.size());
    CheckCalls(calls, stream, content);
}

void CheckMemory(std::string_view calls, std::string_view content) {
    IO::eMemoryStream stream(1, 1);
    stream.Write(content.data(), content.size());
    stream.Reset();
    CheckCalls(calls, stream, content);
}

void CheckFile(std::string_view calls, std::string_view content) {
    IO::eFileStream stream(WorkFolder().Write("content", content), Mode::Read | Mode::Errors);
    CheckCalls(calls, stream, content);
}

} // namespace

void Check(std::string_view input) {
    ReportsReturn();
    eScript script(input);
    const bool inFile = script.Below(8) == 0;
    const std::string_view calls = script.Text();
    const std::string_view content = script.Rest();
    CheckView(calls, content);
    CheckMemory(calls, content);
    if (inFile)
        CheckFile(calls, content);
}

// Texts and lists one after another until the end.
void Work(std::string_view input) {
    ReportsReturn();
    IO::eMemoryStream stream(1, 1);
    stream.Write(input.data(), input.size());
    stream.Reset();
    while (!stream.Eos()) {
        eStrings texts;
        std::wstring wide;
        stream >> texts >> wide;
        stream.GetString();
        stream.Disable(Mode::Bad);
    }
}
