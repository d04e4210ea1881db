// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>
#include <utility>

#include <qzl_io/streams.h>

#include "support/content.h"

// A stream of the given class that makes its protected members public.
template <class Stream>
class eProbe : public Stream {
public:
    using Stream::Stream;
    eProbe(const eProbe&) = default;
    eProbe(eProbe&&) noexcept = default;
    eProbe& operator=(const eProbe&) = default;
    eProbe& operator=(eProbe&&) noexcept = default;

    using Stream::Dump;
    using Stream::Look;
    using Stream::Place;
    using Stream::PlaceBuffer;
    using Stream::Take;

    unsigned long long BufferSize() const { return this->bufferSize; }
    unsigned long long Offset() const { return this->offset; }
    unsigned short Flags() const { return this->flags; }
    long long Room() const { return this->bufferEnd - this->buffer; }
};

// The protected state of any stream.
class eInside : public IO::eStream {
public:
    static std::string DumpOf(const IO::eStream& stream) { return (stream.*&eInside::Dump)(); }
    static unsigned short FlagsOf(const IO::eStream& stream) { return stream.*&eInside::flags; }
    static unsigned long long BufferSizeOf(const IO::eStream& stream) { return stream.*&eInside::bufferSize; }
};

using eMemory = eProbe<IO::eMemoryStream>;
using eMemoryT = eProbe<IO::eMemoryStream_t>;
using eView = eProbe<IO::eBufferStream>;

template <class Stream>
class eFileProbe : public eProbe<Stream> {
public:
    using eProbe<Stream>::eProbe;
    using Stream::GetLineLength;
    using Stream::WriteStr;
    int Handle() const { return this->handle; }
};

using eFile = eFileProbe<IO::eFileStream>;
using eFileW = eFileProbe<IO::eFileStreamW>;

// A stream on the core alone, over the test's own bytes. It counts the calls of its hooks and keeps their effect.
class eBareStream : public IO::eStream {
public:
    eBareStream(unsigned char* bytes, unsigned long long capacity, unsigned long long used, unsigned short mode) {
        UseBuffer(bytes, capacity, used);
        flags = mode;
    }

    void Flush() override {
        ++flushes;
        eStream::Flush();
    }
    void Overflow() override {
        ++overflows;
        eStream::Overflow();
    }
    void Underflow() override {
        ++underflows;
        eStream::Underflow();
    }

    using eStream::Dump;
    using eStream::Look;
    using eStream::Place;
    using eStream::PlaceBuffer;
    using eStream::Take;

    unsigned long long Offset() const { return offset; }

    int flushes = 0;
    int overflows = 0;
    int underflows = 0;
};

// A memory stream that contains the text, positioned at its start.
inline eMemory Holding(const std::string& text) {
    eMemory stream(256);
    stream.Write(text.data(), text.size());
    stream.Reset();
    return stream;
}
