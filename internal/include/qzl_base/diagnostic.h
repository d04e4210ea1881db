// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <qzl_base/export.h>

namespace xError {

// A place in a text.
struct ePlace {
    std::string source;            // the text's name, as a rule a file's; empty if it has none
    unsigned long long offset = 0; // bytes before it, a byte-order mark included
    int line = 1;                  // counted from 1, by line feeds
    int column = 1;                // in characters, counted from 1; a byte that is part of none counts as one
    int byteColumn = 1;            // in bytes, counted from 1; a byte-order mark is not part of a line

    bool operator==(const ePlace&) const = default;
};

// A place with the text around it.
struct eExcerpt {
    ePlace place;
    std::string text;          // the place's line without its end, in well-formed UTF-8; of a long line the part around
                               // the place. A byte that is part of no character is U+FFFD
    std::size_t markBegin = 0; // the bytes of the text that are meant; equal: only where they would begin
    std::size_t markEnd = 0;
    bool beginIsCut = false; // whether the line begins before the text, and whether it goes on behind it
    bool endIsCut = false;
};

// What is wrong in a text, in parts that a program can use. Names of sources, and the message, are as they are
// elsewhere; the other texts are well-formed UTF-8. All may contain any character of the source, control characters
// included.
struct eDiagnostic {
    // What another place has to do with it: where the block begins that is not closed.
    struct eNote {
        std::string message;
        eExcerpt excerpt; // without a text and a source's name if it is about no place
    };

    enum class eSeverity { Error, Warning };

    eSeverity severity = eSeverity::Error;
    std::string message;              // one sentence, without the place
    eExcerpt excerpt;                 // where it is wrong
    std::string expected;             // what should stand there, such as "an integer"; may be empty
    std::string found;                // what stands there, such as "the word 'fast'"; may be empty
    std::string suggestion;           // the right word that is nearest to the one found; may be empty
    std::vector<eNote> notes;         // other places
    std::vector<ePlace> includedFrom; // for an included source: where it was included, innermost first
};

// Whether a rendered text contains the escape sequences by which a terminal shows colours.
enum class eColors : bool { Without, With };

// The diagnostic as a compiler shows it, in lines that end with a line feed: what is wrong and where (a source without
// a name is called <text>), the line, a caret below the place, and what else is known:
//
//     scene.sdl:3:12: error: Invalid block identifier!
//       3 |     {lihgt "lamp 1"}
//         |      ^~~~~
//       expected a block's keyword, found the word 'lihgt'
//       did you mean 'light'?
//     scene.sdl:1:1: note: The block begins here.
//       1 | {scene
//         | ^
//       included from main.sdl:4:12
//
// The caret is right on a terminal that shows wide characters in two columns and combining ones in none. No control
// character of a source or its name is in the result, nor any that changes the direction of writing: each is shown by
// its number, as <U+001B>, and tabs as blanks up to the next column that is a multiple of 4. Of many includes, the
// innermost eight are shown.
QZL_BASE_API std::string Render(const eDiagnostic& diagnostic, eColors colors = eColors::Without);

} // namespace xError
