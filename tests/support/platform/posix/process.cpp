// SPDX-License-Identifier: BSL-1.0
#include "support/process.h"

#include <fstream>
#include <iterator>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace {

std::string ContentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

eEnded RunProgram(const std::string& program, const std::vector<std::string>& arguments, const std::string& input,
                  const std::filesystem::path& folder) {
    const eTempFolder streams;
    const auto in = streams.Path() / "input";
    const auto out = streams.Path() / "output";
    const auto error = streams.Path() / "errors";
    std::ofstream(in, std::ios::binary) << input;

    std::vector<char*> texts = {const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments)
        texts.push_back(const_cast<char*>(argument.c_str()));
    texts.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, in.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, error.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
    pid_t child = 0;
    const int refused = posix_spawn(&child, program.c_str(), &actions, nullptr, texts.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    EXPECT_EQ(refused, 0) << program;
    if (refused != 0)
        return {};
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ContentOf(out), ContentOf(error)};
}
