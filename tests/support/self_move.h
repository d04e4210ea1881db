#pragma once

#include <utility>

// Assigns a value to itself by moving, under a second name so that no compiler warns of it.
template <class T>
void MoveOntoItself(T& value) {
    T& same = value;
    value = std::move(same);
}
