// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <system_error>

// A folder of its own for the files of a target, removed at the end of the program unless a finding ends it.
class eWorkFolder {
public:
    eWorkFolder() {
        std::random_device random;
        do
            path = std::filesystem::temp_directory_path() / ("qzl_fuzz_" + std::to_string(random()));
        while (!std::filesystem::create_directory(path));
    }
    ~eWorkFolder() {
        std::error_code error;
        std::filesystem::remove_all(path, error);
    }
    eWorkFolder(const eWorkFolder&) = delete;
    eWorkFolder& operator=(const eWorkFolder&) = delete;

    std::string Name(std::string_view file) const { return path.generic_string() + '/' + std::string(file); }

    // Creates or replaces a file. Returns its full name.
    std::string Write(std::string_view file, std::string_view bytes) const {
        std::ofstream(Name(file), std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return Name(file);
    }

    std::string Read(std::string_view file) const {
        std::ifstream stream(Name(file), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

private:
    std::filesystem::path path;
};
