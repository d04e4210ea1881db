#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include <qzl_base/strings.h>
#include <qzl_io/detail/value_types.h>
#include <qzl_io/export.h>

// Buffered byte streams and the values on them.
//
//     IO::eMemoryStream stream;
//     stream << 42 << 0.5f << "a text";
//     stream.Reset();
//     const int number = stream.GetInt32();   // 42
//     const float half = stream.GetFloat();   // 0.5
//     const std::string text = stream.GetString();

namespace IO {

// Bits of a stream's flag word, which is also the open mode of file streams.
namespace StreamMode {
inline constexpr unsigned short Read = 0x0001;     // refills its buffer from its source
inline constexpr unsigned short Write = 0x0002;    // flushes before every move of the position
inline constexpr unsigned short Create = 0x0004;   // file streams, with Write: create the file or cut it to length 0
inline constexpr unsigned short Errors = 0x0200;   // errors are reported; without it they only set Bad
inline constexpr unsigned short Failed = 0x2000;   // could not be opened
inline constexpr unsigned short Modified = 0x4000; // the buffer holds bytes that have not been flushed
inline constexpr unsigned short Bad = 0x8000;      // an operation went beyond the data; nothing in eStream clears it
} // namespace StreamMode

enum class eSeekDir : int {
    Begin = 0,   // from the start
    Current = 1, // added to the position; two's complement for a backward move
    End = 2      // back from the end of the data
};

// Parts of the implementation.
struct eStreamInline;
struct eStreamMeans;
class eStreamOperation;
class eStreamSteps;
class eHookRun;

// A sequence of bytes with a position, seen through a buffer. The class owns no storage: memory, buffer and file
// streams bring theirs and override the five hooks Trunc, Flush, Overflow, Underflow and Skip.
//
// Values are stored little-endian and without padding; nothing marks their type. No operation ever touches memory
// outside the buffer. A stream is used by one thread at a time.
//
// An error sets Bad and, if Errors is set, is reported by xError::Error with a fixed message; errors that are reported
// whether or not Errors is set are marked as such. The application's handler may return or throw. The stream is the
// same after either, since an operation makes its reports at its end, when the bytes are stored, the position is moved
// and the target of >> is assigned. If a report throws, the result of a Get function is lost, and the position is after
// its bytes. Exceptions from Overflow and Underflow of a derived class are held back in the same way. (A list is
// written text by text; a hook that is called from outside an operation reports at once.)
class QZL_IO_API eStream {
public:
    virtual ~eStream(); // releases nothing: the buffer belongs to the subclass

    // --- Hooks: operations call them, and so may anyone else. A subclass that overrides a hook usually also calls that
    // of eStream, which does only what is stated here. ---

    // Ends the data at the current position. Called by Clear. Before the start of the stream nothing changes, Bad is
    // set and "Attempt to write beyond the stream!" is reported.
    virtual void Trunc();
    // Writes the bytes from the first byte of the buffer to the position to the stream's storage, which is left to
    // subclasses, and clears Modified. Called if Modified is set before the buffer is refilled; and, if Write or
    // Modified is set, before Seek, Reset, Clear and Skip move the position away from any place but the first byte of
    // the buffer.
    virtual void Flush();
    // Called when a value does not fit into the buffer or ends exactly at its end, when Write finds no room, and when
    // the position has moved to a place outside the buffer. Flushes if Modified; then refills (Underflow) with Read,
    // and otherwise only makes the current position the first byte of the buffer (PlaceBuffer).
    virtual void Overflow();
    // Refills: makes the current position the first byte of the buffer and fills the buffer from the stream's storage,
    // which is left to subclasses. Called by Overflow, and when Read or CopyTo has used up the buffer. A position
    // beyond the data sets Bad and is reported as "Invalid read location!".
    virtual void Underflow();
    // Moves the position forward by n bytes (backward by the two's complement), and flushes first. Called by CopyTo. A
    // position beyond the data sets Bad and is reported as "Invalid seek location!".
    virtual eStream& Skip(unsigned long long n);

protected:
    // The state as text, "(off:%d, ptr:%d, end:%d, eos:%d, buff:%d)"; a subclass puts its name in front.
    virtual std::string Dump() const;

public:
    // --- State ---

    // The first byte of the buffer, which for streams in memory is the first byte of the stream. Null if there is no
    // buffer.
    unsigned char* Buffer() const noexcept;
    unsigned long long Position() const noexcept; // in bytes from the start of the stream
    unsigned long long Size() const noexcept;     // of the data, in bytes
    // True if no data remain, or the stream is Failed or Bad.
    bool Eos() const noexcept;
    // True if any flag is set and Failed is not.
    bool IsOpen() const noexcept;

    void Enable(unsigned short bits) noexcept;         // sets all of the bits
    void Disable(unsigned short bits) noexcept;        // clears all of the bits
    bool Enabled(unsigned short bits) const noexcept;  // any of the bits is set
    bool Disabled(unsigned short bits) const noexcept; // none of the bits is set

    // --- Bytes ---

    // Reads n bytes. If fewer remain, the target gets these, the position moves to the end of the data, Bad is set and
    // "Attempt to read beyond the stream!" is reported. n = 0 does nothing.
    eStream& Read(void* target, unsigned long long n);
    // Appends to the text the bytes that are already in the buffer, at most n, and moves the position past them.
    // Returns their number, 0 if the buffer has yet to be filled; reports nothing.
    unsigned long long AppendTo(std::string* text, unsigned long long n);
    // Writes n bytes, and extends the data if the position passes their end. Bytes without room are dropped, Bad is set
    // and one report is made ("Attempt to write beyond the stream!"). n = 0 does nothing. The source may be a part of
    // the stream's own buffer.
    eStream& Write(const void* source, unsigned long long n);
    // Writes n bytes like Write, from a block outside the stream that nobody will read again: its content is undefined
    // afterwards. While a file takes the bytes, which the system caches in memory, the block's memory is returned to
    // the system bit by bit. The block itself remains the caller's.
    eStream& WriteReleasing(void* block, unsigned long long n);

    // Moves the position, and flushes first if the stream writes. A position beyond the data sets Bad and is reported
    // as "Invalid seek location!"; the end of the data is a legal position. Positions are compared as signed numbers:
    // one that is more than 2^63 beyond the data is before the start, however it was reached. There nothing is touched:
    // reading and writing set Bad and are reported as beyond the stream.
    eStream& Seek(unsigned long long position, eSeekDir dir);
    // Moves the position to 0, like Seek.
    eStream& Reset();
    // Moves the position to 0, like Seek, and ends the data there.
    eStream& Clear();

    // Copies n bytes (0: all that remain) from this stream's position to the target's, and moves both; fewer if the
    // source ends earlier, which is not reported. Bytes without room are an error of the target, as in Write. Returns
    // this stream.
    eStream& CopyTo(eStream& target, unsigned long long n);
    // CopyTo from the source to this stream. Returns this stream.
    eStream& CopyFrom(eStream& source, unsigned long long n);

    // --- Writing values. The position moves past the value, and the data grow if it passes their end. If there is no
    // room for a value, its last bytes are dropped and the position moves nevertheless; the stream's Overflow decides
    // whether that is reported. ---

    eStream& operator<<(bool value); // one byte, 0 or 1
    eStream& operator<<(char value);
    eStream& operator<<(unsigned char value);
    eStream& operator<<(short value);
    eStream& operator<<(unsigned short value);
    eStream& operator<<(int value);
    eStream& operator<<(unsigned int value);
    eStream& operator<<(long long value);
    eStream& operator<<(unsigned long long value);
    eStream& operator<<(float value);  // the bits of an IEEE-754 binary32
    eStream& operator<<(double value); // the bits of an IEEE-754 binary64
    template <eLongOf64Bits T>
    eStream& operator<<(const T& value);

    // Does not compile: character and integer types that would be written as an int (signed char, wchar_t, ...),
    // functions, and pointers that would be written as a bool.
    template <eNotAValue T>
    eStream& operator<<(T) = delete;
    eStream& operator<<(std::nullptr_t) = delete;

    // Writes a text: its length as one byte, or from 255 up as the byte 255 and three bytes, then the characters up to
    // the first NUL. A null pointer is the empty text.
    eStream& operator<<(const char* text);
    eStream& operator<<(const std::string& text);
    // The length counts UTF-16 units, each of two bytes; NUL units are written like others.
    eStream& operator<<(const std::wstring& text);
    // Writes the number of texts as 8 bytes, then each text.
    eStream& operator<<(const eStrings& texts);

    // Writes the low n bytes of a value, lowest first, for n from 1 to 4; any other n writes nothing.
    eStream& Bytes(int n, unsigned int value);

    // --- Reading values. The position moves past the value. Any byte but 0 is a true bool. Fixed-width values do not
    // test where the data end: past the end they are what the buffer contains, and zero for bytes outside the buffer.
    // ---

    eStream& operator>>(bool& value);
    eStream& operator>>(char& value);
    eStream& operator>>(unsigned char& value);
    eStream& operator>>(short& value);
    eStream& operator>>(unsigned short& value);
    eStream& operator>>(int& value);
    eStream& operator>>(unsigned int& value);
    eStream& operator>>(long long& value);
    eStream& operator>>(unsigned long long& value);
    eStream& operator>>(float& value);
    eStream& operator>>(double& value);
    template <eLongOf64Bits T>
    eStream& operator>>(T& value);

    // Reads a text. Its length is the first byte or, if that is 255, the byte after it (of a long length only the low 8
    // bits are read). If the data end before the text does, the missing characters are NUL, Bad is set and "Attempt to
    // read beyond the stream!" is reported.
    eStream& operator>>(std::string& text);
    eStream& operator>>(std::wstring& text); // likewise, in UTF-16 units
    // Appends the texts of a list. Reading ends with the first text that finds the stream Bad or no byte left, which
    // sets Bad and is reported as a read beyond the stream.
    eStream& operator>>(eStrings& texts);

    bool GetBool();
    char GetChar();
    unsigned char GetUint8();
    short GetInt16();
    unsigned short GetUint16();
    int GetInt32();
    unsigned int GetUint32();
    long long GetInt64();
    unsigned long long GetUint64();
    float GetFloat();
    double GetDouble();
    unsigned int GetTbyte();      // three bytes, zero-extended
    unsigned int GetBytes(int n); // n bytes, zero-extended, for n from 1 to 4; otherwise 0, and nothing is read
    std::string GetString();      // like operator>>
    // Returns the characters up to the delimiter, which is consumed but not returned, or to the end of the data; none
    // if the stream is at its end. If a report throws, the line is between the positions before and after the call.
    std::string GetLine(char delimiter);

    // --- Peeking at values: like the Get functions, but the position does not move. ---

    bool Bool();
    char Char();
    unsigned char Uint8();
    short Int16();
    unsigned short Uint16();
    int Int32();
    unsigned int Uint32();
    long long Int64();
    unsigned long long Uint64();
    float Float();
    double Double();
    unsigned int Tbyte();
    unsigned int Bytes(int n);

protected:
    eStream() noexcept = default; // not open: no buffer, flags 0
    // The copy has the same state and uses the same bytes; the subclass decides who releases them.
    eStream(const eStream& other) noexcept;
    eStream& operator=(const eStream& other) noexcept;
    // The other stream is left not open, without a buffer.
    eStream(eStream&& other) noexcept;
    eStream& operator=(eStream&& other) noexcept;

    // --- For subclasses with values of their own ---
    //
    // Each function calls Overflow first if the request does not end before bufferEnd, and returns a pointer that is
    // valid for n bytes until the next operation. If the buffer has no room for the request even then, the pointer
    // leads to a separate block: for Look and Take it contains the bytes that exist, and zeros for the rest; what is
    // written to the block of Place is dropped. If the stream has no buffer or its position is before the start, Bad is
    // set, a read or write beyond the stream is reported, and the position does not move. If a report throws, Take has
    // moved the position, but Place has not, since its caller could not store the bytes.

    // The n bytes at the position, which does not move.
    unsigned char* Look(unsigned long long n);
    // The n bytes at the position, which moves past them.
    unsigned char* Take(unsigned long long n);
    // Room for n bytes at the position, which moves past them; sets Modified and extends the data.
    unsigned char* Place(unsigned long long n);

    // --- For subclasses with storage: they make it the buffer and set the flags when they open, override the hooks,
    // and release the storage in their destructor. ---

    // Makes a block the buffer, with data of that length (which may reach beyond the block) and the position at its
    // first byte. offset and flags do not change. A null block with a size stands for one that could not be allocated.
    // The block remains the subclass's.
    void UseBuffer(unsigned char* block, unsigned long long size, unsigned long long length) noexcept;
    // Makes the current position the first byte of the buffer; the bytes from there to bufferEnd move with it. A
    // position before the start or beyond the data is reported ("Stream.PlaceBuffer: " and Dump()), whether or not
    // Errors is set.
    void PlaceBuffer();
    // True if there is no buffer, or if the position or the whole buffer is before what the buffer can show.
    bool Blocked() const noexcept;
    // True if the position is before the start of the stream.
    bool BeforeStart() const noexcept;
    // bufferEnd - buffer or, while bufferEnd is null, its value before that.
    unsigned long long Capacity() const noexcept;
    // Sets bufferEnd to the capacity, or as the invariant below requires.
    void SetCapacity(unsigned long long size) noexcept;
    // Moves the position, even to a place outside the buffer, and keeps the invariant below.
    void MoveTo(unsigned char* place) noexcept;
    // Moves the end of the data to the position if it is before that.
    void RaiseEnd() noexcept;
    // Sets Bad and reports "Invalid read location!" if the position is beyond the data.
    void CheckReadLocation();
    // Sets Bad and, if Errors is set, reports; during an operation, at its end. Source and line identify the check.
    void Fail(const char* source, int line, const char* message);

    // A pointer n bytes further on, which may be outside every block of memory and is then only a number.
    static unsigned char* Shifted(unsigned char* from, unsigned long long n) noexcept;
    // to - from in bytes, wherever they point.
    static long long Distance(const unsigned char* from, const unsigned char* to) noexcept;

    // The buffer is a view of the stream's bytes from offset on. eos and ptr are in the buffer's coordinates and may be
    // outside it; they are then numbers, and are compared and moved as such (Distance, Shifted).
    //
    // Invariant: ptr + n < bufferEnd, as numbers, means that n bytes at ptr are in the buffer and may be touched, for
    // the length n of any value. So one comparison is enough for a value. It fails
    //   - near or at the end of the buffer, and past it,
    //   - while the stream is Blocked (no buffer, ptr before it, or the buffer before the start of the stream):
    //     bufferEnd is then null between operations; Capacity() and Dump() still give the capacity.
    // A hook that an operation calls finds bufferEnd one past the last byte of the buffer wherever ptr is, and may set
    // all fields. Before it reads or writes values of its own stream, it makes sure that the stream is not Blocked.
    unsigned char* buffer = nullptr;
    unsigned char* bufferEnd = nullptr; // one past the buffer's last byte
    unsigned long long bufferSize = 0;  // capacity with which the buffer was created
    unsigned long long offset = 0;      // position of the buffer's first byte
    unsigned char* eos = nullptr;       // one past the last byte of data
    unsigned char* ptr = nullptr;       // the current position
    unsigned short flags = 0;           // bits of StreamMode

private:
    friend eStreamInline;
    friend eStreamSteps;
    friend eStreamOperation;
    friend eHookRun;
    friend class eFileStreamBase;
    friend class eMemoryStream;

    static unsigned long long Address(const unsigned char* place) noexcept;
    long long Remaining() const noexcept;
    unsigned long long DataInBuffer() const noexcept; // what can be read without a hook
    unsigned long long RoomInBuffer() const noexcept; // what can be written without a hook
    bool OutsideBuffer() const noexcept;
    void RunHook(void (eStream::*hook)());
    void FlushIfModified();
    void FlushBeforeMove();
    eStream& FinishMove();
    void Refill();
    void Report(const char* source, int line, const std::string& message);

    const eStreamMeans* means = nullptr;    // what the class can do besides its hooks
    unsigned long long lastCapacity = 0;    // the capacity while bufferEnd is null
    bool hookRuns = false;                  // bufferEnd is then not null
    eStreamOperation* underWay = nullptr;   // the innermost operation that has begun and not ended
    std::unique_ptr<unsigned char[]> apart; // the block that replaces bytes outside the buffer
};

} // namespace IO

#include <qzl_io/detail/stream_inline.h>
