// SPDX-License-Identifier: BSL-1.0
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include <qzl_io/system.h>

// Copies a folder with all that is in it, tells how far it is, and names what could not be copied. The old backup stays
// until the new one is complete.

namespace File = IO::System::File;
namespace Path = IO::System::Path;

// The folders and files of a tree, by their names within it.
struct eTree {
    std::vector<std::string> folders;
    std::vector<std::string> files;
    unsigned long long bytes = 0;
};

// Links are left out, as what they lead to is elsewhere.
static eTree List(const eFileName& root) {
    eTree tree;
    tree.folders.emplace_back("");
    for (std::size_t at = 0; at < tree.folders.size(); ++at) {
        const eFileName folder(tree.folders[at]);
        IO::eSearch search(root.GetAdd(folder), "*");
        for (const auto& entry : search) {
            if (entry.IsLink())
                continue;
            const eFileName name = folder.GetAdd(entry.Name());
            if (entry.IsSubfolder()) {
                tree.folders.push_back(name.GetPath().str());
            } else if (entry.IsFile()) {
                tree.files.push_back(name.str());
                tree.bytes += entry.Size();
            }
        }
    }
    return tree;
}

// True of the copy tells only that the source exists, so the sizes are compared.
static bool CopyFile(const eFileName& from, const eFileName& to) {
    return File::Copy(from, to) && File::Access(to, File::Exist) && File::Size(to) == File::Size(from);
}

// Returns the names of the files that could not be copied. `progress` is called with the bytes done and all bytes.
template <class eProgress>
static std::vector<std::string> CopyTree(const eFileName& from, const eFileName& to, const eProgress& progress) {
    const eTree tree = List(from);
    for (const std::string& folder : tree.folders)
        Path::Create(to.GetAdd(folder));
    std::vector<std::string> failed;
    unsigned long long done = 0;
    for (const std::string& name : tree.files) {
        if (!CopyFile(from.GetAdd(name), to.GetAdd(name)))
            failed.push_back(name);
        done += File::Size(from.GetAdd(name));
        progress(done, tree.bytes);
    }
    return failed;
}

// Copies beside the old backup, which the new one replaces if nothing is missing in it.
template <class eProgress>
static bool Backup(const eFileName& from, const eFileName& to, const eProgress& progress) {
    const eFileName fresh = to.GetUnpath().GetAdd(".new/");
    Path::Delete(fresh, true);
    const std::vector<std::string> failed = CopyTree(from, fresh, progress);
    for (const std::string& name : failed)
        std::cerr << name << " was not copied\n";
    if (!failed.empty())
        return false;
    Path::Delete(to, true);
    return File::Rename(fresh.GetUnpath(), to.GetUnpath());
}

int main() {
    Path::Create("house/rooms/kitchen/");
    std::ofstream("house/plan.sdl") << "{plan}";
    std::ofstream("house/rooms/kitchen/oven.bin") << std::string(100'000, 'o');

    unsigned long long last = 0;
    unsigned long long all = 0;
    const bool done = Backup("house/", "backup/", [&](unsigned long long now, unsigned long long of) {
        std::cout << now << " of " << of << " bytes\n";
        last = now;
        all = of;
    });
    const bool there = File::Size("backup/plan.sdl") == 6 && File::Size("backup/rooms/kitchen/oven.bin") == 100'000;
    Path::Delete("house/", true);
    Path::Delete("backup/", true);
    return done && there && last == all && all == 100'006 ? 0 : 1;
}
