// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <qzl_io/export.h>
#include <qzl_io/streams/stream.h>

namespace IO {

// Marks a stream's position, and returns to it unless what is read from there is committed: for records of which only
// the beginning may have arrived, or which may turn out to be of another kind.
//
//     IO::eReadTransaction record(stream);
//     stream >> name >> count >> value;
//     if (!record.Commit())
//         return false;   // a part is missing; the position is where the record begins
//
// The stream must exist as long as the transaction, and must not be opened or closed meanwhile. Transactions on one
// stream may be nested: an inner one that is committed is undone with the outer one.
class QZL_IO_API eReadTransaction {
public:
    explicit eReadTransaction(eStream& of) noexcept; // marks the position
    ~eReadTransaction();                             // rolls back, unless Commit or RollBack has been called
    eReadTransaction(const eReadTransaction&) = delete;
    eReadTransaction& operator=(const eReadTransaction&) = delete;

    // Ends the transaction. If the position is within the data and the stream is not Bad, all that was read was there:
    // the position stays, and the result is true. Otherwise rolls back and returns false.
    bool Commit();
    // Ends the transaction and moves the position back to the mark. Bad is cleared if it was clear there, unless
    // Failure tells that bytes could not be read. Flushes first if Modified is set: what was written stays written.
    void RollBack();

private:
    eStream* stream; // null after the end
    unsigned long long mark;
    bool wasBad;
};

} // namespace IO
