// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <concepts>
#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include <qzl_base/strings.h>
#include <qzl_io/detail/value_types.h>
#include <qzl_io/export.h>
#include <qzl_io/streams/failure.h>
#include <qzl_io/streams/limits.h>

// Buffered byte streams and the values on them.
//
//     #include <qzl_io/streams/stream_memory.h>
//
//     IO::eMemoryStream stream;
//     stream << 42 << 0.5f << "a text";
//     stream.Reset();
//     const int number = stream.GetInt32();   // 42
//     const float half = stream.GetFloat();   // 0.5
//     const std::string text = stream.GetString();

namespace IO {

// Bits of a stream's flag word, which is also the open mode of file streams. Memory and buffer streams start with Write
// and Errors, a file stream with the mode that Open gets. Read and Write are not permissions: the bytes in the buffer
// can be read and written with any flags. But a file stream without Write does not store what is written.
namespace StreamMode {
inline constexpr unsigned short Read = 0x0001;     // Overflow refills the buffer from the stream's storage
inline constexpr unsigned short Write = 0x0002;    // moves of the position flush, even if Modified is not set
inline constexpr unsigned short Create = 0x0004;   // file streams, with Write: the file is cut to length 0
inline constexpr unsigned short Errors = 0x0200;   // errors are reported; without it they only set Bad
inline constexpr unsigned short Failed = 0x2000;   // could not be opened
inline constexpr unsigned short Modified = 0x4000; // the buffer holds bytes that have not been flushed
inline constexpr unsigned short Bad = 0x8000;      // there has been an error
} // namespace StreamMode

// Where Seek(n, dir) moves the position.
enum class eSeekDir : int {
    Begin = 0,   // to n
    Current = 1, // to Position() + n; pass 0 - n to go back by n
    End = 2      // to Size() - n
};

// A sequence of bytes with a position, seen through a buffer. The class owns no storage: memory, buffer and file
// streams bring theirs and override the hooks.
//
// Values are stored little-endian and without padding; nothing marks their type (docs/binary-format.md). No operation
// touches memory outside the buffer. A stream and its copies, which may share its bytes, are used by one thread at a
// time.
//
// An error sets Bad and, if Errors is set, is reported by xError::Error with a fixed message. xError::SetErrorHandler
// (<qzl_base/error.h>) installs what receives reports; it may return, or throw, as it does by default. Bad stays set
// through Reset and Clear until the application calls Disable(Bad) or the flags are replaced, as by Open or assignment.
// It makes Eos() true, so that GetLine and >> of a list end at once; all else works as if it were clear. The context of
// a report describes the stream (Dump) and tells what Failure tells.
//
// An operation, which is one call of a function of eStream, makes its reports at its end, when the bytes are stored,
// the position is moved and the target of >> is assigned. So the stream is the same whether a report returns or throws;
// but the result of a Get function is then lost, and so are reports that would have followed. An exception from
// Overflow or Underflow is held back until after the reports; meanwhile the operation calls no more hooks and makes do
// with the buffer as it is. One from Trunc, Skip, or Flush before a move ends the operation. CopyTo, << of a list and
// an application's own functions are several operations: if one throws, the next ones are not carried out.
//
// Without a buffer, or with the position before the start of the stream, reading and writing are errors ("Attempt to
// read beyond the stream!", "Attempt to write beyond the stream!"): the position stays, and values are zero or empty.
class QZL_IO_API eStream {
public:
    virtual ~eStream(); // neither flushes nor releases anything: the subclass does

    // --- State ---

    // The first byte of the buffer, which for streams in memory is the first byte of the stream. Null if there is no
    // buffer. Valid until the next call of a function that is not const.
    unsigned char* Buffer() const noexcept;
    unsigned long long Position() const noexcept; // in bytes from the start of the stream; may exceed Size()
    unsigned long long Size() const noexcept;     // of the data, in bytes
    // The bytes of data from the position on; 0 beyond the data and before the start of the stream.
    unsigned long long Remaining() const noexcept;
    bool Eos() const noexcept; // the position is at or beyond the end of the data, or the stream is Failed or Bad
    // True if any flag is set and Failed is not, whether or not there is a buffer: so Enable makes it true for a stream
    // that was never opened, and it stays true after a file stream's Close.
    bool IsOpen() const noexcept;

    void Enable(unsigned short bits) noexcept;         // sets all of the bits
    void Disable(unsigned short bits) noexcept;        // clears all of the bits; with Bad, forgets the failure
    bool Enabled(unsigned short bits) const noexcept;  // any of the bits is set
    bool Disabled(unsigned short bits) const noexcept; // none of the bits is set

    // Why bytes did not arrive: the first time since the stream was opened, or since Disable(Bad), that the system
    // refused to open, read, write, truncate or close a file, that a file was shorter than when it was opened, or that
    // bytes that were written found no room. Says nothing if all has arrived. Bytes that still wait in the buffer have
    // not been refused: ask after Flush, or after Close. Reading beyond the data is an error, but no failure.
    eFailure Failure() const;

    // Limits what >> of a text or a list, GetString and GetLine read from now on. What exceeds a limit is an error
    // ("Attempt to read beyond the limit!"), and nothing more of it is read: a text is empty, and the position after
    // its length; a list ends with the last text that it admits, or without any if its count alone tells; a line ends,
    // and the position is after as many characters as the limit admits. Copies of the stream have the same limits.
    void SetLimits(const eStreamLimits& most) noexcept;
    const eStreamLimits& Limits() const noexcept { return readLimits; }

    // --- Bytes. Position() before and after a call tells how many were read, written or (in the target) copied. ---

    // Reads n bytes. If fewer remain (none beyond the data), only these are read, the rest of the target does not
    // change, and it is an error ("Attempt to read beyond the stream!"). Fewer are read, too, and Bad is set without a
    // report, if the system refuses the rest. n = 0 does nothing.
    eStream& Read(void* target, unsigned long long n);
    eStream& Read(std::span<std::byte> target) { return Read(target.data(), target.size()); }
    // Appends to the text the data that are already in the buffer, at most n bytes, and moves the position past them.
    // Returns their number; reports nothing. If it is 0, no data remain, or Read has to fill the buffer first.
    unsigned long long AppendTo(std::string* text, unsigned long long n);
    // Writes n bytes, and extends the data if the position passes their end. If the buffer is full and Overflow makes
    // no room, the remaining bytes are dropped, the position stays after the last one that was stored, and it is one
    // error ("Attempt to write beyond the stream!"). n = 0 does nothing. The source may be in the stream's own buffer.
    eStream& Write(const void* source, unsigned long long n);
    eStream& Write(std::span<const std::byte> source) { return Write(source.data(), source.size()); }
    // Writes n bytes like Write, from a block on the heap whose content is undefined afterwards: a file stream returns
    // the block's memory to the system, piece by piece, while it takes the bytes. The block remains the caller's, who
    // may fill it again and frees it as usual.
    eStream& WriteReleasing(void* block, unsigned long long n);

    // Moves the position; Flush says when it flushes first. The end of the data is a legal position. A position beyond
    // is an error ("Invalid seek location!"), but it is reached: if bytes are then written there, the data extend to
    // them, and the bytes between are undefined. Positions are numbers of 64 bits that wrap around, and one more than
    // 2^63 beyond the data is before the start, like that of Seek(11, End) with 10 bytes of data, 2^64 - 1. Moving
    // there is no error in itself, but Overflow may report it; Eos() is false.
    eStream& Seek(unsigned long long position, eSeekDir dir);
    eStream& Reset(); // moves the position to 0, like Seek
    eStream& Clear(); // moves the position to 0, like Seek, and ends the data there

    // Copies n bytes (0: all that remain) from this stream's position to that of the target, which is another stream,
    // and moves both. The end of the source is not an error (Bad is set if its Size() promised more than can be read).
    // Missing room is an error of the target, as in Write; the source may then have moved past bytes that were dropped.
    // If both share bytes or a file, bytes written may be the ones that are read next. Returns this stream.
    eStream& CopyTo(eStream& target, unsigned long long n);
    eStream& CopyFrom(eStream& source, unsigned long long n); // source.CopyTo(*this, n); returns this stream

    // --- Writing values. The position moves past the value, and the data grow if it passes their end. If there is no
    // room for a value, its last bytes are dropped, but counted by Position() and Size(), and Failure tells; whether
    // that is an error is up to Overflow (it is for a buffer stream). The characters of a text are written as by Write,
    // unless nothing can be written to the stream. ---

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
    eStream& operator<<(const T& value); // long, where it has 64 bits; cast one of 32 bits, which does not compile

    // Does not compile: character and integer types that would be written as an int (signed char, wchar_t, ...),
    // functions, and pointers that would be written as a bool. A plain enumeration is written as the integer that it
    // promotes to.
    template <eNotAValue T>
    eStream& operator<<(T) = delete;
    eStream& operator<<(std::nullptr_t) = delete;

    // Writes a text up to its first NUL: the length as one byte, or from 255 up as the byte 255 and the low 24 bits of
    // the length, lowest byte first; then the characters. A null pointer is the empty text. >> does not read back
    // texts of more than 255 characters.
    eStream& operator<<(const char* text);
    eStream& operator<<(const std::string& text);
    eStream& operator<<(const std::same_as<std::string_view> auto& text);
    eStream& operator<<(const std::same_as<std::u8string_view> auto& text);
    eStream& operator<<(const std::same_as<std::u8string> auto& text);
    // The length counts UTF-16 units, each of two bytes; NUL units are written like others. Where wchar_t has 32 bits,
    // characters beyond U+FFFF are two units (joined again by >>), and values beyond U+10FFFF become U+FFFD.
    eStream& operator<<(const std::wstring& text);
    // Writes the number of texts as 8 bytes, then each text.
    eStream& operator<<(const eStrings& texts);

    // Writes the low n bytes of a value, lowest first, for n from 1 to 4, otherwise nothing. (Bytes(n) peeks.)
    eStream& Bytes(int n, unsigned int value);

    // --- Reading values. The position moves past the value. Any byte but 0 is a true bool. Fixed-width values do not
    // test where the data end: past the end they are what the buffer contains, and zero for bytes outside the buffer.
    // That is no error in itself, though a buffer stream makes one at its last byte; Position() then exceeds Size().
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

    // Reads a value that may be missing. If the data end within it, returns false, and neither the position nor the
    // value changes; nothing is reported, even if the value ends at the last byte of a buffer stream. False, with Bad,
    // also if the system refuses to read bytes that should be there. For bool, char, unsigned char, and the integers
    // and floating-point numbers of 2, 4 and 8 bytes that >> reads.
    template <eFixedWidth T>
    bool TryGet(T& value);

    // Reads a text. Its length is the first byte (past the end of the data, too, what the buffer contains) or, if that
    // is 255, the first of the three bytes after it; the other two are skipped, so of a longer text only a part is
    // read. If the data end within the text, the missing characters are NUL, and it is an error ("Attempt to read
    // beyond the stream!").
    eStream& operator>>(std::string& text);
    eStream& operator>>(std::wstring& text); // likewise, in UTF-16 units
    eStream& operator>>(std::u8string& text);
    // Appends the texts of a list, in one operation. Ends after a text that is not complete, which is appended like any
    // other, and before a text if the stream is Bad or no byte remains, which is an error like that of a text.
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
    // Returns the characters up to the delimiter, which is consumed but not returned, or to the end of the data. Empty,
    // too, if Eos() was true before. If a report throws, the line is between the positions before and after the call.
    std::string GetLine(char delimiter);

    // --- Peeking at values: like the Get functions, but the position does not move. The buffer may be refilled, and
    // errors are possible, so these functions are not const. ---

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

    // --- Hooks: operations call them, and so may anyone else; they then report at once. A hook may call operations of
    // its own stream; their reports are made by the operation that called the hook. A subclass that overrides a hook
    // usually also calls that of eStream, which does only what is stated here. ---

    // Makes the position the end of the data, even if it is beyond them. Called by Clear. Before the start of the
    // stream nothing changes, and it is an error ("Attempt to write beyond the stream!").
    virtual void Trunc();
    // A subclass writes the bytes from the first byte of the buffer to the position to its storage, at offset, and then
    // calls eStream::Flush, which clears Modified. Called if Modified is set before the buffer is refilled; and, if
    // StreamMode::Write or Modified is set and the position is not at the first byte of the buffer, before Seek, Reset,
    // Clear and eStream::Skip move it.
    virtual void Flush();
    // Makes room and data at the position. Called when a value does not fit into the buffer or ends exactly at its end,
    // when Write finds no room, and when the position has moved out of the buffer. It does not learn how much is
    // wanted: Write and written values call it again as long as that makes more room, reads and peeks once. Position()
    // and Size() stay. eStream::Overflow flushes if Modified is set, which callers leave to it, and then calls
    // Underflow with StreamMode::Read and PlaceBuffer without.
    virtual void Overflow();
    // Refills the buffer. eStream::Underflow calls PlaceBuffer and CheckReadLocation; a subclass calls it first and
    // then reads its storage from offset on. If data are missing there, it ends the buffer before them (SetCapacity)
    // and calls Lose. Called by Overflow and, after a flush if Modified is set, when data remain but Read, >> of a text
    // or CopyTo have used up the buffer; these end if no data are at the position even then.
    virtual void Underflow();
    // Moves the position like Seek(n, Current). CopyTo calls it to move the source.
    virtual eStream& Skip(unsigned long long n);

protected:
    // The state as text, "(off:%d, ptr:%d, end:%d, eos:%d, buff:%d)", with ptr, end (of the buffer) and eos in bytes
    // from the first byte of the buffer, and buff for bufferSize; a subclass puts its name in front.
    virtual std::string Dump() const;

    eStream() noexcept = default; // not open: no buffer, flags 0
    // The copy has the same state, with a position of its own from now on, and uses the same bytes; the subclass
    // decides who releases them. Assignment neither flushes nor releases the old buffer.
    eStream(const eStream& other) noexcept;
    eStream& operator=(const eStream& other) noexcept;
    // The other stream is left not open, without a buffer.
    eStream(eStream&& other) noexcept;
    eStream& operator=(eStream&& other) noexcept;

    // --- For subclasses with values of their own. Each call is an operation: it calls Overflow first if the n bytes at
    // the position, data or not, do not end before bufferEnd, and returns a pointer that is valid for n bytes until the
    // next operation. If the buffer does not hold them all even then, the pointer leads to a separate block: for Look
    // and Take it contains the bytes that the buffer holds, and zeros for the rest; all that is written to the block of
    // Place is dropped. If a report throws, Take has moved the position, but Place has moved nothing and extended
    // nothing, since its caller could not store the bytes. ---

    unsigned char* Look(unsigned long long n); // the n bytes at the position, which does not move
    unsigned char* Take(unsigned long long n); // the n bytes at the position, which moves past them
    // Room for n bytes at the position, which moves past them; sets Modified and extends the data.
    unsigned char* Place(unsigned long long n);

    // --- For subclasses with storage: they make it the buffer and set the flags when they open, override the hooks,
    // and flush and release the storage in their destructor. ---

    // Makes a block of `size` bytes the buffer (sets buffer, bufferEnd, bufferSize), with the position at its first
    // byte and `length` bytes of data from there, which may be more than the size. offset and flags do not change. The
    // block remains the subclass's, which releases it when it is no longer the buffer. A null block with a size stands
    // for one that could not be allocated.
    void UseBuffer(unsigned char* block, unsigned long long size, unsigned long long length) noexcept;
    // Makes the position the first byte of the buffer; the bytes from there to bufferEnd are moved to the front. A
    // position before the start or beyond the data is reported ("Stream.PlaceBuffer: " and Dump()) even without
    // Errors, and does not set Bad.
    void PlaceBuffer();
    // True if there is no buffer, the position is before its first byte, or that is before the start of the stream.
    bool Blocked() const noexcept;
    bool BeforeStart() const noexcept;            // the position is before the start of the stream
    unsigned long long Capacity() const noexcept; // the length of the buffer, also while bufferEnd is null
    // Sets the length of the buffer, and so bufferEnd as stated below.
    void SetCapacity(unsigned long long size) noexcept;
    // Moves the position, even to a place outside the buffer, and sets bufferEnd as stated below.
    void MoveTo(unsigned char* place) noexcept;
    void RaiseEnd() noexcept; // moves the end of the data to the position if the end is before it
    void CheckReadLocation(); // a position beyond the data is an error ("Invalid read location!")
    // Makes an error: sets Bad and, if Errors is set, reports; during an operation, at its end. Source and line
    // identify the check; the source is a literal, the message is copied. An error that Overflow or Underflow makes, or
    // shows by setting Bad where it was clear, replaces that of the operation.
    void Fail(const char* source, int line, const char* message);
    // Makes it known that bytes did not arrive: sets Bad, and Failure tells it unless it tells something earlier.
    // `what` is a literal, a sentence without its full stop; the number is the system's, or 0. Reports nothing; for the
    // operation it is an error that the hook has made, like one of Fail.
    void Lose(const char* what, int number) noexcept;

    // A pointer n bytes further on, which may be outside every block of memory and is then only a number.
    static unsigned char* Shifted(unsigned char* from, unsigned long long n) noexcept;
    // to - from in bytes, wherever they point.
    static long long Distance(const unsigned char* from, const unsigned char* to) noexcept;

    // The buffer is a view of the stream's bytes from offset on. eos and ptr are in the buffer's coordinates and may be
    // outside it; they are then numbers, and are compared and moved as such (Distance, Shifted).
    //
    // bufferEnd is one past the last byte of the buffer, or null while the stream is Blocked. So for every n up to 256,
    // ptr + n < bufferEnd, as numbers, means that n bytes at ptr are in the buffer, which is all that a value tests.
    //
    // While a hook that an operation calls runs, bufferEnd is not null if there is a buffer. The hook may set all
    // fields, and the operation then sets bufferEnd as above; before the hook reads or writes values, it makes sure
    // that the stream is not Blocked. Elsewhere eos and flags may be set directly, and ptr if it is and remains in the
    // buffer; for all else there are UseBuffer, SetCapacity and MoveTo.
    unsigned char* buffer = nullptr;
    unsigned char* bufferEnd = nullptr;
    unsigned long long bufferSize = 0; // as passed to UseBuffer; only subclasses and Dump use it
    unsigned long long offset = 0;     // position of the buffer's first byte
    unsigned char* eos = nullptr;      // one past the last byte of data
    unsigned char* ptr = nullptr;      // the current position
    unsigned short flags = 0;          // bits of StreamMode

    // --- Implementation; nothing below is part of the interface. ---
private:
    friend struct eStreamInline;
    friend class eStreamSteps;
    friend class eStreamOperation;
    friend class eHookRun;
    friend class eReportedStream;
    friend class eReadTransaction;
    friend class eFileStreamBase;
    friend class eMemoryStream;
    friend class eSaveFile;

    // What Failure tells: `what`, the system's reason for `number`, and `more`, another sentence.
    struct eLoss {
        const char* what = nullptr;
        int number = 0;
        const char* more = nullptr;
    };

    static unsigned long long Address(const unsigned char* place) noexcept;
    long long ToEnd() const noexcept;                 // bytes to the end of the data; negative beyond it
    unsigned long long DataInBuffer() const noexcept; // what can be read without a hook
    unsigned long long RoomInBuffer() const noexcept; // what can be written without a hook
    bool OutsideBuffer() const noexcept;
    void RunHook(void (eStream::*hook)());
    void FlushIfModified();
    void FlushBeforeMove();
    eStream& FinishMove();
    void Refill();
    void Report(const char* source, int line, const std::string& message);
    void NoteLoss(const char* what, int number) noexcept;
    void ReturnTo(unsigned long long position);

    const struct eStreamMeans* means = nullptr; // what the class can do besides its hooks
    unsigned long long lastCapacity = 0;        // the capacity while bufferEnd is null
    bool hookRuns = false;                      // bufferEnd is then not null
    unsigned int inlineTexts = 255;             // texts of at least this length take the slow path
    class eStreamOperation* underWay = nullptr; // the innermost operation that has begun and not ended
    std::unique_ptr<unsigned char[]> apart;     // the block that replaces bytes outside the buffer
    eLoss loss;                                 // the first one; without one, `what` is null
    eStreamLimits readLimits;
};

} // namespace IO

#include <qzl_io/detail/stream_inline.h>
