#pragma once

#include <string>

#include <sys/stat.h>

#include "platform/posix/real_place.h"

namespace IO::Platform {

// The bits of a file's mode that a copy takes over.
inline constexpr mode_t kPermissionBits = 0777;

// A temporary file beside the target that it will replace in one step. It is removed unless it has replaced the target.
class eReplacement {
public:
    // Creates the file. The folder of the target must outlive it. It is not open if the folder takes no new file; errno
    // then tells why.
    eReplacement(const eRealPlace& target, mode_t mode);
    ~eReplacement();
    eReplacement(const eReplacement&) = delete;
    eReplacement& operator=(const eReplacement&) = delete;

    bool IsOpen() const { return file.IsOpen(); }
    int Get() const { return file.Get(); }

    // Copies owner, permissions and attributes of the file that is to be replaced. False if any of those that control
    // access could not be copied.
    bool Resemble(int replaced, const struct stat& facts);

    // Closes the file and replaces the target, whatever is there. False, with errno, if the system refuses.
    bool TakePlace();

private:
    const eRealPlace& place;
    std::string name;
    eDescriptor file;
    bool pending = false;
};

} // namespace IO::Platform
