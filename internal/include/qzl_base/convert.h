#pragma once

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

#include <qzl_base/export.h>

// Conversions between values and texts. Number texts never depend on the locale: "." is the decimal point.

// --- Numbers to texts ---

// Decimal text, or with hexadecimal "0x" and the value's bits in lower-case digits: 31 is "31" or "0x1f", and the
// int -1 is "-1" or "0xffffffff".
QZL_BASE_API std::string ToString(int value, bool hexadecimal);
QZL_BASE_API std::string ToString(unsigned long long value, bool hexadecimal);

// Every other integer type alike; in hexadecimal, the bits that the type has. Smaller ones than int count as int.
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
// ("3"), digits with a point ("0.5", "-0."), or digits with an exponent ("1e10", "15e-4"). Of two equally short texts
// the one without an exponent is taken, and an integer text is the value exactly. Values outside the 32-bit integers
// and negative zero never come out as integer texts. Infinities and NaN, which SDL cannot hold, are "inf", "-inf" and
// "nan".
QZL_BASE_API std::string ToString(float value);

// Room that is enough to put the text of any int and any float.
inline constexpr std::size_t kNumberTextRoom = 24;

// Put the text of ToString into a buffer with room for kNumberTextRoom characters and return its end. No zero is added;
// the characters of that room behind the end are overwritten.
QZL_BASE_API char* PutInt(char* out, int value, bool hexadecimal = false);
QZL_BASE_API char* PutFloat(char* out, float value);

// --- Texts to numbers ---
//
// The value is that of the longest beginning of the text that is a number, 0 when there is none. True when that is the
// whole text. No white space is skipped; a null text counts as empty. The forms with begin and end read the characters
// between them, which need no zero behind them.

// Decimal digits with an optional sign, or "0x" and hexadecimal digits of either case without a sign. A decimal number
// out of range gives the nearest int, a hexadecimal one its low 32 bits; the result is false for both.
QZL_BASE_API bool _FromString(int* value, const char* text);
QZL_BASE_API bool _FromString(int* value, const char* begin, const char* end);

// Decimal digits with an optional sign, point and exponent. Gives the nearest float; a number too large for a float
// gives an infinity and one too small zero, each with its sign. "0x" and hexadecimal digits give the int that they are.
QZL_BASE_API bool _FromString(float* value, const char* text);
QZL_BASE_API bool _FromString(float* value, const char* begin, const char* end);

// --- Escape sequences ---

// With escape, replaces what cannot stand in a quoted SDL string by escape sequences: \" \\ \n \r \t, and \xHH with two
// lower-case hexadecimal digits for the other control characters (bytes 0 to 31 and 127). Bytes from 128 up stay as
// they are. Without escape, replaces those sequences (\xHH with digits of either case) by the characters; any other
// backslash stays as written. The second undoes the first for every text.
QZL_BASE_API void ConvertEscSequence(std::string* text, bool escape);

// Number of bytes of the text once escaped; text.size() when nothing needs escaping.
QZL_BASE_API std::size_t EscapedSize(std::string_view text);
// Puts the escaped text into a buffer with room for EscapedSize(text) bytes and returns its end. No zero is added.
QZL_BASE_API char* PutEscaped(char* out, std::string_view text);
// Appends the escaped text, which must not be a part of *target.
QZL_BASE_API void AppendEscaped(std::string* target, std::string_view text);

// --- Narrow and wide texts ---
//
// Wide texts are UTF-16 or UTF-32, as wchar_t is 2 or 4 bytes wide. No text whatever makes these functions throw (lack
// of memory does, std::bad_alloc): towards wide texts each ill-formed part becomes one U+FFFD; towards UTF-8 each lone
// surrogate or value that is no character does; towards other code pages a character that the page does not have
// becomes "?".

// Code page 65001 is UTF-8, 1252 is Windows-1252 (with its five unassigned bytes as the control characters of the same
// value); others are as the system knows them. In a code page that it does not know, only ASCII is known. Where it has
// no file descriptor left to find out, that is reported as an error, and the result is empty.
QZL_BASE_API std::wstring StringToWideChar(const std::string& text, int codePage);
QZL_BASE_API std::string WideCharToString(const std::wstring& text, int codePage);

// From and to UTF-8.
QZL_BASE_API std::wstring ToStringW(const std::string& text);
QZL_BASE_API std::string ToString(const std::wstring& text);
