#pragma once

#include <sys/stat.h>

// The process's umask for as long as it lives.
class eUmask {
public:
    explicit eUmask(mode_t mask) : before(::umask(mask)) {}
    ~eUmask() { ::umask(before); }
    eUmask(const eUmask&) = delete;
    eUmask& operator=(const eUmask&) = delete;

private:
    mode_t before;
};
