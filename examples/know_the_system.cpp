// SPDX-License-Identifier: BSL-1.0
#include <iostream>

#include <qzl_io/system.h>

// What a program asks when it starts for the first time: on which system it is, where its files belong, and whether
// there is room for them.
int main() {
    using namespace IO::System;
    const eSystemFacts facts = SystemFacts("know_the_system");
    std::cout << facts.name << ' ' << facts.version << ", " << facts.machineArchitecture << ", " << facts.processors
              << " processors, " << (facts.memory >> 20) << " MiB\n";
    if (facts.architecture != facts.machineArchitecture)
        std::cout << "emulated: there may be a faster version of this program\n";

    // A folder of its own in the one that all applications share. Wide names reach every folder on Windows.
    eFileNameW settings = UserFolderW(eUserFolder::Settings);
    settings.Add(L"know_the_system/");
    std::cout << "settings: " << NameToUtf8(settings) << '\n';

    eSpace space;
    const eFileName temporary = UserFolder(eUserFolder::Temporary);
    if (!GetSpace(temporary, &space))
        return 1;
    std::cout << "free in " << NameToUtf8(temporary) << ": " << (space.free >> 20) << " MiB\n";
    return facts.name.empty() || facts.processors == 0 ? 1 : 0;
}
