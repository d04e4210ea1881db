// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string_view>

// What a fuzz target NAME_fuzz.cpp defines. engine.cpp passes it the inputs.

// Compares what the library makes of the input with a plain model, and ends the program where they differ (require.h).
void Check(std::string_view input);

// Lets the library alone work on the input, which may have a megabyte, in time that grows with its size only.
void Work(std::string_view input);
