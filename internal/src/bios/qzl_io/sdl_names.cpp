// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/names.h>

#include <algorithm>

#include "qzl_base/shared/ascii.h"

bool xSDL::IsSameWord(std::string_view left, std::string_view right) noexcept {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return ascii::ToLower(a) == ascii::ToLower(b); });
}
