// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstdint>
#include <string>

namespace bench {

// The contents measured. Each is a pure function of its size, so every machine reads the same bytes.
enum class eDocument {
    Records,  // an item with a name, an int, a block of three floats, a tag, a block of three ints
    Strings,  // blocks of 16 strings of 20 to 200 characters, one in 16 with escapes
    Numbers,  // blocks of 8 ints and 8 floats
    Nested,   // chains of 32 blocks inside each other, each with an int and a short string
    Comments, // records, each after three lines of comment
};

enum class eFormat { Sdl, Json, JsonTight, Config, Toml };

// The document as about that many thousand bytes of SDL text, or its content in another format. Created on first use
// and kept.
const std::string& Text(eDocument document, unsigned kilobytes, eFormat format);

// A document with that many records, blocks, rows or chains, created for this call and not kept.
std::string TextOf(eDocument document, std::uint64_t items, eFormat format);

// The number of values (block names excluded) in the document.
double Values(eDocument document, unsigned kilobytes);

double ValuesOf(eDocument document, std::uint64_t items);

// The number of records, blocks of strings, rows of numbers or chains in the document.
std::uint64_t Items(eDocument document, unsigned kilobytes);

const char* Name(eDocument document);

// "16 MB", "64 KB"
std::string SizeName(unsigned kilobytes);

constexpr int kStringsInBlock = 16;
constexpr int kNumbersOfEachKind = 8;
constexpr int kChainDepth = 32;

// The content of one record, for programs that write it.
struct eRecord {
    std::string name;
    int count;
    float position[3];
    double decimals[3]; // the positions as in their decimal texts, for writers without floats
    const char* tag;
    int ids[3];
};
eRecord Record(std::uint64_t index);

// The content of one block of strings.
struct eTextBlock {
    std::string texts[kStringsInBlock];
};
eTextBlock TextBlock(std::uint64_t index);

// The content of one row of numbers.
struct eNumberRow {
    int ints[kNumbersOfEachKind];
    float floats[kNumbersOfEachKind];
    double decimals[kNumbersOfEachKind]; // the floats as in their decimal texts, for writers without floats
};
eNumberRow NumberRow(std::uint64_t index);

// The content of one chain, from the outermost block to the innermost.
struct eNodeChain {
    int numbers[kChainDepth];
    std::string names[kChainDepth];
};
eNodeChain NodeChain(std::uint64_t index);

} // namespace bench
