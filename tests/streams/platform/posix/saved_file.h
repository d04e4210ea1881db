// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <string_view>

#include <sys/stat.h>

#include <qzl_io/streams.h>

#include "support/temp_folder.h"

// For tests of files that are saved in a folder of their own.
class SavedFile : public testing::Test {
protected:
    eFileName Name(const std::string& name) const { return eFileName(folder.Name(name)); }

    bool Save(const std::string& name, std::string_view document) const {
        IO::eSaveFile file(Name(name));
        file.Write(document.data(), document.size());
        return file.Commit();
    }

    std::set<std::string> Entries() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
            names.insert(entry.path().filename().string());
        return names;
    }

    void Clear() const {
        for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
            std::filesystem::remove_all(entry);
    }

    struct stat Facts(const std::string& name) const {
        struct stat facts {};
        EXPECT_EQ(0, ::lstat(folder.Name(name).c_str(), &facts));
        return facts;
    }

    eTempFolder folder;
};
