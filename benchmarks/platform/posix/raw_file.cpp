// SPDX-License-Identifier: BSL-1.0
#include "../raw_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace bench::platform {
namespace {

template <class T>
T Checked(T result) {
    if (result < 0)
        throw std::system_error(errno, std::generic_category());
    return result;
}

} // namespace

eRawFile::eRawFile(const char* name, eUse use)
    : handle(
          Checked(open(name, use == Reading ? O_RDONLY | O_CLOEXEC : O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644))) {
}

eRawFile::~eRawFile() {
    close(handle);
}

size_t eRawFile::Size() const {
    struct stat status;
    Checked(fstat(handle, &status));
    return static_cast<size_t>(status.st_size);
}

size_t eRawFile::Read(void* to, size_t size) const {
    size_t got = 0;
    while (got < size) {
        const ssize_t part = Checked(read(handle, static_cast<char*>(to) + got, size - got));
        if (part == 0)
            break;
        got += static_cast<size_t>(part);
    }
    return got;
}

void eRawFile::Write(const void* from, size_t size) const {
    for (size_t put = 0; put < size;)
        put += static_cast<size_t>(Checked(write(handle, static_cast<const char*>(from) + put, size - put)));
}

} // namespace bench::platform
