#pragma once

namespace IO::Platform {

// What a system says to a wish. Busy: not now, but the same may be had a moment later. Full: the folder is not empty,
// or not yet, for what was removed from it may go a moment later. A system that knows no such moments says neither.
enum class eAnswer : unsigned char { Done, Refused, Busy, Full };

// What an error of Windows means to those who ask for a change in a folder. `forGood`: something that lasts explains
// why access is denied, as the read-only attribute does.
//
// | error | the system says   | answer                       | as long as                                       |
// |-------|-------------------|------------------------------|--------------------------------------------------|
// | 5     | access denied     | Busy, or Refused for good    | a deletion of that name is not through           |
// | 32    | sharing violation | Busy                         | a virus scanner or an indexer has the file open  |
// | 145   | not empty         | Full                         | deletions within are not through                 |
// | 303   | deletion pending  | Busy                         | the same as for 5                                |
// | other |                   | Refused                      |                                                  |
constexpr eAnswer AnswerTo(unsigned long error, bool forGood) {
    constexpr unsigned long kAccessDenied = 5, kSharingViolation = 32, kNotEmpty = 145, kDeletionPending = 303;
    switch (error) {
    case kAccessDenied:
        return forGood ? eAnswer::Refused : eAnswer::Busy;
    case kSharingViolation:
    case kDeletionPending:
        return eAnswer::Busy;
    case kNotEmpty:
        return eAnswer::Full;
    default:
        return eAnswer::Refused;
    }
}

} // namespace IO::Platform
