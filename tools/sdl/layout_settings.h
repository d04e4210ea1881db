// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <filesystem>

#include <qzl_io/sdl/layout.h>

// The file .sdlformat, which tells how the documents in its folder and below it are laid out.

inline constexpr int kWidestIndent = 16;

// Takes what the file .sdlformat says that is nearest to a document: in its folder, or else above; nothing if there is
// none. A setting that makes no sense is shown; then, and if the file cannot be read, throws eTrouble.
void TakeSettings(const std::filesystem::path& document, eSDLLayout* layout);
