// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "../support/documents.h"

namespace bench {

// Texts of unusual shape.
enum class eShape {
    OneLine,       // records without line breaks
    Tiny,          // documents of a single record, each with a reader of its own
    EmptyBlocks,   // nothing but braces
    EmptyStrings,  // nothing but quotes
    ShortComments, // comments without text, one number after nine of them
};

struct eShapedText {
    eShape shape;
    std::string name;
    std::string text;
    std::uint64_t readings; // how often a pass reads the text
    double values;          // in all readings
};

inline std::string Repeated(const std::string& unit, std::uint64_t times) {
    std::string text;
    text.reserve(unit.size() * times);
    for (std::uint64_t i = 0; i < times; ++i)
        text += unit;
    return text;
}

// The texts, of about that many thousand bytes in all readings.
inline std::vector<eShapedText> ShapedTexts(unsigned kilobytes) {
    const std::uint64_t bytes = std::uint64_t{kilobytes} * 1000;
    std::string oneLine = Text(eDocument::Records, kilobytes, eFormat::Sdl);
    std::ranges::replace_if(
        oneLine, [](char c) { return c == '\r' || c == '\n' || c == '\t'; }, ' ');
    const std::string tiny = TextOf(eDocument::Records, 1, eFormat::Sdl);
    const std::uint64_t readings = bytes / tiny.size();
    const std::string block = "{}", string = "\"\" ", comments = Repeated(";\r\n", 9) + "1\r\n";
    const auto unit = [bytes](eShape shape, const char* name, const std::string& text) {
        const std::uint64_t count = bytes / text.size();
        return eShapedText{shape, name, "{scene " + Repeated(text, count) + "}", 1, static_cast<double>(count)};
    };
    return {
        {eShape::OneLine, "one line", std::move(oneLine), 1, Values(eDocument::Records, kilobytes)},
        {eShape::Tiny, "tiny documents", tiny, readings,
         static_cast<double>(readings) * ValuesOf(eDocument::Records, 1)},
        unit(eShape::EmptyBlocks, "empty blocks", block),
        unit(eShape::EmptyStrings, "empty strings", string),
        unit(eShape::ShortComments, "short comments", comments),
    };
}

inline std::string ShapeWork(const eShapedText& shaped, unsigned kilobytes) {
    return "read an unusual text: " + shaped.name + ", " + SizeName(kilobytes);
}

} // namespace bench
