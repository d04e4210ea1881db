// SPDX-License-Identifier: BSL-1.0
#include "../process.h"

#include <malloc.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
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

std::string FastFolder(size_t room) {
    std::error_code failed;
    const auto space = std::filesystem::space("/dev/shm", failed);
    if (!failed && space.available > room && access("/dev/shm", W_OK) == 0)
        return "/dev/shm";
    return std::filesystem::temp_directory_path();
}

} // namespace bench::platform
