// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

namespace IO {

// The identity of a file or folder, by which it is recognised whatever name leads to it.
struct eFileId {
    unsigned long long volume = 0;
    unsigned long long high = 0; // of a number of 128 bits; 0 if the file system has 64
    unsigned long long low = 0;
    std::wstring finalName; // only for a folder without a number; empty if the system does not tell it

    // Some volumes do not number their files: network drives of remote sessions, file systems of programs. They return
    // 0, or all ones where a number does not fit.
    bool IsNumbered() const {
        constexpr auto kNone = ~0ull;
        return volume != 0 && (low != 0 || high != 0) && (low != kNone || (high != 0 && high != kNone));
    }
};

inline bool HaveOneNumber(const eFileId& one, const eFileId& other) {
    return one.volume == other.volume && one.high == other.high && one.low == other.low;
}

// True if the two are known to be one folder, by their numbers or, if one has none, by their final names. An unknown
// identity never equals another.
inline bool AreOneFolder(const eFileId& one, const eFileId& other) {
    if (one.IsNumbered() && other.IsNumbered())
        return HaveOneNumber(one, other);
    return !one.finalName.empty() && one.finalName == other.finalName;
}

// False if the two are known to be different files. Their names do not decide this, since a file may have several.
inline bool MayBeOneFile(const eFileId& one, const eFileId& other) {
    return !one.IsNumbered() || !other.IsNumbered() || HaveOneNumber(one, other);
}

} // namespace IO
