// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string>

#include <qzl_io/streams.h>

// All bytes of a stream in memory, whatever its position.
inline std::string Content(const IO::eStream& stream) {
    return {reinterpret_cast<const char*>(stream.Buffer()), static_cast<std::size_t>(stream.Size())};
}
