#pragma once

#include <string>

#include <sys/stat.h>

#include "platform/posix/real_place.h"

namespace IO::Platform {

// What a copy takes of a file's mode.
inline constexpr mode_t kPermissionBits = 0777;

// A file in the making, beside the one whose place it is to take in one step. Unless it took the place it is removed.
class eReplacement {
public:
    // The place's folder must outlive it. Not open where the folder takes no new file; then errno tells why.
    eReplacement(const eRealPlace& target, mode_t mode);
    ~eReplacement();
    eReplacement(const eReplacement&) = delete;
    eReplacement& operator=(const eReplacement&) = delete;

    bool IsOpen() const { return file.IsOpen(); }
    int Get() const { return file.Get(); }

    // Takes owner, permissions and attributes of the file that is to be replaced. False where not all may be had that
    // tell who may do what.
    bool Resemble(int replaced, const struct stat& facts);

    // Closes the file and takes the place, whatever is there. False, with errno, when the system refuses.
    bool TakePlace();

private:
    const eRealPlace& place;
    std::string name;
    eDescriptor file;
    bool pending = false;
};

} // namespace IO::Platform
