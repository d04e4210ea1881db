// SPDX-License-Identifier: BSL-1.0
#include "texts.h"

#include <utility>

#include "../typed_values/values.h"

namespace bench {
namespace {

constexpr size_t kLongest = 40;
constexpr size_t kTextsOfOneLength = 128;
constexpr size_t kMixedTexts = 1024;
constexpr int kRepetitions = 5; // of each length; there are many lengths

std::string MakeText(size_t length, unsigned number) {
    std::string text;
    while (text.size() < length)
        text += static_cast<char>('a' + (number += 7) % 26);
    return text;
}

eTexts OfLength(size_t length) {
    eTexts made;
    made.length = static_cast<double>(length);
    for (unsigned i = 0; i < kTextsOfOneLength; ++i)
        made.texts.push_back(MakeText(length, i));
    return made;
}

eTexts Mixed() {
    eTexts made;
    made.isMixed = true;
    unsigned state = 12345;
    for (unsigned i = 0; i < kMixedTexts; ++i) {
        state = state * 1664525 + 1013904223;
        made.texts.push_back(MakeText((state >> 8) % (kLongest + 1), i));
    }
    return made;
}

} // namespace

size_t eTexts::Bytes() const {
    size_t bytes = 0;
    for (const std::string& text : texts)
        bytes += 1 + text.size();
    return kRounds * bytes;
}

const std::vector<eTexts>& AllTexts(const eOptions& options) {
    static const auto made = [&] {
        std::vector<eTexts> all;
        for (size_t length = 0; length <= kLongest && !options.small; ++length)
            all.push_back(OfLength(length));
        all.push_back(Mixed());
        return all;
    }();
    return made;
}

std::uint64_t SumOfTexts(const eTexts& texts) {
    std::string bytes;
    for (size_t round = 0; round < eTexts::kRounds; ++round)
        for (const std::string& text : texts.texts) {
            bytes += static_cast<char>(text.size());
            bytes += text;
        }
    return SumOfBytes(bytes);
}

void AddRow(eSuite& suite, ePlace place, const eTexts& texts, eRow row) {
    const std::string where = place == ePlace::AtEnd ? " appended" : " overwriting among the data";
    row.bytes = texts.Bytes();
    row.counted = texts.isMixed;
    row.size = texts.length;
    row.repetitions = texts.isMixed ? 0 : kRepetitions;
    const auto values = static_cast<double>(texts.Count());
    if (texts.isMixed)
        suite.Add("texts of mixed lengths, 0 to 40 characters," + where, values, std::move(row), "text");
    else
        suite.Add("texts of 0 to 40 characters," + where, values, std::move(row), "text", "characters");
}

} // namespace bench
