// SPDX-License-Identifier: BSL-1.0
#include <string>
#include <string_view>

#include "sdl/skip_check.h"

#include "require.h"
#include "target.h"

// Any bytes as the content of a block: skipping it at once ends where cutting its tokens ends.

void Check(std::string_view input) {
    const std::string text(input);
    const eSkipOutcome found = SkipAtOnce(text);
    const eSkipOutcome expected = SkipPlainly(text);
    Require(found.failed == expected.failed, "one way fails");
    Require(found.position == expected.position, "the position differs");
    Require(found.line == expected.line, "the line differs");
    RequireEqual(found.text, expected.text, "the token at the end");
    RequireEqual(found.textBefore, expected.textBefore, "the token before the end");
    Require(found == expected, "the place differs");
}

void Work(std::string_view input) {
    SkipAtOnce(std::string(input));
}
