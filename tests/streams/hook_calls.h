// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include <qzl_io/streams.h>

// Records calls of the virtual hooks in order: the first letter of each, and the position of the stream at the call
// ("F12 O12 U12 ").
class eHookCalls {
public:
    void Note(char hook, unsigned long long position) { text += hook + std::to_string(position) + " "; }
    void Clear() { text.clear(); }

    const std::string& Text() const { return text; }

private:
    std::string text;
};

// A stream of the given class that records the calls of its hooks.
template <class Stream>
class eNoting : public Stream {
public:
    using Stream::Stream;

    void Trunc() override {
        calls.Note('T', this->Position());
        Stream::Trunc();
    }
    void Flush() override {
        calls.Note('F', this->Position());
        Stream::Flush();
    }
    void Overflow() override {
        calls.Note('O', this->Position());
        Stream::Overflow();
    }
    void Underflow() override {
        calls.Note('U', this->Position());
        Stream::Underflow();
    }
    IO::eStream& Skip(unsigned long long n) override {
        calls.Note('S', this->Position());
        return Stream::Skip(n);
    }

    eHookCalls calls;
};
