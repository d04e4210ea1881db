// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/fast_folder.h"
#include "support/platform/posix/fault.h"
#include "support/platform/posix/open_descriptors.h"

#include "../../real_tree.h"

// Every system call of an operation fails once, in turn, with each of several errors. Whatever the operation then does,
// it touches nothing outside, leaves no temporary files behind, and replaces a target completely or not at all.

namespace {

namespace fs = std::filesystem;

constexpr int kErrors[] = {EINTR, EIO, ENOSPC, EACCES, ENOMEM, EMFILE};

template <class Width>
class ServiceFault : public eRealTree<Width> {
protected:
    ServiceFault() : eRealTree<Width>(FastFolder()) {}

    void SetUp() override {
        if (!eFault::ReachesLibraries())
            GTEST_SKIP() << "the libraries' calls do not pass through the test program";
    }

    void MakeLink(std::string_view target, std::string_view link) const { fs::create_symlink(target, this->At(link)); }

    void Clear() const {
        for (const auto& entry : fs::directory_iterator(this->At("")))
            fs::remove_all(entry);
    }

    // For every call and every error, creates everything anew, runs the operation with this call failing, and checks
    // what is left. After an interruption, and if no call failed, the operation must be complete.
    void Sweep(const std::function<void()>& make, const std::function<void()>& operation,
               const std::function<void(bool done)>& look) {
        for (const int error : kErrors) {
            for (int call = 1;; ++call) {
                SCOPED_TRACE("call " + std::to_string(call) + ", error " + std::to_string(error));
                Clear();
                make();
                const int before = OpenDescriptors();
                bool struck = false;
                {
                    const eFault fault("", error, call);
                    operation();
                    struck = fault.Struck();
                }
                EXPECT_EQ(before, OpenDescriptors());
                look(!struck || error == EINTR);
                if (!struck || this->HasFailure())
                    break;
            }
        }
    }
};

TYPED_TEST_SUITE(ServiceFault, eWidths, eWidthNames);

} // namespace

TYPED_TEST(ServiceFault, ACopiedFileIsTheOldOneOrTheNewOne) {
    struct eRow {
        const char* promise;
        const char* to;
        const char* real;
        bool existed;
    };
    const std::string old = "old and of another length", fresh(70'000, 'n');
    for (const eRow& row : {eRow{"a new target", "to", "to", false}, eRow{"an existing one", "to", "to", true},
                            eRow{"by a link", "link", "outside/file", true},
                            eRow{"by a link to nothing", "link", "outside/file", false}}) {
        SCOPED_TRACE(row.promise);
        const auto make = [&] {
            this->MakeFile("from", fresh);
            this->MakeFolder("outside");
            if (row.to != std::string(row.real))
                this->MakeLink(row.real, row.to);
            if (row.existed) {
                this->MakeFile(row.real, old);
                fs::permissions(this->At(row.real), fs::perms(0640));
            }
        };
        const auto operation = [&] { TypeParam::CopyFile(this->Named("from"), this->Named(row.to)); };
        const auto look = [&](bool done) {
            eNames expected{"from", "outside/"};
            if (row.to != std::string(row.real))
                expected.insert(expected.begin() + 1, row.to);
            const bool exists = this->Exists(row.real);
            if (exists)
                expected.push_back(row.real);
            EXPECT_EQ(expected, this->Tree(""));
            EXPECT_TRUE(exists || !row.existed);
            EXPECT_EQ(fresh, this->Content("from"));
            const std::string content = exists ? this->Content(row.real) : "";
            EXPECT_TRUE(content == fresh || (!done && content == (row.existed ? old : "")));
            if (row.existed) {
                EXPECT_EQ(fs::perms(0640), fs::status(this->At(row.real)).permissions());
            }
        };
        this->Sweep(make, operation, look);
    }
}

TYPED_TEST(ServiceFault, ACopyWrittenInPlaceKeepsWhatArrivedAndTheOtherNameSeesIt) {
    const std::string old = "old", fresh(70'000, 'n');
    const auto make = [&] {
        this->MakeFile("from", fresh);
        this->MakeFile("to", old);
        fs::create_hard_link(this->At("to"), this->At("other"));
    };
    const auto operation = [&] { TypeParam::CopyFile(this->Named("from"), this->Named("to")); };
    const auto look = [&](bool done) {
        EXPECT_EQ((eNames{"from", "other", "to"}), this->Tree(""));
        const std::string content = this->Content("to");
        EXPECT_EQ(content, this->Content("other"));
        EXPECT_TRUE(content == fresh || (!done && (content == old || fresh.starts_with(content))));
    };
    this->Sweep(make, operation, look);
}

TYPED_TEST(ServiceFault, ACopyWithHolesIsWholeOrNotThere) {
    const auto make = [&] {
        this->MakeFile("from", "data");
        fs::resize_file(this->At("from"), 300'000);
        std::fstream(this->At("from"), std::ios::in | std::ios::out).seekp(200'000) << "more";
    };
    const auto operation = [&] { TypeParam::CopyFile(this->Named("from"), this->Named("to")); };
    const auto look = [&](bool done) {
        const bool made = this->Exists("to");
        EXPECT_EQ(made ? (eNames{"from", "to"}) : eNames{"from"}, this->Tree(""));
        EXPECT_TRUE(made ? this->Content("from") == this->Content("to") : !done);
    };
    this->Sweep(make, operation, look);
}

TYPED_TEST(ServiceFault, AStoppedCopyLeavesNothingOfItsOwn) {
    bool cancel = true;
    const auto make = [&] {
        this->MakeFile("from", "new");
        this->MakeFile("to", "old");
    };
    const auto operation = [&] { TypeParam::CopyFileEx(this->Named("from"), this->Named("to"), &cancel); };
    const auto look = [&](bool done) {
        const bool stands = this->Exists("to");
        EXPECT_EQ(stands ? (eNames{"from", "to"}) : (eNames{"from"}), this->Tree(""));
        EXPECT_TRUE(!stands || (!done && this->Content("to") == "old"));
    };
    this->Sweep(make, operation, look);
}

// --- Trees ---

namespace {

const eNames kOutside = {"empty/", "file", "sub/", "sub/empty/"};

template <class Width>
class TreeFault : public ServiceFault<Width> {
protected:
    // A tree with links that lead out of it, and their targets.
    void MakeTrees() const {
        this->MakeFile("outside/file", "precious");
        this->MakeFolder("outside/empty");
        this->MakeFolder("outside/sub/empty");
        this->MakeFile("root/sub/inner/file", "content");
        this->MakeFile("root/sub/large", std::string(70'000, 'x'));
        this->MakeFolder("root/empty/inner");
        this->MakeFolder("root/half/empty");
        this->MakeFile("root/half/file");
        this->MakeLink("../outside", "root/to folder");
        this->MakeLink("../../outside/file", "root/sub/to file");
        this->MakeFile("to/old/file", "old");
        this->MakeLink("../outside", "to/sub");
        // The link that replaces a folder.
        this->MakeLink("outside", "link");
        this->MakeLink("../outside", "root/link");
    }

    void LookOutside() const {
        EXPECT_EQ(kOutside, this->Tree("outside"));
        EXPECT_EQ("precious", this->Content("outside/file"));
    }

    // Every file of a copy is complete, and the copy has no file that the source lacks.
    void LookAtCopy(const eNames& source) const {
        for (const std::string& name : this->Tree("to")) {
            EXPECT_NE(source.end(), std::find(source.begin(), source.end(), name)) << name;
            if (!name.ends_with('/') && !name.ends_with("link") && name != "to folder") {
                EXPECT_EQ(this->Content("root/" + name), this->Content("to/" + name)) << name;
            }
        }
    }

    // Replaces a folder by a link to the outside just before the operation's first system call, its second and so on.
    void SweepExchanges(const std::function<void()>& operation) {
        const std::pair<const char*, const char*> exchanges[] = {
            {"root", "link"}, {"root/sub", "root/link"}, {"root/half", "root/link"}, {"to", "link"}};
        for (const auto& [folder, link] : exchanges) {
            for (int call = 1;; ++call) {
                SCOPED_TRACE(std::string(folder) + " before call " + std::to_string(call));
                this->Clear();
                MakeTrees();
                const eFault exchange("", call, [&, from = this->At(folder), to = this->At(link)] {
                    ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_EXCHANGE);
                });
                operation();
                const bool struck = exchange.Struck();
                LookOutside();
                if (!struck || this->HasFailure())
                    break;
            }
        }
    }
};

TYPED_TEST_SUITE(TreeFault, eWidths, eWidthNames);

} // namespace

TYPED_TEST(TreeFault, ADeletionTouchesNothingOutsideAndForgetsNothing) {
    const auto operation = [&] { TypeParam::Delete(this->Named("root"), true); };
    this->Sweep([&] { this->MakeTrees(); }, operation,
                [&](bool done) {
                    this->LookOutside();
                    EXPECT_TRUE(!done || !this->Exists("root"));
                });
    this->SweepExchanges(operation);
}

TYPED_TEST(TreeFault, APurgeTouchesNothingOutsideAndNoFile) {
    const auto operation = [&] { TypeParam::PurgeEmpty(this->Folder("root")); };
    const eNames kept = {"half/",          "half/file", "link",        "sub/",     "sub/inner/",
                         "sub/inner/file", "sub/large", "sub/to file", "to folder"};
    this->Sweep([&] { this->MakeTrees(); }, operation,
                [&](bool done) {
                    this->LookOutside();
                    const eNames left = this->Tree("root");
                    EXPECT_TRUE(done ? left == kept
                                     : std::includes(left.begin(), left.end(), kept.begin(), kept.end()));
                });
    this->SweepExchanges(operation);
}

TYPED_TEST(TreeFault, ACopyTouchesNothingOutsideAndHasNoHalfFiles) {
    const auto operation = [&] { TypeParam::Copy(this->Named("root"), this->Named("to")); };
    eNames source;
    const auto make = [&] {
        this->MakeTrees();
        source = this->Tree("root");
    };
    this->Sweep(make, operation, [&](bool done) {
        this->LookOutside();
        EXPECT_EQ(source, this->Tree("root"));
        if (done) {
            EXPECT_EQ(source, this->Tree("to"));
        } else if (this->Exists("to") && !this->Exists("to/old") && !fs::is_symlink(this->At("to/sub"))) {
            this->LookAtCopy(source);
        }
    });
    this->SweepExchanges(operation);
}

TYPED_TEST(TreeFault, AFolderIsMadeAfterAnInterruption) {
    bool made = false;
    const auto operation = [&] { made = TypeParam::Create(this->Named("new/one/two")); };
    this->Sweep([] {}, operation,
                [&](bool done) {
                    EXPECT_TRUE(made || !done);
                    EXPECT_TRUE(!made || this->Exists("new/one/two"));
                });
}

TYPED_TEST(TreeFault, ASearchShowsEverythingAfterAnInterruption) {
    std::size_t found = 0;
    const auto operation = [&] {
        found = 0;
        for (typename TypeParam::Search search(this->Folder("root"), TypeParam::Of("*.*")); search.Valid();
             search.Next())
            found += search.IsSubfolder() && search.ModifyTime().Ticks() != 0;
    };
    this->Sweep([&] { this->MakeTrees(); }, operation, [&](bool done) { EXPECT_TRUE(!done || found == 5) << found; });
}
