// SPDX-License-Identifier: BSL-1.0
#include "tree.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <vector>

#include "../support/checksum.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

constexpr int kFilesInFolder = 200;
// A walk is little work, and its time depends on the state in which others leave the system's caches.
constexpr int kRepetitionsOfWalk = 45;

int Folders(const eOptions& options) {
    return options.small ? 2 : 100;
}

std::string FolderName(int index) {
    return "folder" + std::to_string(index) + "/";
}

// The tree that is walked and copied: two levels, with a small text in each file.
const std::string& Tree(const eOptions& options) {
    static const std::string name = [&] {
        const std::string made = WorkFile("tree/");
        for (int folder = 0; folder < Folders(options); ++folder) {
            fs::create_directories(made + FolderName(folder));
            for (int file = 0; file < kFilesInFolder; ++file)
                WriteWhole(made + FolderName(folder) + "file" + std::to_string(file) + ".txt",
                           std::string(static_cast<size_t>(file + 1), 'x'));
        }
        return made;
    }();
    return name;
}

// As many empty folders as the tree has files, in the same places.
void MakeEmptyFolders(const std::string& name, const eOptions& options) {
    for (int folder = 0; folder < Folders(options); ++folder)
        for (int inner = 0; inner < kFilesInFolder; ++inner)
            fs::create_directories(name + FolderName(folder) + "empty" + std::to_string(inner));
}

// A number that depends on the names and sizes of everything below the folder.
std::uint64_t SumOfTree(const std::string& folder) {
    std::vector<std::string> entries;
    if (fs::exists(folder))
        for (const auto& entry : fs::recursive_directory_iterator(folder))
            entries.push_back(fs::relative(entry.path(), folder).string() + " " +
                              (entry.is_regular_file() ? std::to_string(entry.file_size()) : "folder"));
    std::ranges::sort(entries);
    eChecksum sum;
    for (const std::string& entry : entries)
        sum.Text(entry);
    return sum.Value();
}

} // namespace

void AddWays(eSuite& suite, const eFolderWays& ways) {
    const eOptions options = suite.Options();
    const double files = Folders(options) * kFilesInFolder;
    const std::string count = std::to_string(Folders(options) * kFilesInFolder);
    const std::string tree = Tree(options);
    const std::string place = WorkFile("services_" + std::to_string(static_cast<int>(ways.kind)));
    const auto row = [&](std::function<void()> before, std::function<std::uint64_t()> pass,
                         std::function<std::uint64_t()> check) {
        return eRow{ways.name, ways.kind, ways.target, 0, before, pass, check};
    };
    eRow walk = row({}, [=] { return ways.walk(tree); }, {});
    walk.repetitions = kRepetitionsOfWalk;
    suite.Add("walk over " + count + " files", files, walk, "file");
    suite.Add("walk over " + count + " files, each one's size asked", files,
              row({}, [=] { return ways.sizes(tree); }, {}), "file");
    const auto changing = [&](const std::string& work, const std::string& folder, std::function<void()> before,
                              std::function<void()> pass, const char* unit = "file") {
        suite.Add(work, files,
                  row(
                      [=] {
                          fs::remove_all(folder);
                          before();
                      },
                      [=] {
                          pass();
                          return 1;
                      },
                      [=] { return SumOfTree(folder); }),
                  unit);
    };
    const std::string copied = place + "_copied/";
    changing(
        "copy of " + count + " files", copied, [] {}, [=] { ways.copy(tree, copied); });
    const std::string removed = place + "_removed/";
    changing(
        "deletion of " + count + " files", removed, [=] { fs::copy(tree, removed, fs::copy_options::recursive); },
        [=] { ways.remove(removed); });
    const std::string purged = place + "_purged/";
    changing(
        "purge of " + count + " empty folders", purged, [=] { MakeEmptyFolders(purged, options); },
        [=] { ways.purge(purged); }, "folder");
}

} // namespace bench
