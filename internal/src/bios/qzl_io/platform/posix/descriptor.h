#pragma once

#include <cerrno>
#include <utility>

#include <sys/types.h>
#include <unistd.h>

namespace IO::Platform {

// Owns a file descriptor, -1 being none.
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

    // The descriptor becomes the caller's.
    int Release() { return std::exchange(descriptor, -1); }

    // False when the system could not keep what was written; closed it is all the same. So is an interrupted close:
    // trying again could close another thread's descriptor.
    bool Close() { return descriptor < 0 || ::close(std::exchange(descriptor, -1)) == 0 || errno == EINTR; }

private:
    int descriptor;
};

// Repeats a call that a signal interrupted. Every call is made through it that a signal can interrupt on any file
// system, and on some that is nearly every call.
template <class Call>
auto Uninterrupted(Call call) {
    for (;;) {
        const auto result = call();
        if (result >= 0 || errno != EINTR)
            return result;
    }
}

// Opens without waiting for anybody, such as the writer of a pipe, and never as the terminal that controls the
// process. The descriptor does not wait either where that makes a difference: what it stands for is to be looked at
// first.
eDescriptor OpenAtOnce(int folder, const char* name, int flags, mode_t mode = 0) noexcept;

// Reads and writes wait from now on. False where the system refuses.
bool LetWait(const eDescriptor& file) noexcept;

} // namespace IO::Platform
