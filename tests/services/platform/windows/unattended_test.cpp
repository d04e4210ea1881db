// SPDX-License-Identifier: BSL-1.0
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <windows.h>

#include <gtest/gtest.h>

#include <qzl_io/streams.h>

#include "support/platform/windows/import_table.h"

#include "../../real_tree.h"

// Whether the system could show a dialog when the library passes it a name.

namespace {

constexpr const char* kLibrary = "qzl_io.dll";

int quietCalls;
int askingCalls;

void Look() {
    ++((::GetThreadErrorMode() & SEM_FAILCRITICALERRORS) != 0 ? quietCalls : askingCalls);
}

// A replaced call of the library that checks the thread's error mode before it calls the system.
template <int number, class Call>
class eWatched;
template <int number, class Result, class... Arguments>
class eWatched<number, Result(WINAPI*)(Arguments...)> {
public:
    explicit eWatched(const char* name) : replaced(kLibrary, name, &Instead, &systems) {}

private:
    using Call = Result(WINAPI*)(Arguments...);

    static Result WINAPI Instead(Arguments... arguments) {
        Look();
        return systems(arguments...);
    }

    static inline Call systems;
    eReplacedCall<Call> replaced;
};

decltype(&::SetThreadErrorMode) systemsSetMode;
int modeChanges;
BOOL WINAPI SetModeInstead(DWORD mode, LPDWORD before) {
    ++modeChanges;
    return systemsSetMode(mode, before);
}

template <class Width>
class UnattendedCalls : public eRealTree<Width> {
protected:
    UnattendedCalls() { quietCalls = askingCalls = modeChanges = 0; }

    eWatched<0, decltype(&::DeleteFileW)> deleteFile{"DeleteFileW"};
    eWatched<1, decltype(&::RemoveDirectoryW)> removeDirectory{"RemoveDirectoryW"};
    eWatched<2, decltype(&::CreateDirectoryW)> createDirectory{"CreateDirectoryW"};
    eWatched<3, decltype(&::CopyFileW)> copyFile{"CopyFileW"};
    eWatched<4, decltype(&::CopyFileExW)> copyFileEx{"CopyFileExW"};
    eWatched<5, decltype(&::CreateFileW)> createFile{"CreateFileW"};
    eWatched<6, decltype(&::FindFirstFileW)> findFirst{"FindFirstFileW"};
    eWatched<7, decltype(&::FindNextFileW)> findNext{"FindNextFileW"};
    eWatched<8, decltype(&::_wrename)> rename{"_wrename"};
    eReplacedCall<decltype(&::SetThreadErrorMode)> setMode{kLibrary, "SetThreadErrorMode", &SetModeInstead,
                                                           &systemsSetMode};
};
TYPED_TEST_SUITE(UnattendedCalls, eWidths, eWidthNames);

TYPED_TEST(UnattendedCalls, ShowNoDialogAndLeaveTheThreadsModeAsItWas) {
    this->MakeFile("root/sub/file");
    this->MakeFile("file");
    bool flag = false;
    const std::vector<std::pair<const char*, std::function<void()>>> operations = {
        {"Copy", [&] { TypeParam::CopyFile(this->Named("file"), this->Named("copy")); }},
        {"CopyEx", [&] { TypeParam::CopyFileEx(this->Named("file"), this->Named("copy"), &flag); }},
        {"Delete", [&] { TypeParam::DeleteFile(this->Named("copy")); }},
        {"search",
         [&] {
             for (typename TypeParam::Search search(this->Folder("root"), TypeParam::Of("*")); search.Valid();
                  search.Next())
                 ;
         }},
        {"Path::Create", [&] { TypeParam::Create(this->Named("new/folder")); }},
        {"Path::Copy", [&] { TypeParam::Copy(this->Named("root"), this->Named("new")); }},
        {"Path::PurgeEmpty", [&] { TypeParam::PurgeEmpty(this->Folder("new")); }},
        {"Path::Delete", [&] { TypeParam::Delete(this->Named("new"), true); }},
    };
    DWORD original = 0;
    for (const DWORD mode : {DWORD{0}, DWORD{SEM_NOGPFAULTERRORBOX}, DWORD{SEM_FAILCRITICALERRORS}}) {
        ASSERT_TRUE(::SetThreadErrorMode(mode, mode == 0 ? &original : nullptr));
        for (const auto& [name, operation] : operations) {
            quietCalls = askingCalls = 0;
            operation();
            EXPECT_GT(quietCalls, 0) << name;
            EXPECT_EQ(0, askingCalls) << name;
            EXPECT_EQ(mode, ::GetThreadErrorMode()) << name;
        }
    }
    ::SetThreadErrorMode(original, nullptr);
}

TYPED_TEST(UnattendedCalls, ChangeTheModeOnceForAWholeTree) {
    for (int number = 0; number < 50; ++number)
        this->MakeFile("root/" + std::to_string(number) + "/file");
    TypeParam::Delete(this->Named("root"), true);
    EXPECT_GT(quietCalls, 100);
    EXPECT_EQ(2, modeChanges);
}

// Calls that the run-time makes can be observed only by the changes of the mode.
TYPED_TEST(UnattendedCalls, AlsoCoverAccessOpeningAndRenaming) {
    this->MakeFile("file", "12345");
    EXPECT_TRUE(TypeParam::MayAccess(this->Named("file"), 0));
    EXPECT_EQ(2, modeChanges);
    EXPECT_EQ(5u, TypeParam::Size(this->Named("file")));
    EXPECT_EQ(4, modeChanges);
    const std::unique_ptr<IO::eStream> stream(IO::GetStream(this->Named("file"), IO::StreamMode::Read));
    EXPECT_NE(nullptr, stream);
    EXPECT_EQ(6, modeChanges);
    this->MakeFile("other");
    EXPECT_TRUE(IO::System::File::Rename(this->temp.Name("other"), this->temp.Name("renamed")));
    EXPECT_EQ(8, modeChanges);
    EXPECT_EQ(1, quietCalls);
    EXPECT_EQ(0, askingCalls);
}

} // namespace
