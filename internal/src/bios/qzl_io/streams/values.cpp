// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/streams/stream.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <utility>

#include "streams/reports.h"
#include "streams/steps.h"
#include "streams/wide_units.h"

namespace IO {

using namespace StreamReport;

namespace {

constexpr unsigned int kLongestShown = 255;         // of a length; only 8 bits are ever read
constexpr unsigned long long kReservedTexts = 4096; // before reading, while only the count vouches for them

bool IsByteCount(int n) {
    return n >= 1 && n <= 4;
}

void PutUnits(eStream& stream, const void* units, unsigned long long count) {
    eStreamSteps steps(stream);
    if (steps.PutLength(count))
        steps.WriteAll(static_cast<const unsigned char*>(units), count * sizeof(char16_t));
    steps.End();
}

} // namespace

// --- Fixed width ---

void eStreamInline::PutSlowly(eStream& stream, unsigned long long bits, unsigned long long n) {
    eStreamSteps steps(stream);
    steps.PutBits(bits, n);
    steps.End();
}

unsigned long long eStreamInline::PeekSlowly(eStream& stream, unsigned long long n) {
    eStreamSteps steps(stream);
    const unsigned long long bits = steps.ReachToRead() ? steps.BitsHere(n) : 0;
    steps.End();
    return bits;
}

unsigned long long eStreamInline::GetSlowly(eStream& stream, unsigned long long n) {
    unsigned long long bits = 0;
    GetToSlowly(stream, &bits, n);
    return bits;
}

void eStreamInline::GetToSlowly(eStream& stream, void* target, unsigned long long n) {
    eStreamSteps steps(stream);
    const unsigned long long bits = steps.TakeBits(n);
    std::memcpy(target, &bits, n);
    steps.End();
}

void eStreamInline::GetToSlowly(eStream& stream, bool* target) {
    eStreamSteps steps(stream);
    *target = steps.TakeBits(1) != 0;
    steps.End();
}

bool eStreamInline::TryGetSlowly(eStream& stream, void* target, unsigned long long n) {
    eStreamSteps steps(stream);
    unsigned char bytes[sizeof(unsigned long long)] = {};
    const bool there = steps.TryReadAll(bytes, n);
    if (there)
        std::memcpy(target, bytes, n);
    steps.End();
    return there;
}

eStream& eStream::Bytes(int n, unsigned int value) {
    if (!IsByteCount(n))
        return *this;
    const auto count = static_cast<unsigned int>(n);
    if (eStreamInline::Fits(*this, count)) {
        std::memcpy(ptr, &value, count);
        eStreamInline::Written(*this, count);
    } else {
        eStreamInline::PutSlowly(*this, value, count);
    }
    return *this;
}

unsigned int eStream::Bytes(int n) {
    if (!IsByteCount(n))
        return 0;
    const auto count = static_cast<unsigned int>(n);
    if (!eStreamInline::Fits(*this, count))
        return static_cast<unsigned int>(eStreamInline::PeekSlowly(*this, count));
    unsigned int value = 0;
    std::memcpy(&value, ptr, count);
    return value;
}

unsigned int eStream::GetBytes(int n) {
    if (!IsByteCount(n))
        return 0;
    const auto count = static_cast<unsigned int>(n);
    if (!eStreamInline::Fits(*this, count))
        return static_cast<unsigned int>(eStreamInline::GetSlowly(*this, count));
    unsigned int value = 0;
    std::memcpy(&value, ptr, count);
    ptr += count;
    return value;
}

unsigned int eStream::Tbyte() {
    return Bytes(3);
}
unsigned int eStream::GetTbyte() {
    return GetBytes(3);
}

// --- Texts, written ---

bool ShortText::CopyLong(unsigned char* to, const char* from, std::size_t n) noexcept {
    if (std::memchr(from, '\0', n))
        return false;
    std::memcpy(to, from, n);
    return true;
}

eStream& eStreamInline::PutTextSlowly(eStream& stream, const char* text) {
    return PutView(stream, text, text ? std::strlen(text) : 0);
}

eStream& eStreamInline::PutView(eStream& stream, const char* text, std::size_t size) {
    const std::size_t length = std::min(std::string_view(text, size).find('\0'), size);
    eStreamSteps steps(stream);
    if (steps.PutLength(length))
        steps.WriteAll(reinterpret_cast<const unsigned char*>(text), length);
    steps.End();
    return stream;
}

eStream& eStream::operator<<(const std::wstring& text) {
    if constexpr (sizeof(wchar_t) == sizeof(char16_t)) {
        PutUnits(*this, text.data(), text.size());
    } else {
        const std::u16string units = UnitsOf(text);
        PutUnits(*this, units.data(), units.size());
    }
    return *this;
}

eStream& eStream::operator<<(const eStrings& texts) {
    *this << static_cast<unsigned long long>(texts.size());
    for (const eStringKey& text : texts)
        *this << text.c_str();
    return *this;
}

// --- Texts, read ---

eStream& eStream::operator>>(std::u8string& text) {
    std::string bytes;
    *this >> bytes;
    text.assign(bytes.begin(), bytes.end());
    return *this;
}

eStream& eStreamInline::GetTextSlowly(eStream& stream, std::string* text) {
    eStreamSteps steps(stream);
    steps.GetText(text);
    steps.End();
    return stream;
}

std::string eStream::GetString() {
    std::string text;
    *this >> text;
    return text;
}

eStream& eStream::operator>>(std::wstring& text) {
    eStreamSteps steps(*this);
    char16_t units[kLongestShown] = {};
    unsigned int length = 0;
    steps.GetLength(&length);
    if (length * sizeof(char16_t) > readLimits.textBytes) {
        length = 0;
        Fail(kSource, kWideTextLimitLine, kReadBeyondLimit);
    }
    steps.ReadAll(units, length * sizeof(char16_t));
    if constexpr (sizeof(wchar_t) == sizeof(char16_t))
        text.assign(units, units + length);
    else
        text = WideOf({units, length});
    steps.End();
    return *this;
}

eStream& eStream::operator>>(eStrings& texts) {
    eStreamSteps steps(*this);
    const unsigned long long begin = Position();
    const auto admits = [this, begin](unsigned long long more) {
        const unsigned long long taken = Position() - begin;
        const unsigned long long most = readLimits.listBytes;
        return most == eStreamLimits::kNone || (taken <= most && more <= most - taken);
    };
    unsigned long long count = steps.TakeBits(sizeof count);
    if (!admits(count)) { // a text takes at least one byte
        Fail(kSource, kListLimitLine, kReadBeyondLimit);
        count = 0;
    }
    const unsigned long long possible = std::min(DataInBuffer(), kReservedTexts);
    if (texts.empty())
        texts.Reserve(static_cast<std::size_t>(std::min(count, possible)));
    bool complete = true;
    for (unsigned long long read = 0; read < count && complete; ++read) {
        if (Enabled(StreamMode::Bad) || ToEnd() <= 0) {
            Fail(kSource, kListEndLine, kReadBeyond);
            break;
        }
        unsigned int length = 0;
        complete = steps.GetLength(&length);
        if (length > readLimits.textBytes || !admits(length)) {
            Fail(kSource, kListLimitLine, kReadBeyondLimit);
            break;
        }
        std::string text;
        complete = steps.GetCharacters(&text, length) && complete && !steps.Threw();
        texts.Add(std::move(text));
    }
    steps.End();
    return *this;
}

std::string eStream::GetLine(char delimiter) {
    std::string line;
    if (Eos() || eStreamSteps::AppendUpTo(*this, delimiter, &line))
        return line;
    eStreamSteps steps(*this);
    while (!Eos() && !steps.Threw()) {
        const bool readable = !Blocked() || steps.ReachToRead();
        const char next = readable ? static_cast<char>(steps.TakeBits(1)) : delimiter;
        if (next == delimiter)
            break;
        if (line.size() == readLimits.textBytes) {
            MoveTo(Shifted(ptr, 0 - 1ULL));
            Fail(kSource, kLineLimitLine, kReadBeyondLimit);
            break;
        }
        line.push_back(next);
        if (Eos() || eStreamSteps::AppendUpTo(*this, delimiter, &line))
            break;
    }
    steps.End();
    return line;
}

} // namespace IO
