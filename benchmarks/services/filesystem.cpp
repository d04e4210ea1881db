// SPDX-License-Identifier: BSL-1.0
#include <cstdint>
#include <filesystem>
#include <string>
#include <system_error>

#include "tree.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

std::uint64_t Walk(const std::string& folder) {
    std::uint64_t sum = 0;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file()) {
            const std::string& name = entry.path().native();
            sum += static_cast<unsigned char>(name[name.rfind('/') + 1]) + 1u;
        }
    return sum;
}

std::uint64_t Sizes(const std::string& folder) {
    std::uint64_t sum = 0;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            sum += entry.file_size();
    return sum;
}

void PurgeBelow(const fs::path& folder) {
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.is_directory()) {
            PurgeBelow(entry.path());
            std::error_code ignored;
            fs::remove(entry.path(), ignored);
        }
}

void Copy(const std::string& from, const std::string& to) {
    fs::copy(from, to, fs::copy_options::recursive);
}

void Remove(const std::string& folder) {
    fs::remove_all(folder);
}

void Purge(const std::string& folder) {
    PurgeBelow(folder);
}

const eContender contender(1, [](eSuite& suite) {
    AddWays(suite, {"std::filesystem", eKind::Peer, 1.0, Walk, Sizes, Copy, Remove, Purge});
});

} // namespace
} // namespace bench
