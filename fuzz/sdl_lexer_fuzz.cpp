// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <string>
#include <string_view>

#include "sdl/lexer.h"

#include "require.h"
#include "target.h"

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

std::string TextOf(std::string_view input) {
    return std::string(input) + std::string(xSDL::kTextEnd, '\0');
}

} // namespace

void Check(std::string_view input) {
    const std::string text = TextOf(input);
    eCutter plain{xSDL::CutByTable, text.data(), 1, {}};
    eCutter fast{xSDL::CutToken, text.data(), 1, {}};
    for (bool more = true; more;) {
        const char* const before = plain.position;
        more = plain.Next();
        Require(fast.Next() == more, "the end differs");
        Require(fast.token.type == plain.token.type, "the type differs");
        Require(fast.position == plain.position, "the read position differs");
        Require(fast.line == plain.line, "the line differs");
        if (more)
            RequireEqual(fast.Text(), plain.Text(), "the token");
        if (plain.token.type == sdlError && plain.position == before) {
            ++plain.position;
            ++fast.position;
        }
    }
}

void Work(std::string_view input) {
    const std::string text = TextOf(input);
    eCutter fast{xSDL::CutToken, text.data(), 1, {}};
    for (const char* before = fast.position; fast.Next(); before = fast.position)
        if (fast.position == before)
            ++fast.position;
}
