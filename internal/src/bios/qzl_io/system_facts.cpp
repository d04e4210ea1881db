// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/system/system_facts.h>

#include <cstddef>

#include "machine/windows_name.h"
#include "platform/machine.h"
#include "platform/pure/assignments.h"
#include "platform/pure/sha256.h"

namespace IO::System {

namespace {

// What names a system that says nothing of itself.
constexpr char kUnnamed[] = "Linux";

std::string Distribution(const std::string& osRelease) {
    const std::string name = AssignedTo("PRETTY_NAME", osRelease);
    return name.empty() ? AssignedTo("NAME", osRelease) : name;
}

std::string HashedId(const std::string& application, const std::string& id) {
    constexpr std::size_t kBytes = 16;
    constexpr char kDigits[] = "0123456789abcdef";
    const eHash hash = KeyedSha256(application, id);
    std::string text;
    for (std::size_t at = 0; at < kBytes; ++at)
        (text += kDigits[hash[at] >> 4]) += kDigits[hash[at] & 15];
    return text;
}

} // namespace

eSystemFacts SystemFacts(const std::string& application) {
    const Platform::eMachineFacts told = Platform::AskMachine();
    const Platform::eSystemVersion version = Platform::SystemVersion();
    eSystemFacts facts;
    facts.version = told.release;
    if (version.major != 0) {
        facts.name = WindowsName(version.major, version.minor, version.build, version.server);
        facts.build = version.build;
        facts.version =
            std::to_string(version.major) + '.' + std::to_string(version.minor) + '.' + std::to_string(version.build);
    } else {
        facts.name = kUnnamed;
    }
    facts.distribution = Distribution(told.osRelease);
    facts.architecture = told.architecture;
    facts.machineArchitecture = told.machineArchitecture;
    facts.processors = told.processors;
    facts.memory = told.memory;
    facts.machineId =
        told.idIsConfidential && !told.machineId.empty() ? HashedId(application, told.machineId) : told.machineId;
    return facts;
}

} // namespace IO::System
