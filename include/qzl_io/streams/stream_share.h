#pragma once

#include <memory>
#include <utility>

#include <qzl_io/export.h>

namespace IO {

// Counts the owners of something that copies of an object share (a buffer, a handle, a stream). Copying it makes the
// copy another owner; whoever lets go asks Sole() first and releases the thing only then. It costs nothing until the
// first copy is made. Like the streams, it serves one thread at a time.
class QZL_IO_API eShare {
public:
    eShare() noexcept = default;
    eShare(const eShare& other) : owners(other.Joined()) {}
    eShare(eShare&& other) noexcept : owners(std::move(other.owners)) {}
    ~eShare() = default;

    eShare& operator=(const eShare& other) {
        owners = other.Joined();
        return *this;
    }
    eShare& operator=(eShare&& other) noexcept {
        owners = std::move(other.owners);
        return *this;
    }

    // True when nobody else owns the thing.
    bool Sole() const noexcept { return owners.use_count() <= 1; }
    // No longer an owner of what was shared; the sole owner of what comes next.
    void Leave() noexcept { owners.reset(); }

private:
    std::shared_ptr<const char> Joined() const {
        if (!owners)
            owners = std::make_shared<const char>('\0');
        return owners;
    }

    mutable std::shared_ptr<const char> owners; // empty while there has been no copy
};

} // namespace IO
