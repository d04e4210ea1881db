// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <utility>

// Move-assigns a value to itself, under a second name so that no compiler warns.
template <class T>
void MoveOntoItself(T& value) {
    T& same = value;
    value = std::move(same);
}
