// SPDX-License-Identifier: BSL-1.0
#pragma once

// A number greater than 0 that belongs to the calling thread for the life of the program and is never reused.
unsigned long long ThreadNumber() noexcept;
