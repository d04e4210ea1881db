#pragma once

#include <ostream>

#include <qzl_io/streams.h>

// Calls of the hooks that a derived class may override.
struct eHookCalls {
    int truncs = 0;
    int flushes = 0;
    int overflows = 0;
    int underflows = 0;
    int skips = 0;

    bool operator==(const eHookCalls&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const eHookCalls& calls) {
    return out << calls.truncs << " Trunc, " << calls.flushes << " Flush, " << calls.overflows << " Overflow, "
               << calls.underflows << " Underflow, " << calls.skips << " Skip";
}

// A stream of the given class, its hooks counted.
template <class Stream>
class eCounted : public Stream {
public:
    using Stream::Stream;

    void Trunc() override {
        ++calls.truncs;
        Stream::Trunc();
    }
    void Flush() override {
        ++calls.flushes;
        Stream::Flush();
    }
    void Overflow() override {
        ++calls.overflows;
        Stream::Overflow();
    }
    void Underflow() override {
        ++calls.underflows;
        Stream::Underflow();
    }
    IO::eStream& Skip(unsigned long long n) override {
        ++calls.skips;
        return Stream::Skip(n);
    }

    eHookCalls calls;
};
