#include <qzl_io/streams/stream.h>

#include <algorithm>

#include "stream_reports.h"
#include "wide_units.h"

namespace IO {

using namespace StreamReport;

namespace {

constexpr unsigned char kLongMark = 255; // a long length follows
constexpr unsigned int kLongLengthBytes = 3;
constexpr unsigned int kLongestShown = 255;         // of a length, only 8 bits are ever read
constexpr unsigned long long kReservedTexts = 4096; // ahead of reading, on the word of a count alone
constexpr unsigned int kTbyteMask = 0xFFFFFF;

bool IsByteCount(int n) {
    return n >= 1 && n <= 4;
}

} // namespace

// --- Fixed width ---

eStream& eStream::PutFallback(unsigned long long bits, unsigned long long n) {
    if (!ReachToWrite(n))
        return *this;
    const unsigned long long fits = std::min(n, RoomInBuffer());
    if (fits > 0)
        std::memcpy(ptr, &bits, fits);
    WrittenTo(n);
    return *this;
}

unsigned long long eStream::BitsHere(unsigned long long n) const noexcept {
    unsigned long long bits = 0;
    const unsigned long long there = std::min(n, RoomInBuffer());
    if (there > 0)
        std::memcpy(&bits, ptr, there);
    return bits;
}

unsigned long long eStream::PeekFallback(unsigned long long n) {
    return ReachToRead() ? BitsHere(n) : 0;
}

unsigned long long eStream::GetFallback(unsigned long long n) {
    if (!ReachToRead())
        return 0;
    const unsigned long long bits = BitsHere(n);
    MoveTo(Shifted(ptr, n));
    return bits;
}

eStream& eStream::Bytes(int n, unsigned int value) {
    if (!IsByteCount(n))
        return *this;
    const auto count = static_cast<unsigned int>(n);
    if (!Fits(count))
        return PutFallback(value, count);
    std::memcpy(ptr, &value, count);
    Written(count);
    return *this;
}

unsigned int eStream::Bytes(int n) {
    if (!IsByteCount(n))
        return 0;
    const auto count = static_cast<unsigned int>(n);
    return static_cast<unsigned int>(Fits(count) ? BitsHere(count) : PeekFallback(count));
}

unsigned int eStream::GetBytes(int n) {
    if (!IsByteCount(n))
        return 0;
    const auto count = static_cast<unsigned int>(n);
    if (!Fits(count))
        return static_cast<unsigned int>(GetFallback(count));
    const unsigned long long bits = BitsHere(count);
    ptr += count;
    return static_cast<unsigned int>(bits);
}

unsigned int eStream::Tbyte() {
    return Bytes(3);
}
unsigned int eStream::GetTbyte() {
    return GetBytes(3);
}

// --- Texts, written ---

void eStream::PutLength(unsigned long long length) {
    if (length < kLongMark) {
        Put(static_cast<unsigned char>(length));
        return;
    }
    Put(kLongMark);
    Bytes(kLongLengthBytes, static_cast<unsigned int>(length & kTbyteMask));
}

eStream& eStream::PutUpToNul(const char* text) {
    return *this << text;
}

eStream& eStream::PutTextFallback(const char* text, unsigned long long length) {
    PutLength(length);
    return Write(text, length);
}

eStream& eStream::operator<<(const std::wstring& text) {
    if constexpr (sizeof(wchar_t) == sizeof(char16_t)) {
        PutLength(text.size());
        return Write(text.data(), text.size() * sizeof(char16_t));
    } else {
        const std::u16string units = UnitsOf(text);
        PutLength(units.size());
        return Write(units.data(), units.size() * sizeof(char16_t));
    }
}

eStream& eStream::operator<<(const eStrings& texts) {
    Put(static_cast<unsigned long long>(texts.size()));
    for (const eStringKey& text : texts)
        *this << text.c_str();
    return *this;
}

// --- Texts, read ---

// The result is false when the data ended before the length did, which has then been reported.
bool eStream::GetLength(unsigned int* length) {
    *length = GetUint8();
    if (*length != kLongMark)
        return true;
    unsigned char bytes[kLongLengthBytes] = {};
    const bool complete = Remaining() >= static_cast<long long>(kLongLengthBytes);
    Read(bytes, kLongLengthBytes);
    *length = bytes[0];
    return complete;
}

// The result is false when the data ended before the text did, which has then been reported.
bool eStream::GetText(std::string* text) {
    unsigned int length = 0;
    const bool measured = GetLength(&length);
    if (length <= DataInBuffer()) {
        AssignText(text, ptr, length);
        ptr = Shifted(ptr, length);
        return measured;
    }
    const bool complete = measured && Remaining() >= static_cast<long long>(length);
    text->assign(length, '\0');
    Read(text->data(), length);
    return complete;
}

eStream& eStream::GetTextFallback(std::string* text) {
    GetText(text);
    return *this;
}

std::string eStream::GetString() {
    std::string text;
    *this >> text;
    return text;
}

eStream& eStream::operator>>(std::wstring& text) {
    char16_t units[kLongestShown] = {};
    unsigned int length = 0;
    GetLength(&length);
    Read(units, length * sizeof(char16_t));
    if constexpr (sizeof(wchar_t) == sizeof(char16_t))
        text.assign(units, units + length);
    else
        text = WideOf({units, length});
    return *this;
}

eStream& eStream::operator>>(eStrings& texts) {
    const unsigned long long count = GetUint64();
    const unsigned long long possible = std::min(DataInBuffer(), kReservedTexts); // a text takes a byte at least
    if (texts.empty())
        texts.Reserve(static_cast<std::size_t>(std::min(count, possible)));
    for (unsigned long long read = 0; read < count; ++read) {
        if (Enabled(StreamMode::Bad) || Remaining() <= 0) {
            Fail(kSource, kListEndLine, kReadBeyond);
            break;
        }
        std::string text;
        const bool complete = GetText(&text);
        texts.Add(std::move(text));
        if (!complete)
            break;
    }
    return *this;
}

// Up to the byte that ends at the end of the buffer, which is left to Overflow, whole runs are searched.
std::string eStream::GetLine(char delimiter) {
    std::string line;
    while (!Eos()) {
        const unsigned long long run = std::min(DataInBuffer(), std::max(RoomInBuffer(), 1ull) - 1);
        if (run == 0) {
            const bool readable = !Blocked() || ReachToRead();
            const char next = readable ? GetChar() : delimiter;
            if (next == delimiter)
                break;
            line.push_back(next);
            continue;
        }
        const auto* const from = reinterpret_cast<const char*>(ptr);
        const auto* const end = static_cast<const char*>(std::memchr(from, delimiter, run));
        line.append(from, end ? end : from + run);
        ptr += end ? end + 1 - from : static_cast<std::ptrdiff_t>(run);
        if (end)
            break;
    }
    return line;
}

} // namespace IO
