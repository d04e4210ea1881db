// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <qzl_base/diagnostic.h>

namespace xSDL {

// A copy in which each byte that is part of no UTF-8 character is replaced by U+FFFD.
std::string WellFormed(std::string_view text);

// Of a text that may be a whole source, what a message shows: well-formed, and of a long one the beginning.
std::string Abridged(std::string_view text);

xError::eExcerpt PlaceAlone(xError::ePlace place);

// Adds to a place what stands around it in its line, and marks that many bytes from it on. The time does not depend on
// the length of the line. Offsets count from the beginning of the text, which ends at its first zero byte.
xError::eExcerpt ExcerptAt(xError::ePlace place, std::string_view text, std::size_t lineBegin, std::size_t offset,
                           std::size_t length);

} // namespace xSDL
