#include <qzl_io/streams/stream.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <utility>

#include "streams/operation.h"
#include "streams/reports.h"
#include "streams/wide_units.h"

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

void eStream::PutBits(eStreamOperation& operation, unsigned long long bits, unsigned long long n) {
    if (!Fits(n) && !ReachToWrite(operation, n))
        return;
    const unsigned long long fits = std::min(n, RoomInBuffer());
    if (fits > 0)
        std::memcpy(ptr, &bits, fits);
    WrittenTo(n);
}

unsigned long long eStream::BitsHere(unsigned long long n) const noexcept {
    unsigned long long bits = 0;
    const unsigned long long there = std::min(n, RoomInBuffer());
    if (there > 0)
        std::memcpy(&bits, ptr, there);
    return bits;
}

unsigned long long eStream::TakeBits(eStreamOperation& operation, unsigned long long n) {
    if (!Fits(n) && !ReachToRead(operation))
        return 0;
    const unsigned long long bits = BitsHere(n);
    MoveTo(Shifted(ptr, n));
    return bits;
}

eStream& eStream::PutFallback(unsigned long long bits, unsigned long long n) {
    eStreamOperation operation(*this);
    PutBits(operation, bits, n);
    operation.End();
    return *this;
}

unsigned long long eStream::PeekFallback(unsigned long long n) {
    eStreamOperation operation(*this);
    const unsigned long long bits = ReachToRead(operation) ? BitsHere(n) : 0;
    operation.End();
    return bits;
}

unsigned long long eStream::GetFallback(unsigned long long n) {
    unsigned long long bits = 0;
    GetToFallback(&bits, n);
    return bits;
}

void eStream::GetToFallback(void* target, unsigned long long n) {
    eStreamOperation operation(*this);
    const unsigned long long bits = TakeBits(operation, n);
    std::memcpy(target, &bits, n);
    operation.End();
}

void eStream::GetToFallback(bool* target) {
    eStreamOperation operation(*this);
    *target = TakeBits(operation, 1) != 0;
    operation.End();
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

void eStream::PutLength(eStreamOperation& operation, unsigned long long length) {
    if (length < kLongMark)
        return PutBits(operation, length, 1);
    PutBits(operation, kLongMark, 1);
    PutBits(operation, length & kTbyteMask, kLongLengthBytes);
}

eStream& eStream::PutUpToNul(const char* text) {
    return *this << text;
}

eStream& eStream::PutTextFallback(const char* text, unsigned long long length) {
    eStreamOperation operation(*this);
    PutLength(operation, length);
    WriteAll(operation, reinterpret_cast<const unsigned char*>(text), length);
    operation.End();
    return *this;
}

eStream& eStream::PutUnits(const void* units, unsigned long long count) {
    eStreamOperation operation(*this);
    PutLength(operation, count);
    WriteAll(operation, static_cast<const unsigned char*>(units), count * sizeof(char16_t));
    operation.End();
    return *this;
}

eStream& eStream::operator<<(const std::wstring& text) {
    if constexpr (sizeof(wchar_t) == sizeof(char16_t)) {
        return PutUnits(text.data(), text.size());
    } else {
        const std::u16string units = UnitsOf(text);
        return PutUnits(units.data(), units.size());
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
bool eStream::GetLength(eStreamOperation& operation, unsigned int* length) {
    *length = Shows(1) ? *ptr++ : static_cast<unsigned int>(TakeBits(operation, 1));
    if (*length != kLongMark)
        return true;
    unsigned char bytes[kLongLengthBytes] = {};
    const bool complete = Remaining() >= static_cast<long long>(kLongLengthBytes);
    ReadAll(operation, bytes, kLongLengthBytes);
    *length = bytes[0];
    return complete;
}

// The result is false when the data ended before the text did, which has then been reported.
bool eStream::GetText(eStreamOperation& operation, std::string* text) {
    unsigned int length = 0;
    const bool measured = GetLength(operation, &length);
    if (length <= DataInBuffer()) {
        AssignText(text, ptr, length);
        ptr = Shifted(ptr, length);
        return measured;
    }
    const bool complete = measured && Remaining() >= static_cast<long long>(length);
    text->assign(length, '\0');
    ReadAll(operation, text->data(), length);
    return complete;
}

eStream& eStream::GetTextFallback(std::string* text) {
    eStreamOperation operation(*this);
    GetText(operation, text);
    operation.End();
    return *this;
}

std::string eStream::GetString() {
    std::string text;
    *this >> text;
    return text;
}

eStream& eStream::operator>>(std::wstring& text) {
    eStreamOperation operation(*this);
    char16_t units[kLongestShown] = {};
    unsigned int length = 0;
    GetLength(operation, &length);
    ReadAll(operation, units, length * sizeof(char16_t));
    if constexpr (sizeof(wchar_t) == sizeof(char16_t))
        text.assign(units, units + length);
    else
        text = WideOf({units, length});
    operation.End();
    return *this;
}

eStream& eStream::operator>>(eStrings& texts) {
    eStreamOperation operation(*this);
    const unsigned long long count = TakeBits(operation, sizeof count);
    const unsigned long long possible = std::min(DataInBuffer(), kReservedTexts); // a text takes a byte at least
    if (texts.empty())
        texts.Reserve(static_cast<std::size_t>(std::min(count, possible)));
    bool complete = true;
    for (unsigned long long read = 0; read < count && complete; ++read) {
        if (Enabled(StreamMode::Bad) || Remaining() <= 0) {
            Fail(kSource, kListEndLine, kReadBeyond);
            break;
        }
        std::string text;
        complete = GetText(operation, &text) && !operation.Threw();
        texts.Add(std::move(text));
    }
    operation.End();
    return *this;
}

// Takes the bytes up to the delimiter, or to the byte that ends at the end of the buffer, which is left to Overflow.
// True when the delimiter was there.
bool eStream::AppendUpTo(char delimiter, std::string* line) {
    const unsigned long long run = std::min(DataInBuffer(), std::max(RoomInBuffer(), 1ull) - 1);
    if (run == 0)
        return false;
    const auto* const from = reinterpret_cast<const char*>(ptr);
    const auto* const end = static_cast<const char*>(std::memchr(from, delimiter, run));
    line->append(from, end ? end : from + run);
    ptr += end ? end + 1 - from : static_cast<std::ptrdiff_t>(run);
    return end != nullptr;
}

std::string eStream::GetLine(char delimiter) {
    std::string line;
    if (Eos() || AppendUpTo(delimiter, &line))
        return line;
    eStreamOperation operation(*this);
    while (!Eos() && !operation.Threw()) {
        const bool readable = !Blocked() || ReachToRead(operation);
        const char next = readable ? static_cast<char>(TakeBits(operation, 1)) : delimiter;
        if (next == delimiter)
            break;
        line.push_back(next);
        if (Eos() || AppendUpTo(delimiter, &line))
            break;
    }
    operation.End();
    return line;
}

} // namespace IO
