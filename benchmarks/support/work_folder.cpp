// SPDX-License-Identifier: BSL-1.0
#include "work_folder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <system_error>

#include "../platform/process.h"

namespace bench {
namespace {

constexpr size_t kRoomWanted = size_t{4} << 30;

// New, with a name that nobody can guess: the place may be everybody's.
class eFolder {
public:
    eFolder() {
        const char* chosen = std::getenv("QZL_BENCH_FOLDER");
        const std::string place = chosen ? chosen : platform::FastFolder(kRoomWanted);
        std::random_device random;
        do
            name = place + "/qzl_bench_" + std::to_string(random()) + "/";
        while (!std::filesystem::create_directory(name));
        std::filesystem::permissions(name, std::filesystem::perms::owner_all);
    }
    ~eFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(name, ignored);
    }
    eFolder(const eFolder&) = delete;
    eFolder& operator=(const eFolder&) = delete;

    std::string name;
};

} // namespace

const std::string& WorkFolder() {
    static const eFolder folder;
    return folder.name;
}

void WriteWhole(const std::string& file, const std::string& bytes) {
    std::ofstream out(file, std::ios::binary);
    if (!out.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush())
        throw std::runtime_error("cannot write " + file);
}

std::string ReadWhole(const std::string& file) {
    std::string bytes(std::filesystem::file_size(file), '\0');
    std::ifstream in(file, std::ios::binary);
    if (!in.read(bytes.data(), static_cast<std::streamsize>(bytes.size())))
        throw std::runtime_error("cannot read " + file);
    return bytes;
}

} // namespace bench
