// SPDX-License-Identifier: BSL-1.0
#pragma once

namespace xSDL {

// One step of arithmetic such as (+ 1 2 3).
inline float Combined(char operation, float left, float right) {
    switch (operation) {
    case '+':
        return left + right;
    case '-':
        return left - right;
    case '*':
        return left * right;
    default:
        return left / right;
    }
}

} // namespace xSDL
