// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string>

#include <qzl_io/streams/stream.h>

namespace IO {

// An empty text with memory for `capacity` bytes.
std::string EmptyText(std::size_t capacity);

// The next `size` bytes of the stream, in a text with memory for `room` more. If the stream is or becomes bad, the text
// may be shorter, or end with bytes that were not read.
std::string ReadText(eStream& stream, std::size_t size, std::size_t room);

} // namespace IO
