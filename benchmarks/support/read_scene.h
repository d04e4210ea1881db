// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>

#include <cstdint>
#include <string_view>

#include "documents.h"
#include "keywords.h"
#include "sum_scene.h"

namespace bench {

// The checksum of the values of a document in memory, with a reader of its own.
inline std::uint64_t ReadScene(eDocument document, std::string_view text, const eSDLLimits& limits = {}) {
    IO::eBufferStream stream(text);
    eSDLReader reader(&stream, nullptr, limits);
    reader.PushKeywords(SceneKeywords());
    reader.GetBlock(wordScene);
    const std::uint64_t sum = SumScene(document, reader);
    reader >> endb;
    return sum;
}

} // namespace bench
