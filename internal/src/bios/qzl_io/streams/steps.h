#pragma once

#include <string>

#include "streams/operation.h"

namespace IO {

struct eStreamDirect;

// The steps of which the operations of a stream consist that do not end within its buffer.
class eStreamSteps : public eStreamOperation {
public:
    using eStreamOperation::eStreamOperation;

    // --- Bytes ---

    // Make something readable or writable at the position by a refill or an overflow. False when there is nothing,
    // which has then been reported.
    bool MakeData();
    bool MakeRoom(unsigned long long n);
    // Read to the end of the data, or write while there is room, n bytes at most; less has then been reported, and
    // false is returned for less written.
    void ReadAll(void* target, unsigned long long n);
    bool WriteAll(const unsigned char* source, unsigned long long n);

    // Whether a copy from the stream goes on, after a refill; its end is not reported.
    static bool HasMoreToCopy(eStream& source);
    // Copies what goes past the source's buffer, and takes it off n. False when the target has no room, which has then
    // been reported.
    static bool CopyDirect(eStream& source, eStream& target, unsigned long long* n);

    // --- Values ---

    // Call Overflow for a value. False when nothing can be touched at the position even then, which has been reported.
    bool ReachToRead();
    bool ReachToWrite(unsigned long long n);

    // n bytes at the position; where the buffer does not hold them all, in a block apart.
    unsigned char* LookAt(unsigned long long n);
    unsigned char* Apart(unsigned long long n);
    // Moves the position behind a value of which a part may have been dropped.
    void PassWritten(unsigned long long n);

    // A value is the low bytes of bits.
    unsigned long long BitsHere(unsigned long long n) const noexcept;
    unsigned long long TakeBits(unsigned long long n);
    void PutBits(unsigned long long bits, unsigned long long n);

    void PutLength(unsigned long long length);
    // False when the data ended before the length or the text did, which has then been reported.
    bool GetLength(unsigned int* length);
    bool GetText(std::string* text);
    // Takes the bytes up to the delimiter, or to the byte that ends at the end of the buffer, which is left to
    // Overflow. True when the delimiter was there.
    static bool AppendUpTo(eStream& stream, char delimiter, std::string* line);

private:
    bool Reach(int line, const char* message);
    bool WritePieces(const unsigned char* source, unsigned long long n);
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
