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

// A walk is little work, and its time depends on the state in which others leave the system's caches.
constexpr int kRepetitionsOfWalk = 45;

struct eTree {
    int folders = 1;
    int filesInFolder = 200;
    const char* shape = "";
    bool deep = false; // each folder is in the one before

    std::string Of(const char* entries) const { return std::to_string(Files()) + entries + shape; }
    int Files() const { return folders * filesInFolder; }

    // The folders' names below the tree's own, each with a trailing "/".
    std::vector<std::string> Folders() const {
        std::vector<std::string> names;
        for (int folder = 0; folder < folders; ++folder)
            names.push_back((deep && folder > 0 ? names.back() : "") + "folder" + std::to_string(folder) + "/");
        return names;
    }
};

std::vector<eTree> Trees(const eOptions& options) {
    if (options.small)
        return {{2}};
    const char* const flat = " in one folder";
    const char* const deep = " 100 folders deep";
    std::vector<eTree> trees = {{1}, {100}, {1, 20'000, flat}, {100, 200, deep, true}};
    if (options.full)
        trees.insert(trees.end(), {{1'000}, {1, 200'000, flat}, {100, 2'000, deep, true}});
    return trees;
}

// Makes the tree that is walked and copied, if it is not there yet, with a small text in each file.
void Make(const eTree& tree, const std::string& made) {
    constexpr int kLongest = 200;
    if (fs::exists(made))
        return;
    for (const std::string& folder : tree.Folders()) {
        fs::create_directories(made + folder);
        for (int file = 0; file < tree.filesInFolder; ++file)
            WriteWhole(made + folder + "file" + std::to_string(file) + ".txt",
                       std::string(static_cast<size_t>(file % kLongest + 1), 'x'));
    }
}

// As many empty folders as the tree has files, in the same places.
void MakeEmptyFolders(const std::string& name, const eTree& tree) {
    for (const std::string& folder : tree.Folders()) {
        fs::create_directories(name + folder);
        for (int inner = 0; inner < tree.filesInFolder; ++inner)
            fs::create_directory(name + folder + "empty" + std::to_string(inner));
    }
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

void AddWaysOf(const eTree& tree, eSuite& suite, const eFolderWays& ways) {
    const double files = tree.Files();
    const std::string place = WorkFile("services_" + std::to_string(static_cast<int>(ways.kind)));
    const std::string whole = WorkFile("tree of " + tree.Of(" files") + "/");
    const auto add = [&](const std::string& work, std::function<void()> before, std::function<std::uint64_t()> pass,
                         std::function<std::uint64_t()> check, int repetitions = 0, const char* unit = "file") {
        if (!suite.Wants(work))
            return;
        Make(tree, whole);
        eRow row{ways.name, ways.kind, ways.target, 0, before, pass, check};
        row.isCommand = ways.isCommand;
        row.repetitions = repetitions;
        suite.Add(work, files, row, unit);
    };
    const auto change = [&](const std::string& work, const std::string& folder, std::function<void()> before,
                            std::function<void()> pass, const char* unit = "file") {
        const auto start = [=] {
            fs::remove_all(folder);
            before();
        };
        const auto counted = [=] {
            pass();
            return std::uint64_t{1};
        };
        add(
            work, start, counted, [=] { return SumOfTree(folder); }, 0, unit);
    };
    if (ways.walk)
        add(
            "walk over " + tree.Of(" files"), {}, [=] { return ways.walk(whole); },
            ways.walked ? [=] { return ways.walked(whole); } : std::function<std::uint64_t()>(), kRepetitionsOfWalk);
    if (ways.sizes)
        add("walk over " + tree.Of(" files") + ", each one's size asked", {}, [=] { return ways.sizes(whole); }, {});
    if (const std::string copied = place + "_copied/"; ways.copy)
        change(
            "copy of " + tree.Of(" files"), copied, [] {}, [=] { ways.copy(whole, copied); });
    if (const std::string removed = place + "_removed/"; ways.remove)
        change(
            "deletion of " + tree.Of(" files"), removed, [=] { fs::copy(whole, removed, fs::copy_options::recursive); },
            [=] { ways.remove(removed); });
    if (const std::string purged = place + "_purged/"; ways.purge)
        change(
            "purge of " + tree.Of(" empty folders"), purged, [=] { MakeEmptyFolders(purged, tree); },
            [=] { ways.purge(purged); }, "folder");
}

} // namespace

void AddWays(eSuite& suite, const eFolderWays& ways) {
    for (const eTree& tree : Trees(suite.Options()))
        AddWaysOf(tree, suite, ways);
}

} // namespace bench
