// SPDX-License-Identifier: BSL-1.0
#include <iostream>
#include <string>

#include <qzl_io/streams.h>
#include <qzl_io/system.h>

namespace File = IO::System::File;
namespace Path = IO::System::Path;

// Copies a tree, shows how far it has come, and tells what could not be copied.
static bool BackUp(const eFileName& from, const eFileName& to) {
    unsigned long long shown = 0;
    IO::System::eTreeTask task;
    task.progress = [&](const IO::System::eTreeProgress& at) {
        const unsigned long long percent = at.all.bytes == 0 ? 0 : at.now.bytes * 100 / at.all.bytes;
        if (!at.counting && percent >= shown + 25)
            std::cout << (shown = percent) << " %\n";
        return true; // false would cancel
    };
    const IO::System::eTreeResult result = Path::CopyTree(from, to, task);
    for (const auto& failure : result.failures)
        std::cerr << failure.name.str() << ": " << failure.reason.text << '\n';
    std::cout << result.done.files << " files of " << result.done.bytes << " bytes, " << result.failed << " failures\n";
    return static_cast<bool>(result);
}

int main() {
    Path::Create("backup_example/data/pictures");
    for (const char* const name : {"scene.sdl", "pictures/sun.bin", "pictures/moon.bin"}) {
        const eFileName file("backup_example/data/" + std::string(name));
        IO::eFileStream stream(file, IO::StreamMode::Write | IO::StreamMode::Create);
        stream.Write(std::string(10'000, 'x').data(), 10'000);
    }

    if (!BackUp("backup_example/data", "backup_example/new"))
        return 1;

    unsigned long long bytes = 0;
    for (const auto& entry : IO::eTreeSearch("backup_example/new", {"*.sdl", "*.bin"})) {
        std::cout << entry.Path() << '\n';
        bytes += entry.Size();
    }

    // A folder that is missing is a failure with a reason.
    const bool told = !BackUp("backup_example/missing", "backup_example/old");

    const bool replaced = File::Replace("backup_example/new/scene.sdl", "backup_example/data/scene.sdl");
    const bool cleaned = static_cast<bool>(Path::DeleteTree("backup_example"));
    return bytes == 30'000 && told && replaced && cleaned ? 0 : 1;
}
