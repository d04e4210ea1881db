#pragma once

namespace IO::Platform {

// While one lives, the system asks nobody about what this thread does: a drive that lacks its medium makes a call fail
// and opens no dialog. They nest.
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
