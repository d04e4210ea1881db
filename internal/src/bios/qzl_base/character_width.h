// SPDX-License-Identifier: BSL-1.0
#pragma once

namespace unicode {

// The columns that a terminal gives a character: 0 for one that is combined with the character before or not shown, 2
// for a wide one, otherwise 1. Independent of the locale. The character is not a control character.
int WidthOf(char32_t code);

} // namespace unicode
