// SPDX-License-Identifier: BSL-1.0
#include <cstdint>
#include <fstream>
#include <string>

#include "../platform/process.h"
#include "tree.h"

// The system's own commands, whose time includes that of starting them.

namespace bench {
namespace {

using platform::RunCommand;

std::uint64_t Walk(const std::string& folder) {
    RunCommand({"find", folder, "-type", "f"});
    return 0;
}

std::uint64_t Walked(const std::string& folder) {
    const std::string names = WorkFile("names");
    RunCommand({"find", folder, "-type", "f", "-printf", "%f\\n"}, names);
    std::uint64_t sum = 0;
    std::ifstream lines(names);
    for (std::string name; std::getline(lines, name);)
        sum += static_cast<unsigned char>(name[0]) + 1U;
    return sum;
}

void Copy(const std::string& from, const std::string& to) {
    RunCommand({"cp", "-r", from, to});
}

void Remove(const std::string& folder) {
    RunCommand({"rm", "-r", folder});
}

void Purge(const std::string& folder) {
    RunCommand({"find", folder, "-mindepth", "1", "-type", "d", "-empty", "-delete"});
}

const eContender contender(3, [](eSuite& suite) {
    AddWays(suite, {.name = "find",
                    .kind = eKind::Peer,
                    .target = 1.0,
                    .walk = Walk,
                    .purge = Purge,
                    .isCommand = true,
                    .walked = Walked});
    AddWays(suite, {.name = "rm -r", .kind = eKind::Peer, .target = 1.0, .remove = Remove, .isCommand = true});
    AddWays(suite, {.name = "cp -r", .kind = eKind::Peer, .target = 0.8, .copy = Copy, .isCommand = true});
});

} // namespace
} // namespace bench
