// SPDX-License-Identifier: BSL-1.0
#include "platform/posix/real_place.h"

#include <cerrno>
#include <climits>
#include <cstddef>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace IO::Platform {

eDescriptor OpenPlace(int folder, const char* name) {
    return eDescriptor(Uninterrupted([=] { return ::openat(folder, name, O_PATH | O_DIRECTORY | O_CLOEXEC); }));
}

std::optional<eRealPlace> RealPlace(ePlace place) {
    constexpr int kMostLinks = 40;
    eRealPlace real{eDescriptor(), place.name};
    int begin = place.folder;
    for (int followed = 0; followed <= kMostLinks; ++followed) {
        const std::size_t cut = real.name.rfind('/') + 1;
        const std::string above = cut == 0 ? "." : real.name.substr(0, cut);
        real.name.erase(0, cut);
        real.folder = OpenPlace(begin, above.c_str());
        if (!real.folder.IsOpen() || real.name.empty())
            return {};
        begin = real.folder.Get();
        std::vector<char> text(PATH_MAX);
        const ssize_t length =
            Uninterrupted([&] { return ::readlinkat(begin, real.name.c_str(), text.data(), text.size()); });
        if (length < 0 && (errno == EINVAL || errno == ENOENT))
            return real;
        if (length < 0)
            return {};
        real.name.assign(text.data(), static_cast<std::size_t>(length));
    }
    errno = ELOOP;
    return {};
}

bool StandsAt(ePlace place, const struct stat& facts) {
    struct stat there {};
    const auto ask = [&] { return ::fstatat(place.folder, place.name, &there, AT_SYMLINK_NOFOLLOW); };
    return Uninterrupted(ask) == 0 && there.st_dev == facts.st_dev && there.st_ino == facts.st_ino;
}

} // namespace IO::Platform
