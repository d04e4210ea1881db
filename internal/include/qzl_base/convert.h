// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

#include <qzl_base/export.h>

// Conversions between values and texts. Number texts never depend on the locale: "." is the decimal point.

// --- Numbers to texts ---

// The decimal text, or with `hexadecimal` the text "0x" and the value's bits in lower-case digits: 31 is "31" or
// "0x1f", and the int -1 is "-1" or "0xffffffff".
QZL_BASE_API std::string ToString(int value, bool hexadecimal);
QZL_BASE_API std::string ToString(unsigned long long value, bool hexadecimal);

// The texts of the other integer types; hexadecimal texts have the bits of the type. Types smaller than int count as
// int.
template <std::integral T>
requires(sizeof(T) >= sizeof(int)) std::string ToString(T value, bool hexadecimal) {
    using eBits = std::make_unsigned_t<T>;
    const bool negative = value < 0 && !hexadecimal;
    const auto bits = static_cast<eBits>(value);
    const std::string digits =
        ToString(static_cast<unsigned long long>(negative ? eBits{0} - bits : bits), hexadecimal);
    return negative ? '-' + digits : digits;
}

// The shortest text from which an SDL file's number reads back to the same bits, for every finite float: an integer
// ("3"), digits with a point ("0.5", "-0."), or digits with an exponent ("1e10", "15e-4"). Of two equally short texts,
// the one without an exponent is used; an integer text is exactly the value. Values outside the 32-bit integers and
// negative zero are never written as integers. Infinities and NaN, which SDL cannot represent, are "inf", "-inf" and
// "nan".
QZL_BASE_API std::string ToString(float value);

// Room for the text of any number of up to 64 bits.
inline constexpr std::size_t kNumberTextRoom = 24;

// Write the text of ToString to a buffer with room for kNumberTextRoom characters and return the end of the text. No
// zero is appended. Characters after the text, within that room, are overwritten.
QZL_BASE_API char* PutInt(char* out, int value, bool hexadecimal = false);
QZL_BASE_API char* PutFloat(char* out, float value);
// The same for a double: the shortest text from which the same double is read, by the rules of a float's text.
QZL_BASE_API char* PutDouble(char* out, double value);

// --- Texts to numbers ---
//
// The value is that of the longest beginning of the text that is a number, or 0 if there is none. The result is true if
// that is the whole text. White space is not skipped; a null text counts as empty. The forms with begin and end read
// the characters between them, which need no terminating zero.

// Decimal digits with an optional sign, or "0x" and hexadecimal digits of either case without a sign. A decimal number
// out of range gives the nearest int, a hexadecimal one its low 32 bits; the result is false for both.
QZL_BASE_API bool _FromString(int* value, const char* text);
QZL_BASE_API bool _FromString(int* value, const char* begin, const char* end);

// Decimal digits with an optional sign, point and exponent, which give the nearest float: a number too large for a
// float gives an infinity and one too small zero, each with its sign. "0x" and hexadecimal digits give the int that
// they stand for.
QZL_BASE_API bool _FromString(float* value, const char* text);
QZL_BASE_API bool _FromString(float* value, const char* begin, const char* end);

// The same with 64 bits: out of range, a decimal integer gives the nearest value of the type, so a negative one gives 0
// as an unsigned long long, and a hexadecimal one gives its low 64 bits. Of a double, "0x" and hexadecimal digits give
// the nearest to the integer without a sign that they stand for.
QZL_BASE_API bool _FromString(long long* value, const char* begin, const char* end);
QZL_BASE_API bool _FromString(unsigned long long* value, const char* begin, const char* end);
QZL_BASE_API bool _FromString(double* value, const char* begin, const char* end);

// --- Escape sequences ---

// With `escape`, replaces what a quoted SDL string cannot contain by escape sequences: \" \\ \n \r \t, and \xHH with
// two lower-case hexadecimal digits for the other control characters (bytes 0 to 31 and 127). Bytes from 128 up are
// unchanged. Without `escape`, replaces these sequences (\xHH with digits of either case) by their characters; any
// other backslash is unchanged. The second conversion reverses the first for every text.
QZL_BASE_API void ConvertEscSequence(std::string* text, bool escape);

// The number of bytes of the escaped text; text.size() if nothing needs escaping.
QZL_BASE_API std::size_t EscapedSize(std::string_view text);
// Writes the escaped text to a buffer with room for EscapedSize(text) bytes and returns its end. No zero is appended.
QZL_BASE_API char* PutEscaped(char* out, std::string_view text);
// Appends the escaped text to *target, of which `text` must not be a part.
QZL_BASE_API void AppendEscaped(std::string* target, std::string_view text);

// --- Narrow and wide texts ---
//
// Wide texts are UTF-16 or UTF-32, as wchar_t has 2 or 4 bytes. No text makes these functions throw; lack of memory
// does (std::bad_alloc). In a conversion to a wide text each ill-formed part becomes one U+FFFD, and in one to UTF-8
// each lone surrogate and each value that is not a character. In a conversion to another code page each character that
// the page lacks becomes "?".

// Code page 65001 is UTF-8, and 1252 is Windows-1252 (its five unassigned bytes are the control characters of the same
// value); the system defines the others. A code page unknown to the system contains only ASCII. If the system has no
// file descriptor left to find out, an error is reported and the result is empty.
QZL_BASE_API std::wstring StringToWideChar(const std::string& text, int codePage);
QZL_BASE_API std::string WideCharToString(const std::wstring& text, int codePage);

// Conversions from and to UTF-8.
QZL_BASE_API std::wstring ToStringW(const std::string& text);
QZL_BASE_API std::string ToString(const std::wstring& text);
