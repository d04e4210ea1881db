// SPDX-License-Identifier: BSL-1.0
#pragma once

#include "sdl/current_token.h"

namespace xSDL {

// What a reader checks, and how it reports a failure.
struct eCheck {
    int line; // in the report
    const char* message;
    const char* expected; // in the diagnostic
};

namespace Checks {

inline constexpr eCheck kFileNotSDL{17, "Not SDL file!", "'{'"};
inline constexpr eCheck kWideFileNotSDL{31, kFileNotSDL.message, kFileNotSDL.expected};
inline constexpr eCheck kSignatureNotSDL{526, kFileNotSDL.message, kFileNotSDL.expected};
inline constexpr eCheck kKeyword{266, "unexpected token", "a keyword"};
inline constexpr eCheck kSkippedBlockEnd{292, "Block terminator expected!", "'}'"};
inline constexpr eCheck kBlockEnd{553, kSkippedBlockEnd.message, kSkippedBlockEnd.expected};
inline constexpr eCheck kNumber{308, "Number expected!", "a number"};
inline constexpr eCheck kInteger{317, "Integer expected!", "an integer"};
inline constexpr eCheck kString{336, "String expected!", "a text in quotes"};
inline constexpr eCheck kWideString{344, kString.message, kString.expected};
inline constexpr eCheck kIdentifier{352, "Identifier expected!", "a word"};
inline constexpr eCheck kControlBlockWord{466, "Invalid control block!", "'include', 'define' or 'mod'"};
inline constexpr eCheck kArgumentsEnd{510, "')' required", "')'"};
inline constexpr eCheck kControlBlockEnd{561, "Control Block terminator expected!", "')'"};
inline constexpr eCheck kBlockStart{569, "Block start expected!", "'{'"};
inline constexpr eCheck kControlBlockStart{577, "Control Block start expected!", "'('"};
inline constexpr eCheck kTokenLimit{600, xSDL::kTokenLimit, "a token within the limit"};
inline constexpr eCheck kIncludeLimit{610, "Include limit exceeded!", ""};
inline constexpr eCheck kRest{650, "Text after the end!", "the end of the text"};

} // namespace Checks

} // namespace xSDL
