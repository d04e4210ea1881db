// SPDX-License-Identifier: BSL-1.0
#include "documents.h"

#include <array>
#include <charconv>
#include <cmath>
#include <map>
#include <string_view>
#include <tuple>

namespace bench {
namespace {

// The punctuation of one format around content that all formats share.
struct eSyntax {
    std::string_view rootOpen, rootClose;
    std::string_view between; // between items
    std::string_view comment; // begins a comment line; empty where the format has none
    std::string_view recordOpen, count, position, positionClose, tag, tagClose, ids, idsClose, recordClose;
    std::string_view value; // between the values of a block
    std::string_view texts, text, textsClose;
    std::string_view row, rowClose;
    std::string_view node, nodeInner, nodeLast, nodeClose;
    bool indented;
};

constexpr eSyntax kSdl{"{scene",
                       "\r\n}\r\n",
                       "",
                       "\r\n\t; ",
                       "\r\n\t{item ",
                       " ",
                       "\r\n\t\t{pos ",
                       "}",
                       "\r\n\t\t{tag ",
                       "}",
                       "\r\n\t\t{ids ",
                       "}",
                       "\r\n\t}",
                       " ",
                       "\r\n\t{text",
                       "\r\n\t\t",
                       "\r\n\t}",
                       "\r\n\t{row ",
                       "}",
                       "{node ",
                       "",
                       "",
                       "}",
                       true};
constexpr eSyntax kJson{"{\"scene\": [",
                        "\r\n]}\r\n",
                        ",",
                        "\r\n\t// ",
                        "\r\n\t{\"item\": ",
                        ", \"count\": ",
                        ",\r\n\t\t\"pos\": [",
                        "]",
                        ",\r\n\t\t\"tag\": \"",
                        "\"",
                        ",\r\n\t\t\"ids\": [",
                        "]",
                        "\r\n\t}",
                        ", ",
                        "\r\n\t{\"text\": [",
                        "\r\n\t\t",
                        "\r\n\t]}",
                        "\r\n\t{\"row\": [",
                        "]}",
                        "{\"node\": [",
                        ",",
                        "",
                        "]}",
                        true};
constexpr eSyntax kJsonTight{
    "{\"scene\":[", "]}",          ",", "",  "{\"item\":", ",\"count\":", ",\"pos\":[", "]",  ",\"tag\":\"",
    "\"",           ",\"ids\":[",  "]", "}", ",",          "{\"text\":[", "",           "]}", "{\"row\":[",
    "]}",           "{\"node\":[", ",", "",  "]}",         false};
constexpr eSyntax kConfig{"scene = (",
                          "\r\n);\r\n",
                          ",",
                          "\r\n\t# ",
                          "\r\n\t{ item = ",
                          "; count = ",
                          ";\r\n\t\tpos = [",
                          "]",
                          ";\r\n\t\ttag = \"",
                          "\"",
                          ";\r\n\t\tids = [",
                          "]",
                          ";\r\n\t}",
                          ", ",
                          "\r\n\t{ text = (",
                          "\r\n\t\t",
                          "\r\n\t); }",
                          "\r\n\t{ row = (",
                          "); }",
                          "{ node = (",
                          ",",
                          "",
                          "); }",
                          true};
constexpr eSyntax kToml{"scene = [",
                        "\r\n]\r\n",
                        ",",
                        "\r\n\t# ",
                        "\r\n\t{ item = ",
                        ", count = ",
                        ", pos = [",
                        "]",
                        ", tag = \"",
                        "\"",
                        ", ids = [",
                        "]",
                        " }",
                        ", ",
                        "\r\n\t{ text = [",
                        "\r\n\t\t",
                        "\r\n\t] }",
                        "\r\n\t{ row = [",
                        "] }",
                        "{ node = [",
                        ",",
                        "",
                        "] }",
                        true};

const eSyntax& Syntax(eFormat format) {
    static constexpr std::array<const eSyntax*, 5> kAll{&kSdl, &kJson, &kJsonTight, &kConfig, &kToml};
    return *kAll[static_cast<size_t>(format)];
}

// A stream of numbers that depends on its seed alone.
class eRandom {
public:
    explicit eRandom(std::uint64_t seed) : state(seed * 0x9E3779B97F4A7C15u + 1) {}
    std::uint64_t Next() {
        std::uint64_t z = state += 0x9E3779B97F4A7C15u;
        z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9u;
        z = (z ^ z >> 27) * 0x94D049BB133111EBu;
        return z ^ z >> 31;
    }
    unsigned Below(unsigned limit) { return static_cast<unsigned>(Next() % limit); }

private:
    std::uint64_t state;
};

constexpr std::array<std::string_view, 16> kWords{"lamp",   "column", "river", "engine", "copper",  "window",
                                                  "violet", "north",  "stone", "signal", "harbour", "wheel",
                                                  "amber",  "field",  "tower", "glass"};
constexpr std::array<const char*, 6> kTags{"metal", "wood", "glass", "stone", "water", "cloth"};

// An int of one to nine digits with either sign.
int AnyInt(eRandom& random) {
    static constexpr std::array<unsigned, 9> kLimits{10,        100,        1'000,       10'000,       100'000,
                                                     1'000'000, 10'000'000, 100'000'000, 1'000'000'000};
    const int value = static_cast<int>(random.Below(kLimits[random.Below(9)]));
    return random.Below(4) == 0 ? -value : value;
}

// A coordinate as in scenes, in units of 1/2000: odd, so that every format's text has a fraction.
int Coordinate(eRandom& random) {
    const int odd = static_cast<int>(random.Below(1'000'000)) * 2 + 1;
    return random.Below(2) == 0 ? -odd : odd;
}

// A float with all its digits, from 0.0001 to 100000. None is an integer, which some formats write as such.
float AnyFloat(eRandom& random) {
    static constexpr std::array<float, 5> kScales{0.0001f, 0.01f, 1.0f, 100.0f, 10000.0f};
    const float value = (static_cast<float>(random.Below(1u << 24)) + 0.5f) / 16777216.0f * kScales[random.Below(5)];
    return value == std::trunc(value) ? value + 0.5f : value;
}

// The double with the float's decimal text.
double AsWritten(float value) {
    std::array<char, 32> digits;
    const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    double written = 0;
    std::from_chars(digits.data(), end, written);
    return written;
}

void AppendInt(std::string& to, int value) {
    std::array<char, 16> digits;
    to.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr);
}

void AppendFloat(std::string& to, float value) {
    std::array<char, 32> digits;
    const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    const std::string_view text(digits.data(), static_cast<size_t>(end - digits.data()));
    to += text;
    if (text.find_first_of(".e") == std::string_view::npos)
        to += ".0";
}

// All formats escape alike what the documents contain.
void AppendQuoted(std::string& to, std::string_view text) {
    to += '"';
    for (const char c : text)
        if (c == '\n')
            to += "\\n";
        else {
            if (c == '"' || c == '\\')
                to += '\\';
            to += c;
        }
    to += '"';
}

void AppendRecord(std::string& to, const eSyntax& syntax, std::uint64_t index) {
    const eRecord record = Record(index);
    to += syntax.recordOpen;
    AppendQuoted(to, record.name);
    to += syntax.count;
    AppendInt(to, record.count);
    to += syntax.position;
    for (int i = 0; i < 3; ++i) {
        to += i == 0 ? std::string_view() : syntax.value;
        AppendFloat(to, record.position[i]);
    }
    to += syntax.positionClose;
    to += syntax.tag;
    to += record.tag;
    to += syntax.tagClose;
    to += syntax.ids;
    for (int i = 0; i < 3; ++i) {
        to += i == 0 ? std::string_view() : syntax.value;
        AppendInt(to, record.ids[i]);
    }
    to += syntax.idsClose;
    to += syntax.recordClose;
}

std::string Sentence(eRandom& random, size_t length, bool quotes) {
    std::string text;
    while (text.size() < length) {
        text += kWords[random.Below(16)];
        text += ' ';
    }
    if (quotes)
        text += "said \"so\"\nand went";
    return text;
}

void AppendStrings(std::string& to, const eSyntax& syntax, std::uint64_t index) {
    const eTextBlock block = TextBlock(index);
    to += syntax.texts;
    for (int i = 0; i < kStringsInBlock; ++i) {
        if (i != 0 && syntax.value != " ")
            to += ",";
        to += syntax.text;
        AppendQuoted(to, block.texts[i]);
    }
    to += syntax.textsClose;
}

void AppendNumbers(std::string& to, const eSyntax& syntax, std::uint64_t index) {
    const eNumberRow row = NumberRow(index);
    to += syntax.row;
    for (int i = 0; i < kNumbersOfEachKind; ++i) {
        to += i == 0 ? std::string_view() : syntax.value;
        AppendInt(to, row.ints[i]);
        to += syntax.value;
        AppendFloat(to, row.floats[i]);
    }
    to += syntax.rowClose;
}

void AppendLine(std::string& to, const eSyntax& syntax, int depth) {
    if (!syntax.indented)
        return;
    to += "\r\n";
    to.append(static_cast<size_t>(depth), '\t');
}

void AppendChain(std::string& to, const eSyntax& syntax, std::uint64_t index) {
    const eNodeChain chain = NodeChain(index);
    for (int depth = 1; depth <= kChainDepth; ++depth) {
        AppendLine(to, syntax, depth);
        to += syntax.node;
        AppendInt(to, chain.numbers[depth - 1]);
        to += syntax.value;
        AppendQuoted(to, chain.names[depth - 1]);
        to += depth == kChainDepth ? syntax.nodeLast : syntax.nodeInner;
    }
    to += syntax.nodeClose;
    for (int depth = kChainDepth - 1; depth >= 1; --depth) {
        AppendLine(to, syntax, depth);
        to += syntax.nodeClose;
    }
}

void AppendCommented(std::string& to, const eSyntax& syntax, std::uint64_t index) {
    eRandom random(index + 1'000'000'007u);
    for (int line = 0; line < 3 && !syntax.comment.empty(); ++line) {
        to += syntax.comment;
        to += Sentence(random, 50 + random.Below(50), false);
    }
    AppendRecord(to, syntax, index);
}

using eAppend = void (*)(std::string&, const eSyntax&, std::uint64_t);

struct eShape {
    const char* name;
    eAppend append;
    double valuesInItem;
};

const eShape& Shape(eDocument document) {
    static constexpr std::array<eShape, 5> kShapes{{{"records", AppendRecord, 9},
                                                    {"strings", AppendStrings, kStringsInBlock},
                                                    {"numbers", AppendNumbers, 2 * kNumbersOfEachKind},
                                                    {"nested", AppendChain, 2 * kChainDepth},
                                                    {"comments", AppendCommented, 9}}};
    return kShapes[static_cast<size_t>(document)];
}

struct eMade {
    std::string text;
    std::uint64_t items = 0;
};

eMade MakeSdl(eDocument document, unsigned kilobytes) {
    eMade made;
    const size_t wanted = size_t{kilobytes} * 1000;
    made.text.reserve(wanted + 8192);
    made.text += kSdl.rootOpen;
    for (; made.text.size() < wanted; ++made.items)
        Shape(document).append(made.text, kSdl, made.items);
    made.text += kSdl.rootClose;
    return made;
}

eMade Make(eDocument document, std::uint64_t items, eFormat format) {
    eMade made;
    const eSyntax& syntax = Syntax(format);
    made.items = items;
    made.text += syntax.rootOpen;
    for (std::uint64_t index = 0; index < items; ++index) {
        if (index != 0)
            made.text += syntax.between;
        Shape(document).append(made.text, syntax, index);
    }
    made.text += syntax.rootClose;
    return made;
}

using eKey = std::tuple<eDocument, unsigned, eFormat>;

std::map<eKey, eMade>& Cache() {
    static std::map<eKey, eMade> cache;
    return cache;
}

std::map<std::pair<eDocument, unsigned>, std::uint64_t>& Counts() {
    static std::map<std::pair<eDocument, unsigned>, std::uint64_t> counts;
    return counts;
}

} // namespace

eRecord Record(std::uint64_t index) {
    eRandom random(index);
    eRecord record;
    record.name = kWords[random.Below(16)];
    record.name += ' ';
    AppendInt(record.name, static_cast<int>(random.Below(100'000)));
    record.count = AnyInt(random);
    for (int i = 0; i < 3; ++i) {
        const int odd = Coordinate(random);
        record.position[i] = static_cast<float>(odd) / 2000.0f;
        record.decimals[i] = odd / 2000.0;
    }
    record.tag = kTags[random.Below(kTags.size())];
    for (int& each : record.ids)
        each = AnyInt(random);
    return record;
}

eTextBlock TextBlock(std::uint64_t index) {
    eRandom random(index);
    eTextBlock block;
    for (int i = 0; i < kStringsInBlock; ++i)
        block.texts[i] = Sentence(random, 20 + random.Below(160), i == 7);
    return block;
}

eNumberRow NumberRow(std::uint64_t index) {
    eRandom random(index);
    eNumberRow row;
    for (int i = 0; i < kNumbersOfEachKind; ++i) {
        row.ints[i] = AnyInt(random);
        row.floats[i] = AnyFloat(random);
        row.decimals[i] = AsWritten(row.floats[i]);
    }
    return row;
}

eNodeChain NodeChain(std::uint64_t index) {
    eRandom random(index);
    eNodeChain chain;
    for (int i = 0; i < kChainDepth; ++i) {
        chain.numbers[i] = AnyInt(random);
        chain.names[i] = kWords[random.Below(16)];
    }
    return chain;
}

const std::string& Text(eDocument document, unsigned kilobytes, eFormat format) {
    const auto [entry, isNew] = Cache().try_emplace({document, kilobytes, format});
    if (isNew) {
        entry->second =
            format == eFormat::Sdl ? MakeSdl(document, kilobytes) : Make(document, Items(document, kilobytes), format);
        entry->second.text.shrink_to_fit();
    }
    return entry->second.text;
}

std::uint64_t Items(eDocument document, unsigned kilobytes) {
    const auto [entry, isNew] = Counts().try_emplace({document, kilobytes});
    if (isNew)
        entry->second = MakeSdl(document, kilobytes).items;
    return entry->second;
}

std::string TextOf(eDocument document, std::uint64_t items, eFormat format) {
    return Make(document, items, format).text;
}

double Values(eDocument document, unsigned kilobytes) {
    return ValuesOf(document, Items(document, kilobytes));
}

double ValuesOf(eDocument document, std::uint64_t items) {
    return static_cast<double>(items) * Shape(document).valuesInItem;
}

void ReleaseTexts() {
    Cache().clear();
}

const char* Name(eDocument document) {
    return Shape(document).name;
}

std::string SizeName(unsigned kilobytes) {
    return kilobytes < 1000 ? std::to_string(kilobytes) + " KB" : std::to_string(kilobytes / 1000) + " MB";
}

} // namespace bench
