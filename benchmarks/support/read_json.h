// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <rapidjson/reader.h>

#include <cstdint>
#include <string>

#include "checksum.h"
#include "scene_words.h"

// Each source file has its own definitions, since RapidJSON is compiled in two ways.

namespace bench {
namespace {

// Copies every text, looks up every member name, and takes the numbers as they are.
class eJsonHandler : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, eJsonHandler> {
public:
    explicit eJsonHandler(const eSceneWords& known) : words(known) {}

    bool Default() { return true; }
    bool Int(int value) {
        sum.Integer(value);
        return true;
    }
    bool Uint(unsigned value) { return Int(static_cast<int>(value)); }
    bool Double(double value) {
        sum.Real(static_cast<float>(value));
        return true;
    }
    bool String(const char* characters, rapidjson::SizeType length, bool) {
        text.assign(characters, length);
        sum.Text(text);
        return true;
    }
    bool Key(const char* characters, rapidjson::SizeType length, bool) {
        text.assign(characters, length);
        found += static_cast<unsigned>(words.Find(text));
        return true;
    }

    std::uint64_t Value() const { return found == 0 ? 0 : sum.Value(); }

private:
    const eSceneWords& words;
    std::string text;
    eChecksum sum;
    std::uint64_t found = 0;
};

// The checksum of the values of a JSON source; 0 if it is malformed.
template <unsigned flags, class T>
std::uint64_t ReadJson(T& source) {
    static const eSceneWords words;
    eJsonHandler handler(words);
    rapidjson::Reader reader;
    return reader.Parse<flags>(source, handler) ? handler.Value() : 0;
}

template <unsigned flags = rapidjson::kParseDefaultFlags>
std::uint64_t ReadJsonText(const char* text) {
    rapidjson::StringStream source(text);
    return ReadJson<flags>(source);
}

} // namespace
} // namespace bench
