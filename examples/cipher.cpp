// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>

#include <qzl_io/sdl.h>

// A document that is written and read through a cipher. This one keeps people from reading or changing a file by
// accident; it is no protection against anybody who wants to.

class eShuffle : public eSDLCipher {
public:
    explicit eShuffle(unsigned int itsKey) : key(itsKey) {}

    size_t GetEncodedSize(size_t inputSize) override { return inputSize; }
    // Twice gives the text again, as both directions use the same function. Source and target may be the same.
    size_t Encode(void* dst, size_t dstCapacity, const void* src, size_t srcSize) override {
        const auto* const from = static_cast<const unsigned char*>(src);
        auto* const to = static_cast<unsigned char*>(dst);
        const size_t size = std::min(dstCapacity, srcSize);
        unsigned int state = key;
        for (size_t at = 0; at < size; ++at) {
            state = state * 1664525U + 1013904223U;
            to[at] = static_cast<unsigned char>(from[at] ^ (state >> 24U));
        }
        return size;
    }

private:
    unsigned int key;
};

static eSDLKeyword* words;
static eSDLKeyword scoreWord(words, "score", 1);

int main() {
    const auto cipher = std::make_shared<eShuffle>(20260115U);
    {
        eSDLWriter writer(eFileName("score.bin"), cipher);
        writer.PushKeywords(words);
        writer << block{scoreWord.id} << "level 3" << 1200 << endb << endl;
    }

    std::ifstream file("score.bin", std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    const bool hidden = bytes.find("score") == std::string::npos;

    eSDLReader reader(eFileName("score.bin"), "score", cipher);
    const std::string level = reader.GetString();
    const int score = reader.GetInt();
    reader.Finish();
    std::cout << level << ": " << score << " points, from " << bytes.size() << " bytes that nobody reads\n";
    return hidden && level == "level 3" && score == 1200 ? 0 : 1;
}
