// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include <qzl_io/sdl/document.h>

// How a document is laid out.
struct eLayout {
    static constexpr int kTab = -1;

    int indent = kTab; // blanks for each level
    bool crLf = true;  // lines end with CR LF
};

// The document's text, laid out anew: its items and comments stand on the lines on which they stood, each line is
// indented by the blocks that it is in, one blank or " = " stands between two items, and of several empty lines one is
// left. Strings, comments and control blocks stay as they are, and so does what follows a NUL. The result has the same
// values and comments, and formatting it again changes nothing. The document must have no errors.
std::string Formatted(const eSDLDocument& document, const eLayout& layout);
