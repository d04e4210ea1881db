// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cerrno>
#include <utility>

#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace IO::Platform {

// Owns a file descriptor; -1 is none.
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

    // Passes the descriptor to the caller.
    int Release() { return std::exchange(descriptor, -1); }

    // False if the system could not keep what was written; the descriptor is closed even so. It is also closed after an
    // interruption: closing again could close another thread's descriptor.
    bool Close() { return descriptor < 0 || ::close(std::exchange(descriptor, -1)) == 0 || errno == EINTR; }

private:
    int descriptor;
};

// Repeats a call that a signal interrupted. It serves every call that a signal can interrupt on any file system; on
// some, that is nearly every call.
template <class Call>
auto Uninterrupted(Call call) {
    for (;;) {
        const auto result = call();
        if (result >= 0 || errno != EINTR)
            return result;
    }
}

// Opens without waiting for another process, such as the writer of a pipe, and never as the controlling terminal. If
// that makes a difference, the descriptor does not wait either, so that the caller can first check what it has opened.
eDescriptor OpenAtOnce(int folder, const char* name, int flags, mode_t mode = 0) noexcept;

// Makes reads and writes wait from now on. False if the system refuses.
bool LetWait(const eDescriptor& file) noexcept;

// What the system knows about an open file. False, with errno, if it does not tell.
bool AskFacts(int file, struct stat* facts) noexcept;

// The mode of new files, before the umask.
inline constexpr mode_t kNewFileMode = 0666;

} // namespace IO::Platform
