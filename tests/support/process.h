// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <filesystem>
#include <string>
#include <vector>

// How a program ended.
struct eEnded {
    int code = -1; // -1: it could not be started, or a signal ended it
    std::string output;
    std::string errors;
};

// Runs a program with the arguments (UTF-8) in a folder and waits for its end. Standard input, output and error are
// files elsewhere.
eEnded RunProgram(const std::string& program, const std::vector<std::string>& arguments, const std::string& input,
                  const std::filesystem::path& folder);
