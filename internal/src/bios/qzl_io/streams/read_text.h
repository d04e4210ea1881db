// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string>

#include <qzl_io/streams/stream.h>

namespace IO {

// An empty text with memory for `capacity` bytes.
std::string EmptyText(std::size_t capacity);

// Makes the text the next `size` bytes of the stream, with memory for `room` more. False if they cannot be read, or the
// stream has lost bytes before; the text may then be shorter, or end with bytes that were not read. That an earlier
// call asked for too much does not matter.
bool ReadText(eStream& stream, std::size_t size, std::size_t room, std::string* text);

// Why the stream did not give its bytes; one of an application may not tell.
eFailure FailureOf(const eStream& stream, const char* otherwise);

} // namespace IO
