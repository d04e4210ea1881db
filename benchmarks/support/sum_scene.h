// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <qzl_io/sdl.h>

#include <cstdint>
#include <string>

#include "checksum.h"
#include "documents.h"
#include "scene_words.h"

namespace bench {

// Reads the items of a scene as an application does, copying each string, and adds the values to a checksum.
class eSceneSum {
public:
    explicit eSceneSum(eSDLReader& from) : reader(from) {}

    void Record() {
        reader.GetBlock(wordItem);
        Text();
        Int();
        reader.GetBlock(wordPos);
        for (int i = 0; i < 3; ++i)
            Float();
        reader >> endb;
        reader.GetBlock(wordTag);
        text = reader.GetIdent(false);
        sum.Text(text);
        reader >> endb;
        reader.GetBlock(wordIds);
        for (int i = 0; i < 3; ++i)
            Int();
        reader >> endb >> endb;
    }
    void Strings() {
        reader.GetBlock(wordText);
        for (int i = 0; i < kStringsInBlock; ++i)
            Text();
        reader >> endb;
    }
    void Numbers() {
        reader.GetBlock(wordRow);
        for (int i = 0; i < kNumbersOfEachKind; ++i) {
            Int();
            Float();
        }
        reader >> endb;
    }
    void Chain() {
        for (int i = 0; i < kChainDepth; ++i) {
            reader.GetBlock(wordNode);
            Int();
            Text();
        }
        for (int i = 0; i < kChainDepth; ++i)
            reader >> endb;
    }
    std::uint64_t Value() const { return sum.Value(); }

private:
    void Int() { sum.Integer(reader.GetInt()); }
    void Float() { sum.Real(reader.GetFloat()); }
    void Text() {
        text = reader.GetString();
        sum.Text(text);
    }

    eSDLReader& reader;
    eChecksum sum;
    std::string text;
};

// The checksum of everything up to the end of the scene's block.
inline std::uint64_t SumScene(eDocument document, eSDLReader& reader) {
    eSceneSum sum(reader);
    while (!reader.End())
        switch (document) {
        case eDocument::Records:
        case eDocument::Comments:
            sum.Record();
            break;
        case eDocument::Strings:
            sum.Strings();
            break;
        case eDocument::Numbers:
            sum.Numbers();
            break;
        case eDocument::Nested:
            sum.Chain();
            break;
        }
    return sum.Value();
}

} // namespace bench
