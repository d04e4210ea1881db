// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Ends a draft; the document has then to be checked before it is received.
struct eJsonDraftEnds {};

// Receives one JSON document in its own order, repeated names included. Texts are UTF-8, with a NUL directly after the
// last character.
class eJsonSink {
public:
    // The events of the document follow, but the text may yet turn out not to be JSON. Nothing may be reported, so an
    // event that would be throws eJsonDraftEnds.
    virtual void BeginDraft() = 0;
    // The whole text is well-formed; all events of its value follow, also those that a draft has had.
    virtual void BeginDocument() = 0;

    virtual void BeginObject() = 0;
    // The events of the member's value follow; until they end, the name stays valid.
    virtual void Name(std::string_view name) = 0;
    virtual void EndObject() = 0;
    virtual void BeginArray() = 0;
    virtual void EndArray() = 0;

    virtual void String(std::string_view text) = 0;
    virtual void Signed(std::int64_t value) = 0; // below zero
    virtual void Unsigned(std::uint64_t value) = 0;
    // A number with a fraction or an exponent, or an integer beyond 64 bits; infinite if it is beyond the doubles.
    virtual void Double(double value) = 0;
    virtual void Bool(bool value) = 0;
    virtual void Null() = 0;
    // A value of a kind that the parser does not report.
    virtual void Unknown() = 0;

protected:
    ~eJsonSink() = default;
};

// Parses a JSON text in UTF-8 and passes the document to the sink. A byte-order mark before the text is skipped. A text
// that is not a JSON document causes no event: an exception is thrown whose what() tells the reason and, if the parser
// knows them, the line and the column. An escaped surrogate without its other half throws std::range_error. Exceptions
// from the sink pass through. Each parser has a source that defines this function; whether ill-formed UTF-8 is refused
// or each such part becomes U+FFFD depends on it.
void FeedJson(std::string text, eJsonSink* sink);

// A text with room for so many more bytes is parsed where it is.
inline constexpr std::size_t kRoomAfterJson = 64;

// The parser that FeedJson calls.
extern const std::string_view kJsonEngine;
