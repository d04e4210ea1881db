// SPDX-License-Identifier: BSL-1.0
#include <iostream>
#include <new>

#include <qzl_io/streams.h>

// A memory stream whose bytes come from operator new[].
class eNewStream : public IO::eMemoryStream {
public:
    using eMemoryStream::eMemoryStream;
    eNewStream(const eNewStream&) = default;
    eNewStream& operator=(const eNewStream&) = default;
    // At this point the hooks are still those of this class.
    ~eNewStream() override { ReleaseBuffer(); }

protected:
    unsigned char* AllocateBuffer(unsigned long long size) const override {
        return new (std::nothrow) unsigned char[size];
    }
    void DeallocateBuffer(unsigned char*& block) const override {
        delete[] block;
        block = nullptr;
    }
};

int main() {
    eNewStream stream(16); // the first 16 bytes come from eMemoryStream and go back there
    for (int i = 0; i < 1000; ++i)
        stream << i;
    eNewStream copy(stream); // shares the bytes until one of the two grows
    copy << "and a text";
    std::cout << stream.Size() << " and " << copy.Size() << " bytes\n";
}
