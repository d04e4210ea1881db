// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include "streams/operation.h"

namespace IO {

struct eStreamDirect;

// The steps of operations that do not end within the stream's buffer.
class eStreamSteps : public eStreamOperation {
public:
    using eStreamOperation::eStreamOperation;

    // --- Bytes ---

    // Make something readable or writable at the position by a refill or an overflow. False, after a report, if there
    // is nothing.
    bool MakeData();
    bool MakeRoom(unsigned long long n);
    // Read to the end of the data, or write while there is room, at most n bytes. Fewer are reported, and the result is
    // false.
    bool ReadAll(void* target, unsigned long long n);
    // Reads n bytes, or none without a report.
    bool TryReadAll(void* target, unsigned long long n);
    bool WriteAll(const unsigned char* source, unsigned long long n);
    // Hands over a block that std::malloc made instead of writing its first n bytes. False if the stream does not take
    // blocks, or not now; nothing has then been changed.
    static bool HandOver(eStream& stream, void* block, unsigned long long n);

    // Whether a copy from the stream continues, after a refill; its end is not reported.
    static bool HasMoreToCopy(eStream& source);
    // Copies what bypasses the source's buffer, and subtracts it from n. False if the copy ends there: the source
    // cannot be read to its end, or, after a report, the target has no room.
    static bool CopyDirect(eStream& source, eStream& target, unsigned long long* n);

    // --- Values ---

    // Call Overflow for a value. False, after a report, if nothing can be touched at the position even then.
    bool ReachToRead();
    bool ReachToWrite(unsigned long long n);

    // The n bytes at the position; in a separate block if the buffer does not contain them all.
    unsigned char* LookAt(unsigned long long n);
    unsigned char* Apart(unsigned long long n);
    // Moves the position past a value of which a part may have been dropped.
    void PassWritten(unsigned long long n);

    // A value is the low bytes of `bits`. Put returns false, after a report, if nothing can be written.
    unsigned long long BitsHere(unsigned long long n) const noexcept;
    unsigned long long TakeBits(unsigned long long n);
    bool PutBits(unsigned long long bits, unsigned long long n);

    bool PutLength(unsigned long long length);
    // False, after a report, if the data ended before the length or the text did, or if a text exceeds the limit.
    bool GetLength(unsigned int* length);
    bool GetText(std::string* text);
    bool GetCharacters(std::string* text, unsigned int length);
    // Takes the bytes up to the delimiter, or to the byte at the end of the buffer, which is left to Overflow. True if
    // the delimiter was found. The line does not exceed the limit.
    static bool AppendUpTo(eStream& stream, char delimiter, std::string* line);

private:
    bool Reach(int line, const char* message);
    bool WritePieces(const unsigned char* source, unsigned long long n);
    bool TakesBytesPastBuffer() const;
    bool WritePastBuffer(const unsigned char* source, unsigned long long at, unsigned long long n);
    bool HoldsInBuffer(const unsigned char* place) const noexcept;

    static const eStreamDirect* Direct(const eStream& stream);
    static unsigned long long WholeBuffers(const eStream& stream, unsigned long long n) noexcept;
    static bool TakesWholeBuffers(const eStream& stream);
    static void PassWholeBuffers(eStream& stream, unsigned long long whole);
    unsigned long long ReadDirect(unsigned char* target, unsigned long long n);
    unsigned long long WriteDirect(const unsigned char* source, unsigned long long n);
    static unsigned long long CopyInSystem(eStream& source, eStream& target, unsigned long long n);
};

} // namespace IO
