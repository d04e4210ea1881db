// SPDX-License-Identifier: BSL-1.0
#include "../raw_folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string>
#include <system_error>

namespace bench::platform {
namespace {

int Checked(long result) {
    if (result < 0)
        throw std::system_error(errno, std::generic_category());
    return static_cast<int>(result);
}

// A folder's open listing, without the entries "." and "..".
class eListing {
public:
    explicit eListing(int handle) : listing(fdopendir(Checked(handle))) {}
    ~eListing() { closedir(listing); }
    eListing(const eListing&) = delete;
    eListing& operator=(const eListing&) = delete;

    const dirent* Next() {
        const dirent* entry = readdir(listing);
        while (entry && (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0))
            entry = readdir(listing);
        return entry;
    }
    int Handle() const { return dirfd(listing); }

private:
    DIR* listing;
};

int OpenFolder(int in, const char* name) {
    return openat(in, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

template <class T>
std::uint64_t ForEachFile(int handle, T each) {
    eListing listing(handle);
    std::uint64_t sum = 0;
    while (const dirent* entry = listing.Next())
        sum += entry->d_type == DT_DIR ? ForEachFile(OpenFolder(listing.Handle(), entry->d_name), each)
                                       : each(listing.Handle(), entry->d_name);
    return sum;
}

void CopyBytes(int from, int to) {
    std::array<char, 32768> block;
    for (long got; (got = read(from, block.data(), block.size())) != 0;)
        for (long put = 0; put < Checked(got);)
            put += Checked(write(to, block.data() + put, static_cast<size_t>(got - put)));
}

void CopyFile(int fromFolder, int toFolder, const char* name) {
    const int from = Checked(openat(fromFolder, name, O_RDONLY | O_CLOEXEC));
    struct stat status;
    Checked(fstat(from, &status));
    const int to = Checked(openat(toFolder, name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, status.st_mode & 0777));
    CopyBytes(from, to);
    close(to);
    close(from);
}

void CopyFolder(int from, int to) {
    eListing listing(from);
    while (const dirent* entry = listing.Next())
        if (entry->d_type == DT_DIR) {
            Checked(mkdirat(to, entry->d_name, 0777));
            CopyFolder(OpenFolder(listing.Handle(), entry->d_name), Checked(OpenFolder(to, entry->d_name)));
        } else
            CopyFile(listing.Handle(), to, entry->d_name);
    close(to);
}

void Empty(int folder) {
    eListing listing(folder);
    while (const dirent* entry = listing.Next()) {
        if (entry->d_type == DT_DIR)
            Empty(OpenFolder(listing.Handle(), entry->d_name));
        Checked(unlinkat(listing.Handle(), entry->d_name, entry->d_type == DT_DIR ? AT_REMOVEDIR : 0));
    }
}

void Purge(int folder) {
    eListing listing(folder);
    while (const dirent* entry = listing.Next())
        if (entry->d_type == DT_DIR) {
            Purge(OpenFolder(listing.Handle(), entry->d_name));
            unlinkat(listing.Handle(), entry->d_name, AT_REMOVEDIR);
        }
}

} // namespace

std::uint64_t WalkByHand(const std::string& folder) {
    return ForEachFile(OpenFolder(AT_FDCWD, folder.c_str()),
                       [](int, const char* name) { return static_cast<unsigned char>(name[0]) + std::uint64_t{1}; });
}

std::uint64_t SizesByHand(const std::string& folder) {
    return ForEachFile(OpenFolder(AT_FDCWD, folder.c_str()), [](int in, const char* name) {
        struct stat status;
        Checked(fstatat(in, name, &status, AT_SYMLINK_NOFOLLOW));
        return static_cast<std::uint64_t>(status.st_size);
    });
}

void CopyByHand(const std::string& from, const std::string& to) {
    Checked(mkdir(to.c_str(), 0777));
    CopyFolder(OpenFolder(AT_FDCWD, from.c_str()), Checked(OpenFolder(AT_FDCWD, to.c_str())));
}

void DeleteByHand(const std::string& folder) {
    Empty(OpenFolder(AT_FDCWD, folder.c_str()));
    Checked(rmdir(folder.c_str()));
}

void PurgeByHand(const std::string& folder) {
    Purge(OpenFolder(AT_FDCWD, folder.c_str()));
}

} // namespace bench::platform
