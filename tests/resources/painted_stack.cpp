// SPDX-License-Identifier: BSL-1.0
#include "painted_stack.h"

#include <algorithm>

namespace {

constexpr unsigned char kPaint = 0xA5;

// Compilers do not see that what is passed comes back.
volatile unsigned char* volatile passed;

// Paints the stack below the caller's frame, or returns how much of it from the top has been used since.
[[gnu::noinline]] std::size_t Visit(bool paints) {
    unsigned char room[kPaintedStack];
    passed = room;
    volatile unsigned char* const bytes = passed;
    if (paints)
        std::fill(bytes, bytes + kPaintedStack, kPaint);
    return kPaintedStack -
           static_cast<std::size_t>(
               std::find_if(bytes, bytes + kPaintedStack, [](unsigned char byte) { return byte != kPaint; }) - bytes);
}

} // namespace

std::size_t StackOf(const std::function<void()>& action) {
    Visit(true);
    action();
    return Visit(false);
}
