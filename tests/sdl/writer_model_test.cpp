// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/writer.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/convert.h>
#include <qzl_io/sdl/parser.h>

#include "support/reports.h"
#include "support/rounds.h"
#include "support/written_text.h"

// Writers compared with a model: items in any order, and every byte of the text.

namespace {

eSDLKeyword* words;
eSDLKeyword itemWord(words, "item", 10);

// The behaviour expected of eSDLTextStream, item by item.
class eModelText {
public:
    void WriteString(std::string value) {
        ConvertEscSequence(&value, true);
        Put('"' + value + '"');
    }
    void WriteInt(int value) { Put(ToString(value, std::exchange(formatFlag, false))); }
    void WriteFloat(float value) {
        warnings += !std::isfinite(value);
        Put(ToString(std::isfinite(value) ? value : 0.0f));
    }
    void WriteIdent(const std::string& name) { Put(name); }
    void WriteHashed(const std::string& value) {
        if (!value.empty())
            Put("#" + value);
    }
    void WriteControl(int code) {
        if (code == sdlBlockStart)
            OpenBlock();
        if (code == sdlBlockEnd)
            CloseBlock();
        if (code == sdlOpen || code == sdlClose) {
            Separate();
            text += code == sdlOpen ? '(' : ')';
        }
    }
    void MarkEmpty() { positions.push_back(-Position()); }

    std::string Flushed() {
        spacePending = false;
        if (!text.empty())
            Separate();
        return text;
    }

    bool formatFlag = false;
    bool newlinePending = false;
    std::size_t warnings = 0;
    std::size_t depth = 0;

private:
    long Position() const { return static_cast<long>(text.size()); }

    void Put(const std::string& item) {
        Separate();
        text += item;
        spacePending = true;
    }

    void Separate() {
        if (std::exchange(newlinePending, false)) {
            text += "\r\n" + std::string(depth, '\t');
            spacePending = false;
        }
        if (std::exchange(spacePending, false))
            text += ' ';
    }

    void OpenBlock() {
        positions.push_back(Position());
        Separate();
        ++depth;
        text += '{';
    }

    void CloseBlock() {
        --depth;
        bool removed = false;
        if (positions.back() < 0) {
            const bool empty = -positions.back() == Position();
            positions.pop_back();
            if (empty)
                text.resize(static_cast<std::size_t>(positions.back()));
            removed = empty;
        }
        positions.pop_back();
        if (removed)
            return;
        spacePending = false;
        Separate();
        text += '}';
    }

    std::string text;
    std::vector<long> positions;
    bool spacePending = false;
};

std::string RandomString(std::mt19937& random) {
    const unsigned alphabet = random() % 3 ? 255 : 34;
    std::string text;
    for (auto left = random() % 40; left > 0; --left)
        text += static_cast<char>(1 + random() % alphabet);
    return text;
}

// Writes one item to both and returns its name.
const char* WriteItem(std::mt19937& random, eSDLWriter& writer, eModelText& model) {
    switch (random() % 18) {
    case 0: {
        const std::string text = RandomString(random);
        writer << text;
        model.WriteString(text);
        return "string";
    }
    case 1: {
        eStrings texts;
        for (auto left = random() % 3; left > 0; --left) {
            texts.Add(RandomString(random));
            model.WriteString(texts[texts.size() - 1].str());
            model.newlinePending = true;
        }
        writer << texts;
        return "strings";
    }
    case 2: {
        const int value = static_cast<int>(random()) >> random() % 31;
        writer << value;
        model.WriteInt(value);
        return "int";
    }
    case 3: {
        const auto value = std::bit_cast<float>(static_cast<unsigned>(random()) | (random() % 8 ? 0 : 0x7F800000u));
        writer << value;
        model.WriteFloat(value);
        return "float";
    }
    case 4:
        writer << ident{"word"};
        model.WriteIdent("word");
        return "ident";
    case 5:
        writer << keyword{10};
        model.WriteIdent("item");
        return "keyword";
    case 6:
        writer.Stream().WriteHashed("mark");
        model.WriteHashed("mark");
        return "hashed";
    case 7:
        writer.Stream().WriteHashed("");
        model.WriteHashed("");
        return "empty hashed";
    case 8:
        writer.Stream().formatFlag = model.formatFlag = true;
        return "hexadecimal";
    case 9: {
        const int code = static_cast<int>(random() % 16) - 1;
        if (code != sdlBlockStart && code != sdlBlockEnd) {
            writer.Stream().WriteControl(code);
            model.WriteControl(code);
        }
        return "control";
    }
    case 10:
        writer << block{10};
        model.WriteControl(sdlBlockStart);
        model.WriteIdent("item");
        return "block";
    case 11:
        writer.Stream().WriteControl(sdlBlockStart);
        model.WriteControl(sdlBlockStart);
        return "bare block";
    case 12:
        writer << block{10};
        writer.Stream().MarkEmpty();
        model.WriteControl(sdlBlockStart);
        model.WriteIdent("item");
        model.MarkEmpty();
        return "block marked";
    case 13:
    case 14:
    case 15:
        if (model.depth > 0) {
            writer << endb;
            model.WriteControl(sdlBlockEnd);
        }
        return "endb";
    default:
        writer << endl;
        model.newlinePending = true;
        return "endl";
    }
}

} // namespace

TEST(WriterModel, EverySequenceOfItemsGivesTheBytesOfTheSteps) {
    for (eRounds rounds(15'000, 500'000); rounds.Next();) {
        std::mt19937 random(rounds.Current());
        const eReports reports;
        eModelText model;
        std::string items;
        const std::string text = WrittenText(words, [&](eSDLWriter& writer) {
            for (auto left = random() % 60; left > 0; --left)
                items += std::string(WriteItem(random, writer, model)) + ", ";
        });
        ASSERT_EQ(text, model.Flushed()) << items;
        ASSERT_EQ(reports.warnings().size(), model.warnings) << items;
        ASSERT_TRUE(reports.errors().empty()) << items;
    }
}
