#pragma once

#include "sdl/line_finder.h"
#include "sdl/open_blocks.h"

namespace xSDL {

// What is known of the places of one source that have been asked for.
class eSourcePlaces {
public:
    eLineFinder lines;
    eOpenBlocks blocks;
};

} // namespace xSDL
