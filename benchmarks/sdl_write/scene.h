// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <span>
#include <string>
#include <vector>

#include "../support/documents.h"
#include "../support/suite.h"

namespace bench {

using eRecords = std::span<const eRecord>;

// The first `count` records of every document of records, ready to be written.
inline eRecords Records(size_t count) {
    static std::vector<eRecord> records;
    while (records.size() < count)
        records.push_back(Record(records.size()));
    return {records.data(), count};
}

inline std::string WriteWork(unsigned kilobytes) {
    return "write to memory: records, " + SizeName(kilobytes);
}

} // namespace bench
