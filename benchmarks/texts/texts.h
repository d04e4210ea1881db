// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "../support/suite.h"

namespace bench {

// The texts that a pass writes, again and again.
struct eTexts {
    static constexpr size_t kRounds = 4;

    // The length of all texts. Mixed texts have none; their lengths come in an order that is hard to predict.
    double length = 0;
    bool isMixed = false;
    std::vector<std::string> texts;

    size_t Count() const { return kRounds * texts.size(); }
    size_t Bytes() const; // on a stream, where each length takes one byte
};

// The texts of each length from 0 to 40, then mixed ones; in a small run only the mixed ones. Created once.
const std::vector<eTexts>& AllTexts(const eOptions& options);

// A checksum of the bytes that every contender has to produce.
std::uint64_t SumOfTexts(const eTexts& texts);

// Where texts are written: after all data, or over other data.
enum class ePlace { AtEnd, Among };

// Adds a row to the work over lengths or, for mixed texts, to the work about them. The row lacks what depends on the
// texts alone: size, count and bytes.
void AddRow(eSuite& suite, ePlace place, const eTexts& texts, eRow row);

} // namespace bench
