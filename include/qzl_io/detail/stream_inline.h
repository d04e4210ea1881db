// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include <qzl_io/detail/compiler.h>
#include <qzl_io/detail/short_text.h>
#include <qzl_io/export.h>

// The inline bodies of eStream. Callers need only stream.h, which includes this file last and is the only file to do
// so.

namespace IO {

class eStreamSteps; // the slow paths of stream classes, in the library

inline unsigned long long eStream::Address(const unsigned char* place) noexcept {
    return reinterpret_cast<std::uintptr_t>(place);
}
inline unsigned char* eStream::Shifted(unsigned char* from, unsigned long long n) noexcept {
    return reinterpret_cast<unsigned char*>(Address(from) + n);
}
inline long long eStream::Distance(const unsigned char* from, const unsigned char* to) noexcept {
    return static_cast<long long>(Address(to) - Address(from));
}
inline long long eStream::ToEnd() const noexcept {
    return Distance(ptr, eos);
}
inline unsigned long long eStream::RoomInBuffer() const noexcept {
    return Address(ptr) < Address(bufferEnd) ? Address(bufferEnd) - Address(ptr) : 0;
}

// --- State ---

inline unsigned char* eStream::Buffer() const noexcept {
    return buffer;
}
inline unsigned long long eStream::Position() const noexcept {
    return offset + (Address(ptr) - Address(buffer));
}
inline unsigned long long eStream::Size() const noexcept {
    return offset + (Address(eos) - Address(buffer));
}
inline bool eStream::BeforeStart() const noexcept {
    return static_cast<long long>(Position()) < 0;
}
inline unsigned long long eStream::Remaining() const noexcept {
    return ToEnd() > 0 && !BeforeStart() ? static_cast<unsigned long long>(ToEnd()) : 0;
}
inline void eStream::Enable(unsigned short bits) noexcept {
    flags = static_cast<unsigned short>(flags | bits);
}
inline void eStream::Disable(unsigned short bits) noexcept {
    flags = static_cast<unsigned short>(flags & ~bits);
    if ((bits & StreamMode::Bad) != 0)
        loss = {};
}
inline bool eStream::Enabled(unsigned short bits) const noexcept {
    return (flags & bits) != 0;
}
inline bool eStream::Disabled(unsigned short bits) const noexcept {
    return (flags & bits) == 0;
}
inline bool eStream::Eos() const noexcept {
    return ToEnd() <= 0 || Enabled(StreamMode::Failed | StreamMode::Bad);
}
inline bool eStream::IsOpen() const noexcept {
    return flags != 0 && Disabled(StreamMode::Failed);
}

// --- Fast paths for values in the buffer; values at its end or beyond take the slow paths, in the library ---

struct eStreamInline {
    static_assert(std::endian::native == std::endian::little, "values are moved to and from the stream as they are");
    static_assert(sizeof(short) == 2 && sizeof(int) == 4 && sizeof(long long) == 8 && sizeof(float) == 4 &&
                  sizeof(double) == 8 && sizeof(void*) == 8);

    static constexpr std::size_t kLongText = 255; // longer texts have a length of four bytes

    // Whether a value of n bytes is in the buffer and ends before its last byte.
    static bool Shows(const eStream& stream, std::size_t n) noexcept {
        return eStream::Address(stream.ptr) + n < eStream::Address(stream.bufferEnd);
    }
    // Shows for any n.
    static bool Fits(const eStream& stream, unsigned long long n) noexcept { return n < stream.RoomInBuffer(); }

    static void SetModified(eStream& stream) noexcept {
        if (!stream.Enabled(StreamMode::Modified)) [[unlikely]]
            stream.Enable(StreamMode::Modified);
    }

    // Stores n bytes for which there is room. The fields are loaded first, since a store of bytes may alias all of
    // them.
    template <class Store>
    static void Replace(eStream& stream, std::size_t n, Store store) noexcept {
        unsigned char* const place = stream.ptr;
        unsigned char* const end = place + n;
        if (stream.ToEnd() < static_cast<long long>(n))
            stream.eos = end;
        SetModified(stream);
        store(place);
        stream.ptr = end;
    }
    static void Written(eStream& stream, unsigned long long n) noexcept {
        Replace(stream, n, [](unsigned char*) {});
    }
    // Replace at the end of the data, where most bytes are written. eos and ptr are then known to be equal, and in a
    // row of values only the first one is tested. The test between their stores keeps compilers from merging the two
    // into one wide store, for which a load of either would have to wait.
    template <class Store>
    static void Append(eStream& stream, std::size_t n, Store store) noexcept {
        unsigned char* const place = stream.ptr;
        store(place);
        stream.eos = place + n;
        SetModified(stream);
        stream.ptr = place + n;
    }

    template <class T>
    static eStream& Put(eStream& stream, T value) {
        const auto store = [value](unsigned char* place) { std::memcpy(place, &value, sizeof(T)); };
        if (stream.eos == stream.ptr && Shows(stream, sizeof(T))) [[likely]]
            Append(stream, sizeof(T), store);
        else if (Shows(stream, sizeof(T)))
            Replace(stream, sizeof(T), store);
        else
            PutSlowly(stream, Bits(value), sizeof(T));
        return stream;
    }

    // Writes a text of that many characters. If one of them is NUL, the text ends there and takes the slow path.
    QZL_IO_ALWAYS_INLINE static eStream& PutText(eStream& stream, const char* text, std::size_t length) {
        unsigned char* const place = stream.ptr;
        if (length >= kLongText || !Shows(stream, length + 1) || !ShortText::CopyWithoutNul(place + 1, text, length))
            return PutTextSlowly(stream, text);
        const auto store = [length](unsigned char* at) { *at = static_cast<unsigned char>(length); };
        if (stream.eos == place) [[likely]]
            Append(stream, length + 1, store);
        else
            Replace(stream, length + 1, store);
        return stream;
    }

    template <class T>
    static T Shown(const eStream& stream) noexcept {
        T value;
        std::memcpy(&value, stream.ptr, sizeof(T));
        return value;
    }
    template <class T>
    static T TakeShown(eStream& stream) noexcept {
        const T value = Shown<T>(stream);
        stream.ptr += sizeof(T);
        return value;
    }
    template <class T>
    static T Get(eStream& stream) {
        if (Shows(stream, sizeof(T))) [[likely]]
            return TakeShown<T>(stream);
        return FromBits<T>(GetSlowly(stream, sizeof(T)));
    }
    template <class T>
    static eStream& GetTo(eStream& stream, T& value) {
        if (Shows(stream, sizeof(T))) [[likely]]
            value = TakeShown<T>(stream);
        else
            GetToSlowly(stream, &value, sizeof(T));
        return stream;
    }
    template <class T>
    static bool TryGet(eStream& stream, T& value) {
        if (!Shows(stream, sizeof(T)) || stream.ToEnd() < static_cast<long long>(sizeof(T))) [[unlikely]]
            return TryGetSlowly(stream, &value, sizeof(T));
        value = TakeShown<T>(stream);
        return true;
    }
    template <class T>
    static T Peek(eStream& stream) {
        if (Shows(stream, sizeof(T))) [[likely]]
            return Shown<T>(stream);
        return FromBits<T>(PeekSlowly(stream, sizeof(T)));
    }

    // The length is read back from memory so that compilers do not know it to be below 256: they would copy with a
    // string instruction, which takes longer to start than the whole copy.
    static void AssignText(std::string* text, const unsigned char* from, std::size_t length) {
        const volatile std::size_t unknown = length;
        text->assign(reinterpret_cast<const char*>(from), unknown);
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

    // For requests at the end of the buffer or beyond. A value is the low bytes of `bits`.
    QZL_IO_API static void PutSlowly(eStream& stream, unsigned long long bits, unsigned long long n);
    QZL_IO_API static unsigned long long GetSlowly(eStream& stream, unsigned long long n);
    QZL_IO_API static void GetToSlowly(eStream& stream, void* target, unsigned long long n);
    QZL_IO_API static void GetToSlowly(eStream& stream, bool* target);
    QZL_IO_API static bool TryGetSlowly(eStream& stream, void* target, unsigned long long n);
    QZL_IO_API static unsigned long long PeekSlowly(eStream& stream, unsigned long long n);
    // Writes the characters up to the first NUL.
    QZL_IO_API static eStream& PutTextSlowly(eStream& stream, const char* text);
    QZL_IO_API static eStream& PutView(eStream& stream, const char* text, std::size_t length);
    QZL_IO_API static eStream& GetTextSlowly(eStream& stream, std::string* text);
    QZL_IO_API static unsigned char* LookSlowly(eStream& stream, unsigned long long n);
    QZL_IO_API static unsigned char* TakeSlowly(eStream& stream, unsigned long long n);
    QZL_IO_API static unsigned char* PlaceSlowly(eStream& stream, unsigned long long n);
};

// --- Values, written ---

inline eStream& eStream::operator<<(bool value) {
    return eStreamInline::Put<unsigned char>(*this, value ? 1 : 0);
}
inline eStream& eStream::operator<<(char value) {
    return eStreamInline::Put(*this, value);
}
inline eStream& eStream::operator<<(unsigned char value) {
    return eStreamInline::Put(*this, value);
}
inline eStream& eStream::operator<<(short value) {
    return eStreamInline::Put(*this, value);
}
inline eStream& eStream::operator<<(unsigned short value) {
    return eStreamInline::Put(*this, value);
}
inline eStream& eStream::operator<<(int value) {
    return eStreamInline::Put(*this, value);
}
inline eStream& eStream::operator<<(unsigned int value) {
    return eStreamInline::Put(*this, value);
}
inline eStream& eStream::operator<<(long long value) {
    return eStreamInline::Put(*this, value);
}
inline eStream& eStream::operator<<(unsigned long long value) {
    return eStreamInline::Put(*this, value);
}
inline eStream& eStream::operator<<(float value) {
    return eStreamInline::Put(*this, value);
}
inline eStream& eStream::operator<<(double value) {
    return eStreamInline::Put(*this, value);
}
template <eLongOf64Bits T>
eStream& eStream::operator<<(const T& value) {
    return eStreamInline::Put(*this, value);
}
inline eStream& eStream::operator<<(const char* text) {
    return eStreamInline::PutText(*this, text, text ? std::strlen(text) : 0);
}
inline eStream& eStream::operator<<(const std::string& text) {
    return eStreamInline::PutText(*this, text.c_str(), text.size());
}
eStream& eStream::operator<<(const std::same_as<std::string_view> auto& text) {
    return eStreamInline::PutView(*this, text.data(), text.size());
}
eStream& eStream::operator<<(const std::same_as<std::u8string_view> auto& text) {
    return eStreamInline::PutView(*this, reinterpret_cast<const char*>(text.data()), text.size());
}
eStream& eStream::operator<<(const std::same_as<std::u8string> auto& text) {
    return *this << std::u8string_view(text);
}

// --- Values, read ---

inline eStream& eStream::operator>>(bool& value) {
    if (eStreamInline::Shows(*this, 1)) [[likely]]
        value = *ptr++ != 0;
    else
        eStreamInline::GetToSlowly(*this, &value);
    return *this;
}
inline eStream& eStream::operator>>(char& value) {
    return eStreamInline::GetTo(*this, value);
}
inline eStream& eStream::operator>>(unsigned char& value) {
    return eStreamInline::GetTo(*this, value);
}
inline eStream& eStream::operator>>(short& value) {
    return eStreamInline::GetTo(*this, value);
}
inline eStream& eStream::operator>>(unsigned short& value) {
    return eStreamInline::GetTo(*this, value);
}
inline eStream& eStream::operator>>(int& value) {
    return eStreamInline::GetTo(*this, value);
}
inline eStream& eStream::operator>>(unsigned int& value) {
    return eStreamInline::GetTo(*this, value);
}
inline eStream& eStream::operator>>(long long& value) {
    return eStreamInline::GetTo(*this, value);
}
inline eStream& eStream::operator>>(unsigned long long& value) {
    return eStreamInline::GetTo(*this, value);
}
inline eStream& eStream::operator>>(float& value) {
    return eStreamInline::GetTo(*this, value);
}
inline eStream& eStream::operator>>(double& value) {
    return eStreamInline::GetTo(*this, value);
}
template <eLongOf64Bits T>
eStream& eStream::operator>>(T& value) {
    return eStreamInline::GetTo(*this, value);
}
inline eStream& eStream::operator>>(std::string& text) {
    using way = eStreamInline;
    if (way::Shows(*this, 1)) [[likely]] {
        const std::size_t length = *ptr;
        if (length < inlineTexts && way::Shows(*this, length + 1) && ToEnd() > static_cast<long long>(length) + 1)
            [[likely]] {
            way::AssignText(&text, ptr + 1, length);
            ptr += length + 1;
            return *this;
        }
    }
    return way::GetTextSlowly(*this, &text);
}

template <eFixedWidth T>
bool eStream::TryGet(T& value) {
    if constexpr (std::same_as<T, bool>) {
        unsigned char byte = 0;
        if (!eStreamInline::TryGet(*this, byte))
            return false;
        value = byte != 0;
        return true;
    } else {
        return eStreamInline::TryGet(*this, value);
    }
}

inline bool eStream::GetBool() {
    return eStreamInline::Get<unsigned char>(*this) != 0;
}
inline char eStream::GetChar() {
    return eStreamInline::Get<char>(*this);
}
inline unsigned char eStream::GetUint8() {
    return eStreamInline::Get<unsigned char>(*this);
}
inline short eStream::GetInt16() {
    return eStreamInline::Get<short>(*this);
}
inline unsigned short eStream::GetUint16() {
    return eStreamInline::Get<unsigned short>(*this);
}
inline int eStream::GetInt32() {
    return eStreamInline::Get<int>(*this);
}
inline unsigned int eStream::GetUint32() {
    return eStreamInline::Get<unsigned int>(*this);
}
inline long long eStream::GetInt64() {
    return eStreamInline::Get<long long>(*this);
}
inline unsigned long long eStream::GetUint64() {
    return eStreamInline::Get<unsigned long long>(*this);
}
inline float eStream::GetFloat() {
    return eStreamInline::Get<float>(*this);
}
inline double eStream::GetDouble() {
    return eStreamInline::Get<double>(*this);
}

// --- Values, looked at ---

inline bool eStream::Bool() {
    return eStreamInline::Peek<unsigned char>(*this) != 0;
}
inline char eStream::Char() {
    return eStreamInline::Peek<char>(*this);
}
inline unsigned char eStream::Uint8() {
    return eStreamInline::Peek<unsigned char>(*this);
}
inline short eStream::Int16() {
    return eStreamInline::Peek<short>(*this);
}
inline unsigned short eStream::Uint16() {
    return eStreamInline::Peek<unsigned short>(*this);
}
inline int eStream::Int32() {
    return eStreamInline::Peek<int>(*this);
}
inline unsigned int eStream::Uint32() {
    return eStreamInline::Peek<unsigned int>(*this);
}
inline long long eStream::Int64() {
    return eStreamInline::Peek<long long>(*this);
}
inline unsigned long long eStream::Uint64() {
    return eStreamInline::Peek<unsigned long long>(*this);
}
inline float eStream::Float() {
    return eStreamInline::Peek<float>(*this);
}
inline double eStream::Double() {
    return eStreamInline::Peek<double>(*this);
}

// --- For subclasses ---

inline unsigned char* eStream::Look(unsigned long long n) {
    return eStreamInline::Fits(*this, n) ? ptr : eStreamInline::LookSlowly(*this, n);
}
inline unsigned char* eStream::Take(unsigned long long n) {
    if (!eStreamInline::Fits(*this, n)) [[unlikely]]
        return eStreamInline::TakeSlowly(*this, n);
    unsigned char* const from = ptr;
    ptr += n;
    return from;
}
inline unsigned char* eStream::Place(unsigned long long n) {
    if (!eStreamInline::Fits(*this, n)) [[unlikely]]
        return eStreamInline::PlaceSlowly(*this, n);
    unsigned char* const to = ptr;
    eStreamInline::Written(*this, n);
    return to;
}

} // namespace IO
