// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <deque>
#include <new>

#include <qzl_io/sdl/writer.h>
#include <qzl_io/streams.h>

// A text taken from a writer in pieces. It needs no block of its whole size, so its pieces fit into memory that has
// just been freed. And when the C library is asked for a large block, it joins small free ones, which are then still in
// the cache.
class eTextPieces {
public:
    // Takes what has been written since the last call. Throws std::bad_alloc if there is no memory for it.
    void Take(eSDLWriter::eWriteStream* text) {
        IO::eMemoryStream& piece = pieces.emplace_back(0, kRoomStep);
        text->Flush(&piece, nullptr);
        if (piece.Enabled(IO::StreamMode::Bad))
            throw std::bad_alloc();
    }

    void WriteTo(IO::eStream* target) const {
        for (const IO::eMemoryStream& piece : pieces)
            target->Write(piece.Buffer(), piece.Size());
    }

private:
    static constexpr unsigned long long kRoomStep = 4096;

    std::deque<IO::eMemoryStream> pieces;
};
