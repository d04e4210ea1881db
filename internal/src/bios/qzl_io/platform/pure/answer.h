// SPDX-License-Identifier: BSL-1.0
#pragma once

namespace IO::Platform {

// The system's answer to a request. Busy: not now, but possibly a moment later. Full: the folder is not empty, or not
// yet, since what was removed from it may disappear a moment later. A system without such delays answers neither Busy
// nor Full.
enum class eAnswer : unsigned char { Done, Refused, Busy, Full };

// The answer to a request in a folder that failed with an error of Windows. `forGood`: access is denied for a lasting
// reason, such as the read-only attribute.
//
// | error | the system says   | answer                       | as long as                                       |
// |-------|-------------------|------------------------------|--------------------------------------------------|
// | 5     | access denied     | Busy, or Refused for good    | a deletion of that name is not complete          |
// | 32    | sharing violation | Busy                         | a virus scanner or an indexer has the file open  |
// | 33    | lock violation    | Busy                         | one of them has a part of it locked              |
// | 145   | not empty         | Full                         | deletions in it are not complete                 |
// | 303   | deletion pending  | Busy                         | a deletion of that name is not complete          |
// | other |                   | Refused                      |                                                  |
constexpr eAnswer AnswerTo(unsigned long error, bool forGood) {
    constexpr unsigned long kAccessDenied = 5;
    constexpr unsigned long kSharingViolation = 32;
    constexpr unsigned long kLockViolation = 33;
    constexpr unsigned long kNotEmpty = 145;
    constexpr unsigned long kDeletionPending = 303;
    switch (error) {
    case kAccessDenied:
        return forGood ? eAnswer::Refused : eAnswer::Busy;
    case kSharingViolation:
    case kLockViolation:
    case kDeletionPending:
        return eAnswer::Busy;
    case kNotEmpty:
        return eAnswer::Full;
    default:
        return eAnswer::Refused;
    }
}

} // namespace IO::Platform
