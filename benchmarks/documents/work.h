// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string>

#include "../support/documents.h"
#include "../support/suite.h"

namespace bench {

// Works on documents of records: the load returns the number of records, the others a sum of their counts, so that each
// contender must have found the same.

inline std::string LoadWork(unsigned kilobytes) {
    return "load to be edited: records, " + SizeName(kilobytes);
}

inline std::string FindWork(unsigned kilobytes) {
    return "find one in a thousand by index: records, " + SizeName(kilobytes);
}

inline std::string SumWork(unsigned kilobytes) {
    return "look at every record: records, " + SizeName(kilobytes);
}

inline std::string SetWork(unsigned kilobytes) {
    return "load, set one value in a hundred, write the text: records, " + SizeName(kilobytes);
}

inline std::string FormatWork(unsigned kilobytes) {
    return "load and write with a fixed layout: records, " + SizeName(kilobytes);
}

constexpr std::size_t kFoundEvery = 1000;
constexpr std::size_t kSetEvery = 100;

inline double Each(std::size_t items, std::size_t every) {
    return static_cast<double>((items + every - 1) / every);
}

} // namespace bench
