// SPDX-License-Identifier: BSL-1.0
#include "../process.h"

#include <fcntl.h>
#include <malloc.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace bench::platform {
namespace {

// The number of kilobytes after a name such as "VmHWM:" in the process's status, in bytes.
size_t StatusBytes(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (size_t kilobytes = 0; word == name && status >> kilobytes)
            return kilobytes * 1024;
    return 0;
}

std::string Quoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

} // namespace

std::string ProcessorName() {
    std::ifstream info("/proc/cpuinfo");
    for (std::string line; std::getline(info, line);)
        if (line.starts_with("model name"))
            return line.substr(line.find(": ") + 2);
    return "unknown processor";
}

unsigned ProcessorCount() {
    return std::thread::hardware_concurrency();
}

size_t Resident() {
    return StatusBytes("VmRSS:");
}

size_t Peak() {
    return StatusBytes("VmHWM:");
}

bool ResetPeak() {
    malloc_trim(0);
    std::ofstream control("/proc/self/clear_refs");
    return static_cast<bool>(control << "5" << std::flush);
}

void ReturnLargeBlocks() {
    constexpr int kInitialThreshold = 128 * 1024;
    mallopt(M_MMAP_THRESHOLD, kInitialThreshold);
}

std::string RunSelf(const std::vector<std::string>& arguments) {
    std::string command = Quoted(std::filesystem::read_symlink("/proc/self/exe"));
    for (const std::string& each : arguments)
        command += " " + Quoted(each);
    const std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), pclose);
    std::string text;
    std::array<char, 256> piece;
    while (output && fgets(piece.data(), static_cast<int>(piece.size()), output.get()))
        text += piece.data();
    return text;
}

void RunCommand(const std::vector<std::string>& words, const std::string& output) {
    std::vector<char*> arguments;
    for (const std::string& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    pid_t process = 0;
    const int refused = posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (refused != 0)
        throw std::system_error(refused, std::generic_category(), words[0]);
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR)
        continue;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw std::runtime_error(words[0] + " has failed");
}

double SecondsOfCommands() {
    rusage used = {};
    getrusage(RUSAGE_CHILDREN, &used);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return seconds(used.ru_utime) + seconds(used.ru_stime);
}

std::string FastFolder(size_t room) {
    std::error_code failed;
    const auto space = std::filesystem::space("/dev/shm", failed);
    if (!failed && space.available > room && access("/dev/shm", W_OK) == 0)
        return "/dev/shm";
    return std::filesystem::temp_directory_path();
}

} // namespace bench::platform
