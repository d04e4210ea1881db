// SPDX-License-Identifier: BSL-1.0
#pragma once

namespace IO::Platform {

// During its lifetime, the system asks the user nothing on behalf of this thread: a drive that lacks its medium makes a
// call fail and opens no dialog. Objects may nest.
class eUnattended {
public:
    eUnattended() noexcept;
    ~eUnattended();
    eUnattended(const eUnattended&) = delete;
    eUnattended& operator=(const eUnattended&) = delete;

private:
    [[maybe_unused]] unsigned long before = 0;
};

} // namespace IO::Platform
