#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

#include "sdl/lexer.h"

// Any bytes as a text: the fast lexer cuts the same tokens from it as the plain walk of the automaton.

namespace {

struct eCutter {
    bool (*cut)(const char**, int*, xSDL::eLexeme*);
    const char* position;
    int line = 1;
    xSDL::eLexeme token;

    bool Next() {
        token = {};
        return cut(&position, &line, &token);
    }

    // A broken string has a text, too; an error that consumes nothing has none.
    std::string Text() const { return std::string(token.begin ? token.begin : "", token.length); }
};

void Require(bool promise, const char* what, std::ptrdiff_t at) {
    if (promise)
        return;
    std::cerr << what << " differs at byte " << at << '\n';
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = std::string(reinterpret_cast<const char*>(data), size) + std::string(xSDL::kTextEnd, '\0');
    eCutter plain{xSDL::CutByTable, text.data(), 1, {}};
    eCutter fast{xSDL::CutToken, text.data(), 1, {}};
    for (bool more = true; more;) {
        const char* const before = plain.position;
        more = plain.Next();
        const std::ptrdiff_t at = before - text.data();
        Require(fast.Next() == more, "the end", at);
        Require(fast.token.type == plain.token.type, "the type", at);
        Require(fast.position == plain.position, "the read position", at);
        Require(fast.line == plain.line, "the line", at);
        Require(!more || fast.Text() == plain.Text(), "the text", at);
        if (plain.token.type == sdlError && plain.position == before) {
            ++plain.position;
            ++fast.position;
        }
    }
    return 0;
}
