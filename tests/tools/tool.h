// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/long_tests.h"
#include "support/process.h"
#include "support/temp_folder.h"
#include "support/wine.h"

// The messages without the warning that the disk does not tell its serial number, as in a container.
inline std::string WithoutDiskWarning(const std::string& errors) {
    return std::regex_replace(errors, std::regex("sdl: eHDDInfo: obtain serialNumber failure\\([0-9]+\\)\r?\n"), "");
}

// Runs the program `sdl` in a folder of its own.
class Tool : public testing::Test {
protected:
    // Under Wine a program takes a quarter of a second to start.
    static bool StartsSlowly() { return IsUnderWine() && !LongTests(); }

    // The rows of a table of which each is a run of its own: where programs start slowly, one in three.
    template <class eRow, std::size_t count>
    static std::vector<eRow> Sampled(const eRow (&table)[count]) {
        std::vector<eRow> rows;
        for (std::size_t row = 0; row < count; row += StartsSlowly() ? 3u : 1u)
            rows.push_back(table[row]);
        return rows;
    }

    eEnded Run(const std::vector<std::string>& arguments, const std::string& input = {}) const {
        return RunProgram(QZL_SDL_PROGRAM, arguments, input, folder.Path());
    }

    // What a run that must succeed without a message prints.
    std::string OutputOf(const std::vector<std::string>& arguments, const std::string& input = {}) const {
        const eEnded ended = Run(arguments, input);
        EXPECT_EQ(ended.code, 0);
        EXPECT_EQ(ended.errors, "");
        return ended.output;
    }

    // A run that must fail, with this code and a message that contains the text.
    void Refuses(int code, std::string_view message, const std::vector<std::string>& arguments,
                 const std::string& input = {}) const {
        const eEnded ended = Run(arguments, input);
        EXPECT_EQ(ended.code, code) << testing::PrintToString(arguments);
        EXPECT_THAT(ended.errors, testing::HasSubstr(std::string(message))) << testing::PrintToString(arguments);
    }

    eTempFolder folder;
};

// For what is the same on both systems and takes many runs.
class ToolAtLength : public Tool {
protected:
    void SetUp() override {
        if (StartsSlowly())
            GTEST_SKIP() << "many runs of a program are slow under Wine; it runs there with QZL_LONG_TESTS=1";
    }
};
