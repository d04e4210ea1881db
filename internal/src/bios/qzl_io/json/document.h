#pragma once

#include <string>

#include <cpprest/json.h>

// The JSON parser's texts are UTF-8 on one system and UTF-16 on another; above this header they are UTF-8.

// Parses a whole JSON text in UTF-8; a byte-order mark before it is skipped, and each ill-formed part becomes U+FFFD.
// Members keep their order, repeated names included. Throws whatever the parser throws, and std::range_error for an
// escaped surrogate without its other half, which the parser takes or refuses as the system has it.
web::json::value ParseJson(std::string text);

// A name or string of a parsed document as UTF-8; a reference where it is UTF-8 already.
inline const std::string& JsonTextToUtf8(const std::string& text) {
    return text;
}
std::string JsonTextToUtf8(const std::wstring& text);
