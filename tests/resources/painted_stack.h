// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <functional>

// The bytes of stack that an action needs, at most kPaintedStack: the memory below the caller's frame is painted before
// and looked at afterwards.
inline constexpr std::size_t kPaintedStack = 512 * 1024;

std::size_t StackOf(const std::function<void()>& action);
