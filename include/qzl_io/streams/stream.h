#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>

#include <qzl_base/strings.h>
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

// Small characters and integers that would be written as an int by mistake: one byte is char or unsigned char.
template <class T>
concept eWrittenTooWide = std::same_as<T, signed char> || std::same_as<T, wchar_t> || std::same_as<T, char8_t> ||
    std::same_as<T, char16_t> || std::same_as<T, char32_t>;

// And what would be written as a bool: functions (manipulators of other classes among them) and all pointers but those
// to characters.
template <class T>
concept eNotAValue = eWrittenTooWide<T> || std::is_member_pointer_v<T> || requires(T value) {
    requires std::is_pointer_v<decltype(+value)> && !std::convertible_to<T, const char*>;
};

struct eStreamDirect;
class eStreamOperation;
class eHookRun;

// A sequence of bytes with a position, seen through a buffer. It owns no storage: memory, buffer and file streams bring
// theirs and override the five hooks Trunc, Flush, Overflow, Underflow and Skip.
//
// Values are stored little-endian and without padding; nothing marks their type. No operation ever touches memory
// outside the buffer. A stream is used by one thread at a time.
//
// Reports (xError::Error, made only while Errors is set unless said otherwise) may throw or return; the stream is the
// same after either, for an operation makes its reports at its end: the bytes are stored, the position is moved, the
// target of >> is assigned. What a Get function would have returned is lost when the report throws, but its bytes lie
// before the position. What Overflow and Underflow of a derived class throw waits likewise. (A list is written text by
// text; a hook that is called from outside reports at once.)
class QZL_IO_API eStream {
public:
    virtual ~eStream(); // releases nothing: the buffer is the subclass's

    // Ends the data at the current position. Before the start of the stream nothing is changed, Bad is set and "Attempt
    // to write beyond the stream!" is reported.
    virtual void Trunc();
    // Hands the modified bytes on to what the stream stands on and clears Modified.
    virtual void Flush();
    // Called when a request does not fit into the buffer or ends exactly at its end. Flushes if Modified; then with
    // Read refills (Underflow), else only makes the current position the buffer's first byte.
    virtual void Overflow();
    // Refills: makes the current position the buffer's first byte. A position beyond the data sets Bad and is reported
    // as "Invalid read location!".
    virtual void Underflow();
    // Moves the position forward by n bytes (backward by the two's complement), flushing first if the stream writes. A
    // position beyond the data sets Bad and is reported as "Invalid seek location!".
    virtual eStream& Skip(unsigned long long n);

protected:
    // The state as text, "(off:%d, ptr:%d, end:%d, eos:%d, buff:%d)"; a subclass puts its name before it.
    virtual std::string Dump() const;

public:
    // --- State ---

    // The buffer's first byte, which is the stream's first byte for streams in memory. Null when there is no buffer.
    unsigned char* Buffer() const noexcept { return buffer; }
    // In bytes from the start of the stream.
    unsigned long long Position() const noexcept { return offset + (Address(ptr) - Address(buffer)); }
    unsigned long long Size() const noexcept { return offset + (Address(eos) - Address(buffer)); }
    // No data remain, or the stream is Failed or Bad.
    bool Eos() const noexcept { return Remaining() <= 0 || Enabled(StreamMode::Failed | StreamMode::Bad); }
    bool IsOpen() const noexcept { return flags != 0 && Disabled(StreamMode::Failed); }

    void Enable(unsigned short bits) noexcept { flags = static_cast<unsigned short>(flags | bits); }
    void Disable(unsigned short bits) noexcept { flags = static_cast<unsigned short>(flags & ~bits); }
    bool Enabled(unsigned short bits) const noexcept { return (flags & bits) != 0; }  // any of the bits is set
    bool Disabled(unsigned short bits) const noexcept { return (flags & bits) == 0; } // none of the bits is set

    // --- Bytes ---

    // Reads n bytes. When fewer remain, the target gets those, the position is the end of the data, Bad is set and
    // "Attempt to read beyond the stream!" is reported. n = 0 does nothing.
    eStream& Read(void* target, unsigned long long n);
    // Reads the bytes that lie in the buffer already, n at most, to the end of the text. Returns how many those were;
    // none where the buffer is still to be filled.
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
    // that is more than 2^63 beyond the data lies before the start, whichever way it was reached.
    eStream& Seek(unsigned long long position, eSeekDir dir);
    // To position 0.
    eStream& Reset();
    // To position 0, and ends the data there.
    eStream& Clear();

    // Copies n bytes (0: all that remain) from this stream's position to the target's; fewer when the source ends
    // before that, which is not reported. Returns this stream.
    eStream& CopyTo(eStream& target, unsigned long long n);
    // The same seen from the target.
    eStream& CopyFrom(eStream& source, unsigned long long n);

    // --- Values, written. The position moves on; the data grow when it passes their end. ---

    eStream& operator<<(bool value) { return Put<unsigned char>(value ? 1 : 0); } // one byte, 0 or 1
    eStream& operator<<(char value) { return Put(value); }
    eStream& operator<<(unsigned char value) { return Put(value); }
    eStream& operator<<(short value) { return Put(value); }
    eStream& operator<<(unsigned short value) { return Put(value); }
    eStream& operator<<(int value) { return Put(value); }
    eStream& operator<<(unsigned int value) { return Put(value); }
    eStream& operator<<(long long value) { return Put(value); }
    eStream& operator<<(unsigned long long value) { return Put(value); }
    eStream& operator<<(float value) { return Put(value); }  // the bits of an IEEE-754 binary32
    eStream& operator<<(double value) { return Put(value); } // the bits of an IEEE-754 binary64
    // On systems where the 64-bit integers of <cstdint> are long: the same 8 bytes as long long.
    template <class T>
    requires(sizeof(T) == 8 && (std::same_as<T, long> || std::same_as<T, unsigned long>)) eStream&
    operator<<(const T& value) {
        return Put(value);
    }

    // A text: its length as one byte, or from 255 up as the byte 255 and three bytes, then the characters up to the
    // first NUL. A null pointer is the empty text.
    eStream& operator<<(const char* text) { return PutText(text, text ? std::strlen(text) : 0); }
    eStream& operator<<(const std::string& text) {
        return AppendText(text.data(), text.size()) ? *this : PutUpToNul(text.c_str());
    }
    // The length counts UTF-16 units, each of two bytes; NUL units are written like others.
    eStream& operator<<(const std::wstring& text);
    // The count as 8 bytes, then each text.
    eStream& operator<<(const eStrings& texts);
    template <eNotAValue T>
    eStream& operator<<(T) = delete;
    eStream& operator<<(std::nullptr_t) = delete;

    // The low n bytes of a value, lowest first, for n from 1 to 4; any other n writes nothing.
    eStream& Bytes(int n, unsigned int value);

    // --- Values, read. The position moves on. Fixed-width values do not look where the data end: behind it they give
    // what the buffer holds, and zero for bytes outside the buffer. ---

    eStream& operator>>(bool& value) {
        if (Shows(1)) [[likely]]
            value = *ptr++ != 0;
        else
            GetToFallback(&value);
        return *this;
    }
    eStream& operator>>(char& value) { return GetTo(value); }
    eStream& operator>>(unsigned char& value) { return GetTo(value); }
    eStream& operator>>(short& value) { return GetTo(value); }
    eStream& operator>>(unsigned short& value) { return GetTo(value); }
    eStream& operator>>(int& value) { return GetTo(value); }
    eStream& operator>>(unsigned int& value) { return GetTo(value); }
    eStream& operator>>(long long& value) { return GetTo(value); }
    eStream& operator>>(unsigned long long& value) { return GetTo(value); }
    eStream& operator>>(float& value) { return GetTo(value); }
    eStream& operator>>(double& value) { return GetTo(value); }
    template <class T>
    requires(sizeof(T) == 8 && (std::same_as<T, long> || std::same_as<T, unsigned long>)) eStream&
    operator>>(T& value) {
        return GetTo(value);
    }

    // A text. Its length is the first byte, or where that is 255 the byte behind it (of a long length only the low 8
    // bits are read). When the data end before the text does, the missing characters are NUL, Bad is set and "Attempt
    // to read beyond the stream!" is reported.
    eStream& operator>>(std::string& text) {
        if (Shows(1) && *ptr != kLongText && Shows(*ptr + 1u) && Remaining() > *ptr + 1) [[likely]] {
            const std::size_t length = *ptr;
            AssignText(&text, ptr + 1, length);
            ptr += length + 1;
            return *this;
        }
        return GetTextFallback(&text);
    }
    eStream& operator>>(std::wstring& text);
    // Appends the texts of a list. Reading ends with the first text that finds the stream Bad or no byte left, which
    // sets Bad and is reported as a read beyond the stream.
    eStream& operator>>(eStrings& texts);

    bool GetBool() { return Get<unsigned char>() != 0; } // any byte but 0 is true
    char GetChar() { return Get<char>(); }
    unsigned char GetUint8() { return Get<unsigned char>(); }
    short GetInt16() { return Get<short>(); }
    unsigned short GetUint16() { return Get<unsigned short>(); }
    int GetInt32() { return Get<int>(); }
    unsigned int GetUint32() { return Get<unsigned int>(); }
    long long GetInt64() { return Get<long long>(); }
    unsigned long long GetUint64() { return Get<unsigned long long>(); }
    float GetFloat() { return Get<float>(); }
    double GetDouble() { return Get<double>(); }
    unsigned int GetTbyte();      // three bytes, zero-extended
    unsigned int GetBytes(int n); // n bytes, zero-extended, for n from 1 to 4; else 0, and nothing is read
    std::string GetString();      // as operator>>
    // The characters up to the delimiter, which is consumed and left out, or to the end of the data. The line of a
    // report that throws lies between the position before the call and the one after it.
    std::string GetLine(char delimiter);

    // --- Values, looked at. The same without moving the position. ---

    bool Bool() { return Peek<unsigned char>() != 0; }
    char Char() { return Peek<char>(); }
    unsigned char Uint8() { return Peek<unsigned char>(); }
    short Int16() { return Peek<short>(); }
    unsigned short Uint16() { return Peek<unsigned short>(); }
    int Int32() { return Peek<int>(); }
    unsigned int Uint32() { return Peek<unsigned int>(); }
    long long Int64() { return Peek<long long>(); }
    unsigned long long Uint64() { return Peek<unsigned long long>(); }
    float Float() { return Peek<float>(); }
    double Double() { return Peek<double>(); }
    unsigned int Tbyte();
    unsigned int Bytes(int n);

protected:
    eStream() noexcept = default; // not open: no buffer, flags 0
    // The copy has the same state and addresses the same bytes.
    eStream(const eStream& other) noexcept;
    eStream& operator=(const eStream& other) noexcept;
    // The other stream is left not open, without a buffer.
    eStream(eStream&& other) noexcept;
    eStream& operator=(eStream&& other) noexcept;

    // --- Primitives for subclasses that bring values of their own ---
    //
    // Each calls Overflow first when the request does not end before bufferEnd, and gives a pointer that is good for n
    // bytes until the next operation. Where the buffer has no room for the request even then, the pointer leads to a
    // block apart: Look and Take put the bytes into it that there are and zeros for the rest, and what is written to
    // that of Place is dropped. Where the stream has no buffer or stands before its start, Bad is set, a read or write
    // beyond the stream is reported, and the position stays. A report that throws finds the position moved by Take, but
    // not by Place, as nobody is going to store the bytes.

    // The n bytes at the position, which stays.
    unsigned char* Look(unsigned long long n) { return Fits(n) ? ptr : LookFallback(n); }
    // The n bytes at the position, which moves behind them.
    unsigned char* Take(unsigned long long n) {
        if (!Fits(n)) [[unlikely]]
            return TakeFallback(n);
        unsigned char* const from = ptr;
        ptr += n;
        return from;
    }
    // Room for n bytes at the position, which moves behind them; sets Modified and extends the data.
    unsigned char* Place(unsigned long long n) {
        if (!Fits(n)) [[unlikely]]
            return PlaceFallback(n);
        unsigned char* const to = ptr;
        Written(n);
        return to;
    }
    // Makes the current position the buffer's first byte; the bytes from there to bufferEnd move with it. A position
    // before the start or beyond the data is reported ("Stream.PlaceBuffer: " and Dump()), Errors set or not.
    void PlaceBuffer();

    // There is no buffer, or the position or the whole buffer lies before what the buffer can show.
    bool Blocked() const noexcept;
    // The position lies before the start of the stream.
    bool BeforeStart() const noexcept { return static_cast<long long>(Position()) < 0; }
    // bufferEnd - buffer, or while bufferEnd is kept null what that was before.
    unsigned long long Capacity() const noexcept;
    // Moves the position, to a place outside the buffer too, and keeps the invariant below.
    void MoveTo(unsigned char* place) noexcept;
    // Takes a block into use as the buffer: data of that length (which may reach beyond the block), position at its
    // first byte. offset and flags stay. A null block with a size stands for one that could not be allocated.
    void UseBuffer(unsigned char* block, unsigned long long size, unsigned long long length) noexcept;
    // Sets bufferEnd to the capacity, or as the invariant below wants it.
    void SetCapacity(unsigned long long size) noexcept;
    // Data that end before the position end there.
    void RaiseEnd() noexcept;
    // A position beyond the data sets Bad and is reported as "Invalid read location!".
    void CheckReadLocation();
    // Sets Bad and, if Errors, reports; while an operation is under way, at its end.
    void Fail(const char* source, int line, const char* message);

    // A pointer n bytes on, which may lie outside every block of memory and is then only a number.
    static unsigned char* Shifted(unsigned char* from, unsigned long long n) noexcept {
        return reinterpret_cast<unsigned char*>(Address(from) + n);
    }
    // to - from in bytes, whatever they point to.
    static long long Distance(const unsigned char* from, const unsigned char* to) noexcept {
        return static_cast<long long>(Address(to) - Address(from));
    }

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
    friend class eFileStreamBase;
    friend class eMemoryStream;
    friend class eStreamOperation;
    friend class eHookRun;

    static constexpr std::size_t kLongText = 255; // lengths from here on take four bytes

    static_assert(std::endian::native == std::endian::little, "values are moved to and from the stream as they are");
    static_assert(sizeof(short) == 2 && sizeof(int) == 4 && sizeof(long long) == 8 && sizeof(float) == 4 &&
                  sizeof(double) == 8 && sizeof(void*) == 8);

    static unsigned long long Address(const unsigned char* place) noexcept {
        return reinterpret_cast<std::uintptr_t>(place);
    }

    long long Remaining() const noexcept { return Distance(ptr, eos); }
    // A value of n bytes lies within the buffer and before its last byte.
    bool Shows(std::size_t n) const noexcept { return Address(ptr) + n < Address(bufferEnd); }
    // The same for any n.
    bool Fits(unsigned long long n) const noexcept { return n < RoomInBuffer(); }

    void SetModified() noexcept {
        if (!Enabled(StreamMode::Modified)) [[unlikely]]
            Enable(StreamMode::Modified);
    }

    // Bytes for which there is room. The fields are loaded before the bytes are stored: a store of bytes may alias all
    // of them.
    template <class Store>
    void Replace(std::size_t n, Store store) noexcept {
        unsigned char* const place = ptr;
        unsigned char* const end = place + n;
        if (Remaining() < static_cast<long long>(n))
            eos = end;
        SetModified();
        store(place);
        ptr = end;
    }
    void Written(unsigned long long n) noexcept {
        Replace(n, [](unsigned char*) {});
    }
    // The next n bytes lie behind the data, and there is room for them.
    bool Appends(std::size_t n) const noexcept { return eos == ptr && Shows(n); }
    // The same behind the data, which is where most bytes go. eos and ptr are then known to be equal, and in a row of
    // values that spares all tests of it but the first. The test between their stores keeps compilers from making one
    // wide store of the two, which a load of one would have to wait for.
    template <class Store>
    void Append(std::size_t n, Store store) noexcept {
        unsigned char* const place = ptr;
        store(place);
        eos = place + n;
        SetModified();
        ptr = place + n;
    }
    // False, and nothing done, where there is no room.
    template <class Store>
    bool PutHere(std::size_t n, Store store) noexcept {
        if (Appends(n)) [[likely]]
            Append(n, store);
        else if (Shows(n))
            Replace(n, store);
        else
            return false;
        return true;
    }

    template <class T>
    eStream& Put(T value) {
        const auto store = [value](unsigned char* place) { std::memcpy(place, &value, sizeof(T)); };
        return PutHere(sizeof(T), store) ? *this : PutFallback(Bits(value), sizeof(T));
    }
    template <class T>
    T Shown() const noexcept {
        T value;
        std::memcpy(&value, ptr, sizeof(T));
        return value;
    }
    template <class T>
    T TakeShown() noexcept {
        const T value = Shown<T>();
        ptr += sizeof(T);
        return value;
    }
    template <class T>
    T Get() {
        if (Shows(sizeof(T))) [[likely]]
            return TakeShown<T>();
        return FromBits<T>(GetFallback(sizeof(T)));
    }
    template <class T>
    eStream& GetTo(T& value) {
        if (Shows(sizeof(T))) [[likely]]
            value = TakeShown<T>();
        else
            GetToFallback(&value, sizeof(T));
        return *this;
    }
    template <class T>
    T Peek() {
        if (Shows(sizeof(T))) [[likely]]
            return Shown<T>();
        return FromBits<T>(PeekFallback(sizeof(T)));
    }

    eStream& PutText(const char* text, std::size_t length) {
        const auto store = [=](unsigned char* place) {
            *place = static_cast<unsigned char>(length);
            if (length != 0)
                std::memcpy(place + 1, text, length);
        };
        return length < kLongText && PutHere(length + 1, store) ? *this : PutTextFallback(text, length);
    }
    eStream& PutUpToNul(const char* text);
    // A text of 8 to 15 characters, none of them NUL, and its length before it, as two words. False, and nothing done,
    // for any other and elsewhere than behind the data.
    bool AppendText(const char* text, std::size_t length) noexcept {
        if (!Appends(length + 1) || length < 8 || length > 15)
            return false;
        const unsigned long long head = Word(text);
        const unsigned long long tail = Word(text + length - 8);
        if (HasZero(head, tail)) [[unlikely]]
            return false;
        Append(length + 1, [=](unsigned char* place) {
            const unsigned long long first = head << 8 | length;
            std::memcpy(place, &first, 8);
            std::memcpy(place + length + 1 - 8, &tail, 8);
        });
        return true;
    }
    static unsigned long long Word(const char* bytes) noexcept {
        unsigned long long word = 0;
        std::memcpy(&word, bytes, sizeof word);
        return word;
    }
    // Whether one of the 16 bytes is zero. Without one beyond ASCII that is known sooner.
    static bool HasZero(unsigned long long head, unsigned long long tail) noexcept {
        constexpr unsigned long long kLowest = 0x0101010101010101ull;
        constexpr unsigned long long kHighest = kLowest << 7;
        const unsigned long long headLess = head - kLowest;
        const unsigned long long tailLess = tail - kLowest;
        return ((headLess | tailLess) & kHighest) != 0 && (((headLess & ~head) | (tailLess & ~tail)) & kHighest) != 0;
    }
    // The length is kept from the compiler's sight: told that it is below 256, GCC 12 copies with a string instruction
    // that takes longer to start than the whole copy.
    static void AssignText(std::string* text, const unsigned char* from, std::size_t length) {
        asm("" : "+r"(length));
        text->assign(reinterpret_cast<const char*>(from), length);
    }

    template <class T>
    static unsigned long long Bits(T value) noexcept {
        unsigned long long bits = 0;
        std::memcpy(&bits, &value, sizeof(T));
        return bits;
    }
    template <class T>
    static T FromBits(unsigned long long bits) noexcept {
        T value;
        std::memcpy(&value, &bits, sizeof(T));
        return value;
    }

    // The same for requests at or beyond the end of the buffer. A value is the low bytes of bits.
    eStream& PutFallback(unsigned long long bits, unsigned long long n);
    unsigned long long GetFallback(unsigned long long n);
    void GetToFallback(void* target, unsigned long long n);
    void GetToFallback(bool* target);
    unsigned long long PeekFallback(unsigned long long n);
    eStream& PutTextFallback(const char* text, unsigned long long length);
    eStream& GetTextFallback(std::string* text);
    unsigned char* LookFallback(unsigned long long n);
    unsigned char* TakeFallback(unsigned long long n);
    unsigned char* PlaceFallback(unsigned long long n);

    // Bytes at the position that can be read or written without a hook.
    unsigned long long DataInBuffer() const noexcept;
    unsigned long long RoomInBuffer() const noexcept {
        return Address(ptr) < Address(bufferEnd) ? Address(bufferEnd) - Address(ptr) : 0;
    }
    bool OutsideBuffer() const noexcept;
    // Calls a hook, which finds bufferEnd not null where there is a buffer.
    void RunHook(void (eStream::*hook)());
    void FlushIfModified();
    void FlushBeforeMove();
    eStream& FinishMove();
    void Refill();
    // To whoever handles errors, Errors set or not; while an operation is under way, at its end.
    void Report(const char* source, int line, const std::string& message);

    // --- Steps of the operation under way ---

    // Make something readable or writable at the position by a refill or an overflow. False when there is nothing,
    // which has then been reported.
    bool MakeData(eStreamOperation& operation);
    bool MakeRoom(eStreamOperation& operation, unsigned long long n);
    // The same for a copy from this stream, whose end is not reported.
    bool HasMoreToCopy();
    // Call Overflow for a value. False when nothing can be touched at the position even then, which has been reported.
    bool ReachToRead(eStreamOperation& operation);
    bool ReachToWrite(eStreamOperation& operation, unsigned long long n);
    bool Reach(eStreamOperation& operation, int line, const char* message);
    void WrittenTo(unsigned long long n);
    unsigned char* Apart(unsigned long long n);
    unsigned char* LookAt(eStreamOperation& operation, unsigned long long n);
    unsigned long long BitsHere(unsigned long long n) const noexcept;
    unsigned long long TakeBits(eStreamOperation& operation, unsigned long long n);
    void PutBits(eStreamOperation& operation, unsigned long long bits, unsigned long long n);
    void ReadAll(eStreamOperation& operation, void* target, unsigned long long n);
    bool WriteAll(eStreamOperation& operation, const unsigned char* source, unsigned long long n);
    bool WritePieces(eStreamOperation& operation, const unsigned char* source, unsigned long long n);
    bool HoldsInBuffer(const unsigned char* place) const noexcept;
    void PutLength(eStreamOperation& operation, unsigned long long length);
    bool GetLength(eStreamOperation& operation, unsigned int* length);
    bool GetText(eStreamOperation& operation, std::string* text);
    eStream& PutUnits(const void* units, unsigned long long count);
    bool AppendUpTo(char delimiter, std::string* line);

    const eStreamDirect* Direct() const;
    // Whole buffers that lie before the last one which n more bytes touch, in bytes.
    unsigned long long WholeBuffers(unsigned long long n) const noexcept;
    unsigned long long ReadDirect(unsigned char* target, unsigned long long n);
    bool TakesWholeBuffers() const;
    unsigned long long WriteDirect(const unsigned char* source, unsigned long long n);
    void PassWritten(unsigned long long whole);
    unsigned long long CopyInSystem(eStream& target, unsigned long long n);
    bool CopyDirect(eStream& target, unsigned long long* n);

    const eStreamDirect* direct = nullptr;  // how to go past the buffer, null where that is not possible
    unsigned long long lastCapacity = 0;    // as it was set, for while bufferEnd is kept null
    bool hookRuns = false;                  // bufferEnd is not kept null
    eStreamOperation* underWay = nullptr;   // the innermost operation that has begun and not ended
    std::unique_ptr<unsigned char[]> apart; // the block that stands in for bytes outside the buffer
};

} // namespace IO
