// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <ostream>

#include <qzl_base/diagnostic.h>

namespace xError {

inline std::ostream& operator<<(std::ostream& out, const ePlace& place) {
    return out << place.source << ':' << place.line << ':' << place.column << " (byte " << place.byteColumn << "), at "
               << place.offset;
}

} // namespace xError
