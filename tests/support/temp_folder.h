// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

#include <gtest/gtest.h>

// A new empty folder for one test, removed with all its content on destruction. It fails the test if the content cannot
// be removed, for example because a file is still open on a system that locks open files.
class eTempFolder {
public:
    explicit eTempFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path())
        : path(MakeFolder(parent)) {}

    ~eTempFolder() {
        std::error_code error;
        std::filesystem::remove_all(path, error);
        EXPECT_FALSE(error) << path.string() << ": " << error.message();
        EXPECT_FALSE(std::filesystem::exists(path, error)) << path.string();
    }

    eTempFolder(const eTempFolder&) = delete;
    eTempFolder& operator=(const eTempFolder&) = delete;

    const std::filesystem::path& Path() const { return path; }

    // The full name of a file or folder, with forward slashes; `name` is relative to this folder. The name of the
    // folder itself ends in "/".
    std::string Name() const { return path.generic_string() + "/"; }
    std::string Name(std::string_view name) const { return Name() + std::string(name); }
    std::wstring NameW() const { return path.generic_wstring() + L"/"; }
    std::wstring NameW(std::wstring_view name) const { return NameW() + std::wstring(name); }

    // Creates or replaces a file, byte for byte, and its folder if that is missing. Returns the file's full name.
    std::string Write(std::string_view name, std::string_view bytes) const {
        std::filesystem::create_directories((path / name).parent_path());
        std::ofstream file(path / name, std::ios::binary | std::ios::trunc);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        EXPECT_TRUE(file.flush()) << name;
        return Name(name);
    }

    // All bytes of a file; fails the test if the file cannot be read.
    std::string Read(std::string_view name) const {
        std::ifstream file(path / name, std::ios::binary | std::ios::ate);
        EXPECT_TRUE(file) << name;
        std::string bytes(file ? static_cast<std::size_t>(file.tellg()) : 0, '\0');
        file.seekg(0).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        EXPECT_EQ(file.gcount(), static_cast<std::streamsize>(bytes.size())) << name;
        return bytes;
    }

    bool Exists(std::string_view name) const { return std::filesystem::exists(path / name); }

private:
    static std::filesystem::path MakeFolder(const std::filesystem::path& parent) {
        static std::atomic<unsigned> counter = 0;
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        for (;;) {
            const auto name = "qzl_test_" + std::to_string(now) + "_" + std::to_string(++counter);
            const auto folder = parent / name;
            if (std::filesystem::create_directory(folder))
                return folder;
        }
    }

    std::filesystem::path path;
};
