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
inline constexpr unsigned short Read = 0x0001;     // refills its buffer from what it stands on
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

// A sequence of bytes with a position, seen through a buffer. It owns no storage: memory, buffer and file streams bring
// theirs and override the five hooks Trunc, Flush, Overflow, Underflow and Skip.
//
// Values are stored little-endian and without padding; nothing marks their type. No operation ever touches memory
// outside the buffer. A stream is used by one thread at a time.
//
// An error sets Bad and, while Errors is set, is reported by xError::Error with a fixed message; what is reported
// whether Errors is set or not says so. The application's handler may return or throw; the stream is the same after
// either, for an operation makes its reports at its end: the bytes are stored, the position is moved, the target of >>
// is assigned. What a Get function would have returned is lost when the report throws, but its bytes lie before the
// position. What Overflow and Underflow of a derived class throw waits likewise. (A list is written text by text; a
// hook that is called from outside reports at once.)
class QZL_IO_API eStream {
public:
    virtual ~eStream(); // releases nothing: the buffer is the subclass's

    // --- Hooks: the operations below call them, and so may anybody. A subclass that overrides one usually calls
    // eStream's, which does no more than is said here. ---

    // Ends the data at the current position; called by Clear. Before the start of the stream nothing is changed, Bad is
    // set and "Attempt to write beyond the stream!" is reported.
    virtual void Trunc();
    // Hands the bytes from the buffer's first to the position on to what the stream stands on, which is left to
    // subclasses, and clears Modified. Called before the buffer is refilled, if Modified, and before Seek, Reset, Clear
    // and Skip move the position away from any place but the buffer's first byte, if Write or Modified is set.
    virtual void Flush();
    // Called when a value does not fit into the buffer or ends exactly at its end, when Write finds no room, and when
    // the position was moved to a place outside the buffer. Flushes if Modified; then with Read refills (Underflow),
    // else only makes the current position the buffer's first byte (PlaceBuffer).
    virtual void Overflow();
    // Refills: makes the current position the buffer's first byte and fills the buffer from what the stream stands on,
    // which is left to subclasses. Called by Overflow, and when Read or CopyTo has used the buffer up. A position
    // beyond the data sets Bad and is reported as "Invalid read location!".
    virtual void Underflow();
    // Moves the position forward by n bytes (backward by the two's complement), flushing first; called by CopyTo. A
    // position beyond the data sets Bad and is reported as "Invalid seek location!".
    virtual eStream& Skip(unsigned long long n);

protected:
    // The state as text, "(off:%d, ptr:%d, end:%d, eos:%d, buff:%d)"; a subclass puts its name before it.
    virtual std::string Dump() const;

public:
    // --- State ---

    // The buffer's first byte, which is the stream's first byte for streams in memory. Null if there is no buffer.
    unsigned char* Buffer() const noexcept;
    unsigned long long Position() const noexcept; // in bytes from the start of the stream
    unsigned long long Size() const noexcept;     // of the data, in bytes
    // No data remain, or the stream is Failed or Bad.
    bool Eos() const noexcept;
    // Some flag is set, and Failed is not.
    bool IsOpen() const noexcept;

    void Enable(unsigned short bits) noexcept;         // sets all of the bits
    void Disable(unsigned short bits) noexcept;        // clears all of the bits
    bool Enabled(unsigned short bits) const noexcept;  // any of the bits is set
    bool Disabled(unsigned short bits) const noexcept; // none of the bits is set

    // --- Bytes ---

    // Reads n bytes. When fewer remain, the target gets those, the position is the end of the data, Bad is set and
    // "Attempt to read beyond the stream!" is reported. n = 0 does nothing.
    eStream& Read(void* target, unsigned long long n);
    // Reads the bytes that are in the buffer already, n at most, and appends them to the text. Returns how many those
    // were, 0 if the buffer has yet to be filled; nothing is reported.
    unsigned long long AppendTo(std::string* text, unsigned long long n);
    // Writes n bytes and extends the data when the position passes their end. What finds no room is dropped, Bad is set
    // and one report is made ("Attempt to write beyond the stream!"). n = 0 does nothing. The source may be a part of
    // the stream's own buffer.
    eStream& Write(const void* source, unsigned long long n);
    // Writes n bytes as Write does, from a block outside the stream that nobody is going to read again: what the block
    // holds is undefined then. While a file takes the bytes, which the system caches in memory, it gives that memory
    // back to the system bit by bit. The block itself stays the caller's.
    eStream& WriteReleasing(void* block, unsigned long long n);

    // Moves the position, flushing first if the stream writes. A position beyond the data sets Bad and is reported as
    // "Invalid seek location!"; the end of the data is a legal position. Positions are compared as signed numbers: one
    // that is more than 2^63 beyond the data lies before the start, whichever way it was reached. There nothing is
    // touched: reading and writing set Bad and are reported as beyond the stream.
    eStream& Seek(unsigned long long position, eSeekDir dir);
    // To position 0, as Seek.
    eStream& Reset();
    // To position 0, as Seek, and ends the data there.
    eStream& Clear();

    // Copies n bytes (0: all that remain) from this stream's position to the target's, and moves both; fewer when the
    // source ends before that, which is not reported. What finds no room is the target's error, as for Write. Returns
    // this stream.
    eStream& CopyTo(eStream& target, unsigned long long n);
    // CopyTo seen from the target, which is this stream and is returned.
    eStream& CopyFrom(eStream& source, unsigned long long n);

    // --- Values, written. The position moves on; the data grow when it passes their end. Where there is no room for a
    // value, its last bytes are dropped and the position moves all the same; whether that is reported is up to the
    // stream's Overflow. ---

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

    // Does not compile: a character type or integer that would be written as an int (signed char, wchar_t, ...), a
    // function or a pointer that would be written as a bool.
    template <eNotAValue T>
    eStream& operator<<(T) = delete;
    eStream& operator<<(std::nullptr_t) = delete;

    // A text: its length as one byte, or from 255 up as the byte 255 and three bytes, then the characters up to the
    // first NUL. A null pointer is the empty text.
    eStream& operator<<(const char* text);
    eStream& operator<<(const std::string& text);
    // The length counts UTF-16 units, each of two bytes; NUL units are written like others.
    eStream& operator<<(const std::wstring& text);
    // The count as 8 bytes, then each text.
    eStream& operator<<(const eStrings& texts);

    // The low n bytes of a value, lowest first, for n from 1 to 4; any other n writes nothing.
    eStream& Bytes(int n, unsigned int value);

    // --- Values, read. The position moves on. Any byte but 0 is a true bool. Fixed-width values do not look where the
    // data end: behind it they give what the buffer holds, and zero for bytes outside the buffer. ---

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

    // A text. Its length is the first byte, or where that is 255 the byte behind it (of a long length only the low 8
    // bits are read). When the data end before the text does, the missing characters are NUL, Bad is set and "Attempt
    // to read beyond the stream!" is reported.
    eStream& operator>>(std::string& text);
    eStream& operator>>(std::wstring& text); // likewise, of UTF-16 units
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
    unsigned int GetBytes(int n); // n bytes, zero-extended, for n from 1 to 4; else 0, and nothing is read
    std::string GetString();      // as operator>>
    // The characters up to the delimiter, which is consumed and left out, or to the end of the data; none where the
    // stream is at its end. The line of a report that throws lies between the position before the call and the one
    // after it.
    std::string GetLine(char delimiter);

    // --- Values, looked at: as the Get function, but the position stays. ---

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
    // The copy has the same state and addresses the same bytes; who releases them is for the subclass to settle.
    eStream(const eStream& other) noexcept;
    eStream& operator=(const eStream& other) noexcept;
    // The other stream is left not open, without a buffer.
    eStream(eStream&& other) noexcept;
    eStream& operator=(eStream&& other) noexcept;

    // --- For subclasses that bring values of their own ---
    //
    // Each calls Overflow first when the request does not end before bufferEnd, and gives a pointer that is good for n
    // bytes until the next operation. Where the buffer has no room for the request even then, the pointer leads to a
    // block apart: Look and Take put the bytes into it that there are and zeros for the rest, and what is written to
    // that of Place is dropped. Where the stream has no buffer or stands before its start, Bad is set, a read or write
    // beyond the stream is reported, and the position stays. A report that throws finds the position moved by Take, but
    // not by Place, as nobody is going to store the bytes.

    // The n bytes at the position, which stays.
    unsigned char* Look(unsigned long long n);
    // The n bytes at the position, which moves behind them.
    unsigned char* Take(unsigned long long n);
    // Room for n bytes at the position, which moves behind them; sets Modified and extends the data.
    unsigned char* Place(unsigned long long n);

    // --- For subclasses that bring storage: they take it into use and set the flags when they open, override the
    // hooks, and release it in their destructor. ---

    // Takes a block into use as the buffer: data of that length (which may reach beyond the block), position at its
    // first byte. offset and flags stay. A null block with a size stands for one that could not be allocated. The block
    // stays the subclass's.
    void UseBuffer(unsigned char* block, unsigned long long size, unsigned long long length) noexcept;
    // Makes the current position the buffer's first byte; the bytes from there to bufferEnd move with it. A position
    // before the start or beyond the data is reported ("Stream.PlaceBuffer: " and Dump()), Errors set or not.
    void PlaceBuffer();
    // There is no buffer, or the position or the whole buffer lies before what the buffer can show.
    bool Blocked() const noexcept;
    // The position lies before the start of the stream.
    bool BeforeStart() const noexcept;
    // bufferEnd - buffer, or while bufferEnd is kept null what that was before.
    unsigned long long Capacity() const noexcept;
    // Sets bufferEnd to the capacity, or as the invariant below wants it.
    void SetCapacity(unsigned long long size) noexcept;
    // Moves the position, to a place outside the buffer too, and keeps the invariant below.
    void MoveTo(unsigned char* place) noexcept;
    // Data that end before the position end there.
    void RaiseEnd() noexcept;
    // A position beyond the data sets Bad and is reported as "Invalid read location!".
    void CheckReadLocation();
    // Sets Bad and, if Errors, reports; while an operation is under way, at its end. Source and line name the check.
    void Fail(const char* source, int line, const char* message);

    // A pointer n bytes on, which may lie outside every block of memory and is then only a number.
    static unsigned char* Shifted(unsigned char* from, unsigned long long n) noexcept;
    // to - from in bytes, whatever they point to.
    static long long Distance(const unsigned char* from, const unsigned char* to) noexcept;

    // The buffer is a view of the stream's bytes from offset on. eos and ptr are in the buffer's coordinates and may
    // lie outside it; they are then numbers, compared and moved as such (Distance, Shifted).
    //
    // Invariant: ptr + n < bufferEnd, as numbers, means that n bytes at ptr lie within the buffer and may be touched,
    // for the length n of any value. So one comparison is enough for a value. It fails
    //   - near or at the end of the buffer, and behind it,
    //   - while the stream is Blocked (no buffer, ptr before it, or the buffer before the start of the stream): there
    //     bufferEnd is kept null between operations. Capacity() and Dump() go on to tell the capacity.
    // A hook that an operation calls finds bufferEnd one past the last byte of the buffer wherever ptr is, and may set
    // all fields. Before it reads or writes values of its own stream it makes sure that the stream is not Blocked.
    unsigned char* buffer = nullptr;
    unsigned char* bufferEnd = nullptr; // one past the buffer's last byte
    unsigned long long bufferSize = 0;  // capacity with which the buffer was created
    unsigned long long offset = 0;      // position of the buffer's first byte
    unsigned char* eos = nullptr;       // one past the last byte of data
    unsigned char* ptr = nullptr;       // the current position
    unsigned short flags = 0;           // StreamMode

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
    unsigned long long RoomInBuffer() const noexcept; // what can be written without one
    bool OutsideBuffer() const noexcept;
    void RunHook(void (eStream::*hook)());
    void FlushIfModified();
    void FlushBeforeMove();
    eStream& FinishMove();
    void Refill();
    void Report(const char* source, int line, const std::string& message);

    const eStreamMeans* means = nullptr;    // what the class can do beside its hooks
    unsigned long long lastCapacity = 0;    // as it was set, for while bufferEnd is kept null
    bool hookRuns = false;                  // bufferEnd is not kept null
    eStreamOperation* underWay = nullptr;   // the innermost operation that has begun and not ended
    std::unique_ptr<unsigned char[]> apart; // the block that stands in for bytes outside the buffer
};

} // namespace IO

#include <qzl_io/detail/stream_inline.h>
