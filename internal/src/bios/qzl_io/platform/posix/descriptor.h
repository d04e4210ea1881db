#pragma once

#include <cerrno>
#include <utility>

#include <unistd.h>

namespace IO::Platform {

/// Owns a file descriptor, -1 being none.
class eDescriptor {
public:
    explicit eDescriptor(int opened = -1) : descriptor(opened) {}
    eDescriptor(eDescriptor&& other) noexcept : descriptor(std::exchange(other.descriptor, -1)) {}
    eDescriptor& operator=(eDescriptor&& other) noexcept {
        if (this != &other) {
            Close();
            descriptor = std::exchange(other.descriptor, -1);
        }
        return *this;
    }
    ~eDescriptor() { Close(); }

    bool IsOpen() const { return descriptor >= 0; }
    int Get() const { return descriptor; }

    /// An interrupted close has closed all the same; trying again could close another thread's descriptor.
    void Close() {
        if (descriptor >= 0)
            ::close(std::exchange(descriptor, -1));
    }

private:
    int descriptor;
};

/// Repeats a call that a signal interrupted.
template <class Call>
auto Uninterrupted(Call call) {
    for (;;) {
        const auto result = call();
        if (result >= 0 || errno != EINTR)
            return result;
    }
}

} // namespace IO::Platform
