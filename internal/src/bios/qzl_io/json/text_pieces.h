#pragma once

#include <deque>
#include <new>

#include <qzl_io/sdl/writer.h>
#include <qzl_io/streams.h>

// A text that is taken from a writer bit by bit. It needs no block of its whole size, so that its pieces find room
// where memory has just been freed; and the C library, which joins small free blocks when a large one is asked for,
// does so while they are still in the cache.
class eTextPieces {
public:
    // Takes what was written since the last time. Throws std::bad_alloc when there is no memory for it.
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
