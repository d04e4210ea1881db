// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include <qzl_io/export.h>

class eSDLDocument;

// How a document is laid out:
//
//     eSDLLayout layout;
//     layout.indent = 4;
//     const std::string text = layout.Format(document);
struct QZL_IO_API eSDLLayout {
    static constexpr int kTab = -1;

    int indent = kTab; // blanks for each level; negative: a tab
    bool crLf = true;  // lines end with CR LF

    // The document's text, laid out anew: its items and comments stand on the lines on which they stood, each line is
    // indented by the blocks that it is in, but at most by 64 of them, one blank or " = " stands between two items, and
    // of several empty lines one is left. Strings, comments and control blocks stay as they are, and so does what
    // follows a NUL. The result has the same values and comments, and formatting it again changes nothing. The document
    // must have no errors; of one that has, the result may read differently.
    std::string Format(const eSDLDocument& document) const;
};
