// SPDX-License-Identifier: BSL-1.0
// A second process exchanges the folders of a tree for links, and its files for second names, while the tree is
// deleted, copied and purged: nothing outside the tree changes, and nothing from there comes in.

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <new>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/fast_folder.h"
#include "support/long_tests.h"

#include "../../real_tree.h"

namespace {

namespace fs = std::filesystem;

constexpr char kOutsideText[] = "precious";
constexpr char kPlantedName[] = "planted"; // outside, a file that gets second names

// A folder tree with branches, one chain deeper than the number of folders that a walk holds open, and empty folders.
// The names are the same in every tree, so that each way out of one leads to something of the same name outside.
std::vector<std::string> FolderNames() {
    std::vector<std::string> names;
    for (const char* const first : {"a", "b"})
        for (const char* const second : {"", "/c", "/d", "/c/e", "/d/e"})
            names.push_back(std::string(first) + second);
    std::string deep = "deep";
    for (int level = 0; level < 30; ++level, deep += "/x")
        names.push_back(deep);
    return names;
}

const std::vector<std::string> kFolders = FolderNames();
constexpr std::array<const char*, 2> kFiles = {"file", "other"};

void MakeTree(const fs::path& root, const std::string& text) {
    for (const std::string& folder : kFolders) {
        fs::create_directories(root / folder / "empty");
        for (const char* const name : kFiles)
            if (FILE* const file = std::fopen((root / folder / name).c_str(), "wb")) {
                std::fwrite(text.data(), 1, text.size(), file);
                std::fclose(file);
            }
    }
}

std::string ContentOf(const fs::path& file) {
    std::array<char, 64> bytes{};
    const int opened = ::open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    const ssize_t count = ::read(opened, bytes.data(), bytes.size());
    ::close(opened);
    return std::string(bytes.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
}

// Everything below a folder: names, and of each what a change to it would change, as text.
using eFacts = std::map<std::string, std::string>;

eFacts FactsOf(const fs::path& root) {
    eFacts facts;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        struct stat told {};
        ::lstat(entry.path().c_str(), &told);
        std::ostringstream text;
        text << std::oct << told.st_mode << std::dec << ", links " << told.st_nlink << ", written "
             << told.st_mtim.tv_sec << "." << told.st_mtim.tv_nsec << ", content "
             << (S_ISREG(told.st_mode) ? ContentOf(entry.path()) : "");
        facts[entry.path().lexically_relative(root).string()] = text.str();
    }
    return facts;
}

// What is in only one of the two.
std::string Difference(const eFacts& before, const eFacts& after) {
    std::string shown;
    for (const auto& [name, fact] : before)
        if (const auto now = after.find(name); now == after.end() || now->second != fact)
            shown += name + ": " + fact + (now == after.end() ? " is gone" : " became " + now->second) + "\n";
    for (const auto& [name, fact] : after)
        if (before.count(name) == 0)
            shown += name + ": " + fact + " is new\n";
    return shown;
}

// What the two processes share.
struct eShared {
    std::atomic<bool> wanted = false; // that the tree is disturbed
    std::atomic<bool> active = false;
    std::atomic<unsigned long long> folders = 0; // exchanged for links
    std::atomic<unsigned long long> files = 0;   // names planted where a copy is about to create a file
};

// A name in its folder, reached through no link: the disturbing process itself must not be led out of the tree by what
// has become of its links.
struct eInTree {
    eInTree(int all, const std::string& path) : name(path.substr(path.rfind('/') + 1)) {
        open_how how{};
        how.flags = O_PATH | O_DIRECTORY | O_CLOEXEC;
        how.resolve = RESOLVE_NO_SYMLINKS | RESOLVE_BENEATH;
        const std::string above = path == name ? "." : path.substr(0, path.size() - name.size() - 1);
        parent = static_cast<int>(::syscall(SYS_openat2, all, above.c_str(), &how, sizeof(how)));
    }
    ~eInTree() { ::close(parent); }
    eInTree(const eInTree&) = delete;
    eInTree& operator=(const eInTree&) = delete;

    bool IsOpen() const { return parent >= 0; }

    int parent;
    std::string name;
};

// Runs in a process of its own until it is killed. Each disturbance is undone, as far as what was disturbed is still
// there, so that the tree is never led out of for long and the next one finds something to exchange.
class eDisturber {
public:
    eDisturber(const fs::path& allTrees, eShared* both) : folder(allTrees), shared(both) {}

    [[noreturn]] void Run() {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        for (;;) {
            if (!shared->wanted) {
                shared->active = false;
                ::usleep(20);
                continue;
            }
            shared->active = true;
            const std::string root = random() % 2 == 0 ? "tree" : "copy";
            if (random() % 8 == 0)
                PlantFile(root);
            else
                ExchangeFolder(root);
        }
    }

private:
    static constexpr char kSpare[] = "spare";

    const std::string& AnyFolder() { return kFolders[random() % kFolders.size()]; }

    // The link leads to the same place outside, where each name that was found before would be found again.
    void ExchangeFolder(const std::string& root) {
        const bool whole = random() % 16 == 0;
        const std::string folderName = whole ? root : root + "/" + AnyFolder();
        const eInTree place(all, folderName);
        // A copy may begin at a link, so what its root leads to may come in.
        const std::string outside = whole ? "elsewhere" : "outside" + folderName.substr(root.size());
        if (!place.IsOpen() || ::symlinkat((folder / outside).c_str(), all, kSpare) != 0)
            return;
        if (::renameat2(all, kSpare, place.parent, place.name.c_str(), RENAME_EXCHANGE) == 0) {
            ++shared->folders;
            // As short as possible, or long enough for a walk to meet it.
            const std::chrono::microseconds pause(random() % 2 == 0 ? random() % 100 : 0);
            const auto until = std::chrono::steady_clock::now() + pause;
            while (std::chrono::steady_clock::now() < until) {
            }
            if (::renameat2(all, kSpare, place.parent, place.name.c_str(), RENAME_EXCHANGE) != 0)
                ::renameat(all, kSpare, place.parent, place.name.c_str());
        }
        std::error_code gone;
        fs::remove_all(folder / kSpare, gone);
    }

    void PlantFile(const std::string& root) {
        const eInTree place(all, root + "/" + AnyFolder() + "/" + kFiles[random() % kFiles.size()]);
        const fs::path outside = folder / "outside" / kPlantedName;
        if (!place.IsOpen())
            return;
        const bool planted = random() % 2 == 0
                                 ? ::symlinkat(outside.c_str(), place.parent, place.name.c_str()) == 0
                                 : ::linkat(AT_FDCWD, outside.c_str(), place.parent, place.name.c_str(), 0) == 0;
        if (planted)
            ++shared->files;
    }

    fs::path folder;
    const int all = ::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    eShared* shared;
    std::minstd_rand random{1};
};

template <class Width>
class LinkSwap : public eRealTree<Width> {
protected:
    LinkSwap() : eRealTree<Width>(FastFolder()), shared(Map()), disturber(::fork()) {
        if (disturber == 0)
            eDisturber(this->At(""), shared).Run();
        MakeTree(this->At("outside"), kOutsideText);
        MakeTree(this->At("elsewhere"), "elsewhere");
        this->MakeFile(std::string("outside/") + kPlantedName, "planted");
    }
    ~LinkSwap() override {
        ::kill(disturber, SIGKILL);
        ::waitpid(disturber, nullptr, 0);
        ::munmap(shared, sizeof(eShared));
    }

    // Runs the work while the tree is disturbed.
    void Disturbed(const std::function<void()>& work) {
        shared->wanted = true;
        while (!shared->active)
            ::usleep(10);
        work();
        shared->wanted = false;
        while (shared->active)
            ::usleep(10);
    }

    void Clear() {
        for (const char* const name : {"tree", "copy"})
            fs::remove_all(this->At(name));
    }

    // A file of the library's making with content from outside would have been read through a link.
    bool HoldsWhatIsOutside(const char* root) {
        if (!fs::exists(this->At(root)))
            return false;
        for (const auto& [name, fact] : FactsOf(this->At(root)))
            if (fact.ends_with(kOutsideText))
                return true;
        return false;
    }

    eShared* const shared;

private:
    static eShared* Map() {
        void* const memory =
            ::mmap(nullptr, sizeof(eShared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        return new (memory) eShared;
    }

    const pid_t disturber;
};
TYPED_TEST_SUITE(LinkSwap, eWidths, eWidthNames);

} // namespace

TYPED_TEST(LinkSwap, NothingOutsideChangesWhileATreeIsDeletedCopiedAndPurged) {
    const auto end =
        std::chrono::steady_clock::now() + (LongTests() ? std::chrono::seconds(300) : std::chrono::seconds(1));
    constexpr unsigned long long kFewestRounds = 3;
    unsigned long long rounds = 0;
    const auto tree = this->Named("tree"), copy = this->Named("copy");
    const auto purged = this->Folder("tree");
    IO::System::eTreeTask watched;
    watched.progress = [](const auto&) { return true; };
    const eFacts outside = FactsOf(this->At("outside")), elsewhere = FactsOf(this->At("elsewhere"));
    for (; rounds < kFewestRounds || std::chrono::steady_clock::now() < end; ++rounds) {
        MakeTree(this->At("tree"), "in the tree");
        this->Disturbed([&] {
            TypeParam::Copy(tree, copy);
            TypeParam::CopyTree(tree, copy, watched);
            TypeParam::Delete(tree, true);
            TypeParam::Copy(copy, tree);
            TypeParam::DeleteTree(copy, watched);
            TypeParam::PurgeEmpty(purged);
            TypeParam::PurgeTree(purged, watched);
        });
        ASSERT_FALSE(this->HoldsWhatIsOutside("tree")) << rounds;
        ASSERT_FALSE(this->HoldsWhatIsOutside("copy")) << rounds;
        this->Clear();
        ASSERT_EQ("", Difference(outside, FactsOf(this->At("outside")))) << rounds;
        ASSERT_EQ("", Difference(elsewhere, FactsOf(this->At("elsewhere")))) << rounds;
    }
    if (LongTests())
        std::printf("%llu rounds of seven operations, %llu folders exchanged for links, %llu names planted\n", rounds,
                    this->shared->folders.load(), this->shared->files.load());
    EXPECT_GT(this->shared->folders, rounds);
}
