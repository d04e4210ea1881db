// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

// The kinds of token of an SDL text.
enum eSDLParserLexType : int {
    sdlError = -1,     // a character that begins no token, or a string broken by an end of line
    sdlNone = 0,       // nothing: the end of the text
    sdlIdent = 1,      // letters, digits and _ after a letter, _ or %; not in the current keyword table
    sdlKeyword = 2,    // a word like sdlIdent that is in the current keyword table
    sdlString = 3,     // "text"
    sdlBlockStart = 4, // { and the mark that directly follows it, as in {#mark
    sdlBlockEnd = 5,   // }
    sdlBlockId = 6,    // a keyword that was read as the identifier of a block
    sdlOpen = 7,       // ( of a control block
    sdlClose = 8,      // ) of a control block
    sdlNumber = 9,     // only to ask for: sdlInt or sdlFloat
    sdlFloat = 10,     // a number with a fraction or an exponent
    sdlInt = 11,       // an integer, decimal or hexadecimal
    sdlHex = 12,       // an integer beginning with 0x, returned as sdlInt
    sdlOperator = 13   // * or /, or a + or - that no digit follows
};

// One token. Values belong to the types named after them; for other types they keep what they held before.
struct eSDLParserToken {
    eSDLParserLexType type = sdlNone;
    std::string text;     // as in the source; of a string the characters between the quotes, of a block start its mark,
                          // of a hexadecimal integer its decimal text
    float floatValue = 0; // sdlFloat, sdlInt
    int intValue = 0;     // sdlInt; sdlFloat, truncated and kept within an int; sdlKeyword and sdlBlockId: the id
};

// A place in a text, and the token before it.
struct eSDLParserState {
    eSDLParserToken token;
    int line = 1;                   // counted from 1
    const char* position = nullptr; // what is read next; null: no state
};
