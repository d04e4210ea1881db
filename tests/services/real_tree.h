// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>

#include "support/temp_folder.h"

#include "widths.h"

// A test on a real tree, once for each width. Names passed to helpers are relative to the test's folder.
template <class Width>
class eRealTree : public testing::Test {
public:
    using Text = typename Width::Text;
    using Name = typename Width::Name;

protected:
    eRealTree() = default;
    // Creates the test's folder in `parent`.
    explicit eRealTree(const std::filesystem::path& parent) : temp(parent) {}

    std::filesystem::path At(std::string_view relative) const { return temp.Path() / relative; }
    Name Named(std::string_view relative) const { return Name(Width::OfPath(At(relative))); }
    Name Folder(std::string_view relative) const { return Named(relative).GetPath(); }

    void MakeFile(std::string_view relative, std::string_view content = "content") const {
        temp.Write(relative, content);
    }
    void MakeFolder(std::string_view relative) const { std::filesystem::create_directories(At(relative)); }

    std::string Content(std::string_view relative) const { return temp.Read(relative); }

    bool Exists(std::string_view relative) const {
        std::error_code error;
        return std::filesystem::symlink_status(At(relative), error).type() != std::filesystem::file_type::not_found;
    }

    // Everything below a folder, sorted; folders end in "/".
    std::vector<std::string> Tree(std::string_view relative) const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(At(relative))) {
            const bool isFolder = !entry.is_symlink() && entry.is_directory();
            names.push_back(entry.path().lexically_relative(At(relative)).generic_string() + (isFolder ? "/" : ""));
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    eTempFolder temp;
};

using eNames = std::vector<std::string>;
