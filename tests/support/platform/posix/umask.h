// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <sys/stat.h>

// Sets the process's umask for the object's lifetime.
class eUmask {
public:
    explicit eUmask(mode_t mask) : before(::umask(mask)) {}
    ~eUmask() { ::umask(before); }
    eUmask(const eUmask&) = delete;
    eUmask& operator=(const eUmask&) = delete;

private:
    mode_t before;
};
