// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>
#include <string_view>

#include <qzl_io/export.h>
#include <qzl_io/file_name.h>
#include <qzl_io/version.h>

#if !QZL_IO_HAS_JSON
#error "This qzl_io was built without JsonToSdl (QZL_JSON=OFF)."
#endif

namespace IO {
class eStream;
}

// Converts the JSON document in the file `input` (UTF-8; a leading byte-order mark is skipped) to an SDL text in the
// file `output`. Members keep the document's order, repeated names included:
//
// - a member becomes a block headed by the member's name, written without quotes whatever characters it contains;
// - an object or array that is an element of an array becomes a block without a name;
// - elements are written one per line; true and false are written as 1 and 0, null as nothing;
// - an integer from -2147483648 to 4294967295 is written as a 32-bit integer (from 2147483648 on as the negative number
//   with the same bits); any other integer within 64 bits is written as 0, with the warning "Json number not parsed
//   correctly.";
// - a number with a fraction or an exponent, or an integer beyond 64 bits, is narrowed to a float; one outside the
//   range of floats is written as 0, with the warning of eSDLWriter;
// - names and strings end at their first NUL character.
//
// The context of a warning about a value names the input and the place of the value, as in /items/3/name. Of a name
// that has more than 100 bytes the beginning is shown.
//
// Returns true if the whole text is in `output`, which it replaces in one step (IO::eSaveFile tells how). Otherwise
// makes one warning, whose message is that of the failure and whose context names the file, and returns false; `output`
// is then unchanged. Input and output may be the same file.
//
// Conversions may run in several threads at once; with cpprestsdk they parse one at a time.
QZL_IO_API bool JsonToSdl(const eFileName& input, const eFileName& output);

// The parser that was chosen when the library was built: "cpprestsdk" or "simdjson". What they accept differs in a few
// points, which docs/json-engines.md lists.
QZL_IO_API std::string_view JsonEngine();

// What is accepted of a JSON document that a stranger wrote. Nothing is limited unless it is set; but the parser
// refuses a great depth in any case, cpprestsdk one of more than 128, simdjson one of more than 1024.
struct eJsonLimits {
    static constexpr unsigned long long kNone = ~0ULL;

    unsigned long long bytes = kNone; // of the file
    unsigned long long depth = kNone; // of objects and arrays within each other: 2 for [[1]]
};

// JsonToSdl of a document within limits. One that exceeds a limit fails before it is read ("Json size limit exceeded!")
// or parsed ("Json depth limit exceeded!").
QZL_IO_API bool JsonToSdlWithin(const eJsonLimits& limits, const eFileName& input, const eFileName& output);

// What of a JSON document its SDL text does not tell, counted value by value.
struct eJsonLosses {
    unsigned long long names = 0;        // of members, which do not read back as one word
    unsigned long long integers = 0;     // beyond -2147483648 to 2147483647, so another number is written
    unsigned long long floats = 0;       // numbers with a fraction or an exponent, rounded to 32 bits
    unsigned long long booleans = 0;     // written as 1 and 0
    unsigned long long nulls = 0;        // elements of arrays, written as nothing
    unsigned long long emptyObjects = 0; // written as empty arrays are
    unsigned long long texts = 0;        // cut at a NUL character
    std::string firstName;               // the place of the first of the names, as in /items/3/name
};

// JsonToSdl from one stream, from its position to its end, to another one, where the text is written at its position
// and flushed. The streams stay the caller's. Unless it is null, `losses` tells what was lost. The context of a warning
// names a "Stream". After false the output has nothing or, if it refused bytes, a part of the text.
QZL_IO_API bool JsonStreamToSdl(IO::eStream& input, IO::eStream& output, eJsonLosses* losses = nullptr,
                                const eJsonLimits& limits = eJsonLimits());
