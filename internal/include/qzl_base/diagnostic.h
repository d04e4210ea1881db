#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace xError {

// A place in a text.
struct ePlace {
    std::string source;            // the text's name, as a rule a file's; empty if it has none
    unsigned long long offset = 0; // bytes before it, a byte-order mark included
    int line = 1;                  // counted from 1, by line feeds
    int column = 1;                // in characters, counted from 1; a byte that is part of none counts as one
    int byteColumn = 1;            // in bytes, counted from 1
};

// A place with the text around it.
struct eExcerpt {
    ePlace place;
    std::string text;          // the place's line without its end, in well-formed UTF-8; of a long line the part around
                               // the place
    std::size_t markBegin = 0; // the bytes of the text that are meant; equal: only where they would begin
    std::size_t markEnd = 0;
};

// What is wrong in a text, in parts that a program can use.
struct eDiagnostic {
    // What another place has to do with it: where the block begins that is not closed.
    struct eNote {
        std::string message;
        eExcerpt excerpt;
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

} // namespace xError
