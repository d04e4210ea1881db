// SPDX-License-Identifier: BSL-1.0
#pragma once

// The reports of a writer. The line numbers identify checks, not places in a file.

namespace xSDL::WriterReport {

inline constexpr const char* kSource = "internal/src/bios/qzl_io/sdl_writer";
inline constexpr int kNotOpenLine = 40;
inline constexpr int kUnknownKeywordLine = 60;
inline constexpr int kInvalidFloatLine = 80;
inline constexpr int kNotSavedLine = 100;

} // namespace xSDL::WriterReport
