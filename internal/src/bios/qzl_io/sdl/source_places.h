// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <memory>

#include "sdl/line_finder.h"
#include "sdl/open_blocks.h"

namespace xSDL {

// What is known of the places of one source that have been asked for.
class eSourcePlaces {
public:
    eLineFinder lines;

    eOpenBlocks& Blocks() {
        if (!blocks)
            blocks = std::make_unique<eOpenBlocks>();
        return *blocks;
    }

private:
    std::unique_ptr<eOpenBlocks> blocks; // made when needed: there may be many sources
};

} // namespace xSDL
