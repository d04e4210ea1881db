// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include <sys/stat.h>

#include "platform/posix/real_place.h"

namespace IO::Platform {

// The bits of a file's mode that a copy takes over.
inline constexpr mode_t kPermissionBits = 0777;
// The mode of a replacement until it gets that of the file it replaces.
inline constexpr mode_t kOwnersAlone = 0600;

// A temporary file beside the target that it will replace in one step. It is named after the target, and locked while
// it is in use: a file of that name that is not locked was left by a program that was killed, and the next replacement
// of the same target removes it. The file is removed unless it has replaced the target or was kept.
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
    const std::string& Name() const { return name; }

    // Copies owner, permissions and attributes of the file that is to be replaced. False if any of those that control
    // access could not be copied.
    bool Resemble(int replaced, const struct stat& facts);

    // Takes the place, whatever is there. False, with errno, when the system refuses.
    bool TakePlace();

    // Keeps the file under a name that no replacement removes: the target's with ".unsaved" after it, and a number if
    // that exists. False, with errno, if the system refuses; the file then stays under its temporary name.
    bool Keep();
    // Removes the file, kept or not.
    void Discard();

private:
    bool Create(mode_t mode);
    bool LockOwn();
    bool RemoveLeftOver();
    bool Names(int opened) const;

    const eRealPlace& place;
    std::string name;
    eDescriptor file;
    bool pending = false;
};

} // namespace IO::Platform
