// SPDX-License-Identifier: BSL-1.0
#include <cstdint>
#include <string>

#include <qzl_io/system.h>

#include "tree.h"

namespace bench {
namespace {

template <class T>
std::uint64_t ForEachFile(const eFileName& folder, T each) {
    std::uint64_t sum = 0;
    for (IO::eSearch search(folder, eFileName("*.*")); search.Valid(); search.Next())
        if (search.IsFile())
            sum += each(search);
        else if (search.IsSubfolder())
            sum += ForEachFile(eFileName(std::string(folder.c_str()) + search.Name() + "/"), each);
    return sum;
}

std::uint64_t Walk(const std::string& folder) {
    return ForEachFile(eFileName(folder), [](const IO::eSearch& search) {
        return static_cast<unsigned char>(search.Name()[0]) + std::uint64_t{1};
    });
}

std::uint64_t Sizes(const std::string& folder) {
    return ForEachFile(eFileName(folder), [](const IO::eSearch& search) { return std::uint64_t{search.Size()}; });
}

void Copy(const std::string& from, const std::string& to) {
    IO::System::Path::Copy(eFileName(from), eFileName(to));
}

void Remove(const std::string& folder) {
    IO::System::Path::Delete(eFileName(folder), true);
}

void Purge(const std::string& folder) {
    IO::System::Path::PurgeEmpty(eFileName(folder));
}

const eContender contender(0, [](eSuite& suite) {
    AddWays(suite, {"IO::eSearch and IO::System::Path", eKind::Ours, 0, Walk, Sizes, Copy, Remove, Purge});
});

} // namespace
} // namespace bench
