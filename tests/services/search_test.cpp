// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/current_folder.h"
#include "support/self_move.h"
#include "support/temp_folder.h"
#include "support/wine.h"

#include "real_tree.h"

namespace {

template <class Width>
class SearchServices : public eRealTree<Width> {
protected:
    using eSearch = typename Width::Search;
    using Text = typename Width::Text;

    // The names that a mask finds, sorted.
    std::vector<Text> Found(const typename Width::Name& folder, const typename Width::Name& mask) const {
        std::vector<Text> names;
        for (eSearch search(folder, mask); search.Valid(); search.Next())
            names.push_back(search.Name());
        std::sort(names.begin(), names.end());
        return names;
    }
    std::vector<Text> FoundIn(std::string_view relative, std::string_view mask) const {
        return Found(this->Folder(relative), Width::Of(mask));
    }
    static std::vector<Text> Texts(std::initializer_list<std::string_view> names) {
        std::vector<Text> texts;
        for (const std::string_view name : names)
            texts.push_back(Width::Of(name));
        return texts;
    }
};
TYPED_TEST_SUITE(SearchServices, eWidths, eWidthNames);

TYPED_TEST(SearchServices, ListsEveryEntryAndTheDots) {
    this->MakeFile("folder/file.txt");
    this->MakeFile("folder/no extension");
    this->MakeFolder("folder/sub");
    EXPECT_EQ(this->Texts({".", "..", "file.txt", "no extension", "sub"}), this->FoundIn("folder", "*.*"));
    EXPECT_EQ(this->Texts({".", "..", "file.txt", "no extension", "sub"}), this->FoundIn("folder", "*"));
}

TYPED_TEST(SearchServices, TellsFilesFromSubfolders) {
    this->MakeFile("folder/file");
    this->MakeFolder("folder/sub");
    for (typename TypeParam::Search search(this->Folder("folder"), TypeParam::Of("*.*")); search.Valid();
         search.Next()) {
        const typename TypeParam::Text name = search.Name();
        EXPECT_EQ(name == TypeParam::Of("file"), search.IsFile());
        EXPECT_EQ(name == TypeParam::Of("sub"), search.IsSubfolder());
        EXPECT_FALSE(search.IsLink());
    }
}

TYPED_TEST(SearchServices, AMaskThatMatchesNothingIsNotValid) {
    this->MakeFile("folder/file");
    typename TypeParam::Search search(this->Folder("folder"), TypeParam::Of("*.none"));
    EXPECT_FALSE(search.Valid());
    EXPECT_FALSE(search.IsFile());
    EXPECT_FALSE(search.IsSubfolder());
    EXPECT_FALSE(search.IsLink());
    EXPECT_EQ(typename TypeParam::Text(), search.Name());
    EXPECT_EQ(0u, search.Size());
    search.Next();
    EXPECT_FALSE(search.Valid());
}

TYPED_TEST(SearchServices, AMissingFolderAndAFileInItsPlaceAreNotValid) {
    this->MakeFile("file");
    using Search = typename TypeParam::Search;
    EXPECT_FALSE(Search(this->Folder("missing"), TypeParam::Of("*.*")).Valid());
    EXPECT_FALSE(Search(this->Folder("file"), TypeParam::Of("*.*")).Valid());
    EXPECT_FALSE(Search(typename TypeParam::Name(), typename TypeParam::Name()).Valid());
    EXPECT_FALSE(Search(this->Folder("missing"), typename TypeParam::Name()).Valid());
}

TYPED_TEST(SearchServices, WithoutASlashTheNeighboursWithThatBeginningAreMeant) {
    this->MakeFile("dir/inside");
    this->MakeFolder("dir2");
    this->MakeFile("dir.txt");
    this->MakeFile("other");
    EXPECT_EQ(this->Texts({"dir", "dir.txt", "dir2"}), this->Found(this->Named("dir"), TypeParam::Of("*.*")));
}

TYPED_TEST(SearchServices, AnExactNameFindsThatEntry) {
    this->MakeFile("folder/Name.Txt");
    this->MakeFile("folder/name2.txt");
    EXPECT_EQ(this->Texts({"Name.Txt"}), this->FoundIn("folder", "Name.Txt"));
    EXPECT_EQ(this->Texts({"Name.Txt"}), this->FoundIn("folder", "nAME.tXT"));
}

TYPED_TEST(SearchServices, MasksChooseAmongRealNames) {
    for (const char* name : {"a.txt", "b.txt", "ab.txt", "a", "a.text"})
        this->MakeFile(std::string("folder/") + name);
    EXPECT_EQ(this->Texts({"a.txt", "ab.txt", "b.txt"}), this->FoundIn("folder", "*.TXT"));
    EXPECT_EQ(this->Texts({"a.txt", "b.txt"}), this->FoundIn("folder", "?.txt"));
    EXPECT_EQ(this->Texts({"ab.txt"}), this->FoundIn("folder", "?b.*"));
    EXPECT_EQ(this->Texts({"a.text"}), this->FoundIn("folder", "*.te*"));
    EXPECT_EQ(this->Texts({"a.text"}), this->FoundIn("", "folder/*.te*"));
}

TYPED_TEST(SearchServices, DotsAndBlanksAtAMasksEndCountForNothing) {
    if (IsUnderWine())
        GTEST_SKIP() << "Wine compares names with masks by its own rules";
    for (const char* name : {"a", "ab", "a.txt", "ab.c"})
        this->MakeFile(std::string("folder/") + name);
    EXPECT_EQ(this->Texts({"a", "ab"}), this->FoundIn("folder", "a?."));
    EXPECT_EQ(this->Texts({"a", "ab"}), this->FoundIn("folder", "a*."));
    EXPECT_EQ(this->Texts({"a.txt"}), this->FoundIn("folder", "a.t*t. "));
    EXPECT_EQ(this->Texts({"ab.c"}), this->FoundIn("folder", "*b.c. ."));
    EXPECT_EQ(this->Texts({}), this->FoundIn("folder", "a."));
}

TYPED_TEST(SearchServices, TheCurrentFolderNeedsNoName) {
    this->MakeFile("only");
    const eCurrentFolder current(this->temp.Path());
    EXPECT_EQ(this->Texts({"only"}), this->Found(typename TypeParam::Name(), TypeParam::Of("on*")));
}

TYPED_TEST(SearchServices, SizeIsTheFilesLength) {
    this->MakeFile("folder/empty", "");
    this->MakeFile("folder/five", "12345");
    this->MakeFolder("folder/sub");
    for (typename TypeParam::Search search(this->Folder("folder"), TypeParam::Of("*.*")); search.Valid(); search.Next())
        EXPECT_EQ(search.Name() == TypeParam::Of("five") ? 5u : 0u, search.Size());
}

TYPED_TEST(SearchServices, SizeCountsBeyond32Bits) {
    constexpr unsigned long long kSize = 4294967296ull;
    this->MakeFile("folder/large", "");
    std::error_code error;
    std::filesystem::resize_file(this->At("folder/large"), kSize, error);
    if (error)
        GTEST_SKIP() << "the disk takes no file of 4 GiB: " << error.message();
    EXPECT_EQ(kSize, typename TypeParam::Search(this->Folder("folder"), TypeParam::Of("large")).Size());
}

TYPED_TEST(SearchServices, ModifyTimeCountsHundredNanosecondsSince1601) {
    constexpr unsigned long long kSecondsFrom1601To1970 = 11'644'473'600;
    this->MakeFile("folder/file");
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(now).count();
    const typename TypeParam::Search search(this->Folder("folder"), TypeParam::Of("file"));
    const IO::eFileTime time = search.ModifyTime();
    EXPECT_NEAR(static_cast<double>(seconds), static_cast<double>(time.Ticks() / 10'000'000 - kSecondsFrom1601To1970),
                60);
    EXPECT_EQ(time.dwLowDateTime, static_cast<unsigned int>(time.Ticks()));
    EXPECT_EQ(time.dwHighDateTime, static_cast<unsigned int>(time.Ticks() >> 32));
}

TYPED_TEST(SearchServices, ModifyTimeIsTheMomentThatWasSet) {
    this->MakeFile("folder/file");
    const auto written = std::filesystem::last_write_time(this->At("folder/file"));
    const auto secondsAt = [&](std::chrono::hours before) {
        std::filesystem::last_write_time(this->At("folder/file"), written - before);
        const typename TypeParam::Search search(this->Folder("folder"), TypeParam::Of("file"));
        return search.ModifyTime().Ticks() / 10'000'000;
    };
    EXPECT_EQ(24u * 3600, secondsAt(std::chrono::hours(24)) - secondsAt(std::chrono::hours(48)));
}

TYPED_TEST(SearchServices, ModifyTimeHasFractionsOfASecond) {
    this->MakeFile("folder/file");
    const auto second =
        std::chrono::floor<std::chrono::seconds>(std::filesystem::last_write_time(this->At("folder/file")));
    const auto set = second + std::chrono::milliseconds(250);
    std::filesystem::last_write_time(this->At("folder/file"), set);
    if (std::filesystem::last_write_time(this->At("folder/file")) != set)
        GTEST_SKIP() << "the C++ library sets times by whole seconds here";
    const typename TypeParam::Search search(this->Folder("folder"), TypeParam::Of("file"));
    EXPECT_EQ(2'500'000u, search.ModifyTime().Ticks() % 10'000'000);
}

TYPED_TEST(SearchServices, NextBeyondTheEndStaysInvalidAndKeepsTheLastRecord) {
    this->MakeFile("folder/file");
    typename TypeParam::Search search(this->Folder("folder"), TypeParam::Of("file"));
    search.Next();
    EXPECT_FALSE(search.Valid());
    EXPECT_FALSE(search.IsFile());
    EXPECT_EQ(TypeParam::Of("file"), search.Name());
    search.Next();
    EXPECT_FALSE(search.Valid());
}

TYPED_TEST(SearchServices, BeyondTheEndThereIsNeitherFileNorSubfolder) {
    this->MakeFolder("folder/sub");
    typename TypeParam::Search search(this->Folder("folder"), TypeParam::Of("sub"));
    EXPECT_TRUE(search.IsSubfolder());
    search.Next();
    EXPECT_FALSE(search.IsSubfolder());
    EXPECT_FALSE(search.IsFile());
}

TYPED_TEST(SearchServices, EndClearsTheRecordAndLeavesValid) {
    this->MakeFolder("folder/sub");
    typename TypeParam::Search search(this->Folder("folder"), TypeParam::Of("sub"));
    EXPECT_TRUE(search.IsSubfolder());
    search.End();
    EXPECT_TRUE(search.Valid());
    EXPECT_EQ(typename TypeParam::Text(), search.Name());
    EXPECT_TRUE(search.IsFile());
    EXPECT_FALSE(search.IsSubfolder());
    EXPECT_EQ(0u, search.Size());
    EXPECT_EQ(IO::eFileTime(), search.ModifyTime());
    search.End();
    search.Next();
    EXPECT_FALSE(search.Valid());
    search.End();
    EXPECT_FALSE(search.Valid());
}

TYPED_TEST(SearchServices, BeginStartsAnewAtAnyMoment) {
    this->MakeFile("one/a");
    this->MakeFile("two/b");
    typename TypeParam::Search search(this->Folder("one"), TypeParam::Of("a"));
    for (int repeat = 0; repeat < 3000; ++repeat) {
        search.Begin(this->Folder("two"), TypeParam::Of("*b"));
        ASSERT_TRUE(search.Valid()) << repeat;
    }
    EXPECT_EQ(TypeParam::Of("b"), search.Name());
    search.Begin(this->Folder("missing"), TypeParam::Of("*.*"));
    EXPECT_FALSE(search.Valid());
    EXPECT_EQ(typename TypeParam::Text(), search.Name());
    search.End();
    search.Begin(this->Folder("one"), TypeParam::Of("*a"));
    EXPECT_TRUE(search.IsFile());
    search.Begin(this->Folder("one"), search.Name());
    EXPECT_EQ(TypeParam::Of("a"), search.Name());
}

TYPED_TEST(SearchServices, CopiesHaveTheSameStateAndMoveOnTogether) {
    for (const char* name : {"a", "b", "c"})
        this->MakeFile(std::string("folder/") + name, name);
    using eCursor = typename TypeParam::Search;
    eCursor first(this->Folder("folder"), TypeParam::Of("?"));
    // A dot entry may be among them; it is not a file.
    while (!first.IsFile())
        first.Next();
    eCursor second(first);
    EXPECT_EQ(first.Name(), typename TypeParam::Text(second.Name()));
    EXPECT_EQ(1u, second.Size());
    eCursor third(this->Folder("missing"), TypeParam::Of("*.*"));
    third = first;
    third = *&third;
    std::vector<typename TypeParam::Text> names{first.Name()};
    for (eCursor* each : {&second, &third}) {
        each->Next();
        while (each->Valid() && !each->IsFile())
            each->Next();
        ASSERT_TRUE(each->IsFile());
        names.push_back(each->Name());
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(this->Texts({"a", "b", "c"}), names);
    EXPECT_TRUE(first.Valid());
}

TYPED_TEST(SearchServices, AreSteppedByEitherIncrement) {
    for (const char* name : {"a", "b"})
        this->MakeFile(std::string("folder/") + name);
    typename TypeParam::Search search(this->Folder("folder"), TypeParam::Of("*.*"));
    int files = 0;
    for (auto at = search.begin(); !(at == search.end()); at++)
        files += search.IsFile();
    EXPECT_EQ(2, files);
}

TYPED_TEST(SearchServices, ACopyOutlivesTheOriginalsEnd) {
    for (const char* name : {"a", "b"})
        this->MakeFile(std::string("folder/") + name);
    typename TypeParam::Search first(this->Folder("folder"), TypeParam::Of("*.*"));
    typename TypeParam::Search second(first);
    first.End();
    int files = 0;
    for (; second.Valid(); second.Next())
        files += second.IsFile();
    EXPECT_EQ(2, files);
}

TYPED_TEST(SearchServices, CopiesTellTheSameWhateverBecomesOfTheEntry) {
    this->MakeFile("folder/file", "12345");
    using eCursor = typename TypeParam::Search;
    const eCursor first(this->Folder("folder"), TypeParam::Of("file"));
    const eCursor second(first);
    eCursor third(this->Folder("missing"), TypeParam::Of("*.*"));
    third = first;
    const IO::eFileTime time = first.ModifyTime();
    std::filesystem::remove(this->At("folder/file"));
    std::filesystem::create_directory(this->At("folder/file"));
    for (const eCursor* each : {&first, &second, static_cast<const eCursor*>(&third)}) {
        EXPECT_EQ(5u, each->Size());
        EXPECT_EQ(time, each->ModifyTime());
        EXPECT_TRUE(each->IsFile());
    }
}

TYPED_TEST(SearchServices, SizeAndTimeStayAsTheyWereFirstTold) {
    this->MakeFile("folder/file", "12345");
    typename TypeParam::Search search(this->Folder("folder"), TypeParam::Of("file"));
    EXPECT_EQ(5u, search.Size());
    const IO::eFileTime time = search.ModifyTime();
    ASSERT_TRUE(TypeParam::DeleteFile(this->Named("folder/file")));
    EXPECT_EQ(5u, search.Size());
    EXPECT_EQ(time, search.ModifyTime());
    this->MakeFile("folder/file", "another");
    EXPECT_EQ(5u, search.Size());
}

// A search without an entry can be queried safely and is empty.
template <class Search>
void ExpectNoEntry(Search& search) {
    EXPECT_FALSE(search.Valid());
    EXPECT_FALSE(search.IsFile());
    EXPECT_FALSE(search.IsSubfolder());
    EXPECT_FALSE(search.IsLink());
    EXPECT_EQ(0, *search.Name());
    EXPECT_EQ(0u, search.Size());
    EXPECT_EQ(IO::eFileTime(), search.ModifyTime());
}

TYPED_TEST(SearchServices, AMovedFromSearchHasNoEntryAndIsSafeInEveryOperation) {
    this->MakeFile("folder/file", "12345");
    using eCursor = typename TypeParam::Search;
    eCursor first(this->Folder("folder"), TypeParam::Of("file"));
    eCursor second(std::move(first));
    ExpectNoEntry(first);
    first.Next();
    ExpectNoEntry(first);
    first.End();
    ExpectNoEntry(first);
    EXPECT_TRUE(second.IsFile());
    EXPECT_EQ(5u, second.Size());
    first = std::move(second);
    ExpectNoEntry(second);
    EXPECT_EQ(5u, first.Size());
    eCursor copyOfNothing(second);
    ExpectNoEntry(copyOfNothing);
    second = first;
    EXPECT_EQ(TypeParam::Of("file"), second.Name());
    second = std::move(copyOfNothing);
    ExpectNoEntry(second);
    second.Begin(this->Folder("folder"), TypeParam::Of("f*"));
    EXPECT_TRUE(second.IsFile());
    static_assert(std::is_nothrow_move_constructible_v<eCursor> && std::is_nothrow_move_assignable_v<eCursor>);
}

TYPED_TEST(SearchServices, ASearchMovedOntoItselfStaysAsItIs) {
    this->MakeFile("folder/file", "12345");
    typename TypeParam::Search search(this->Folder("folder"), TypeParam::Of("file"));
    MoveOntoItself(search);
    EXPECT_TRUE(search.IsFile());
    EXPECT_EQ(5u, search.Size());
}

TYPED_TEST(SearchServices, EntriesThatVanishDuringTheWalkDoNoHarm) {
    for (int number = 0; number < 500; ++number)
        this->MakeFile("folder/" + std::to_string(number));
    int seen = 0;
    typename TypeParam::Search search(this->Folder("folder"), TypeParam::Of("*.*"));
    for (; search.Valid(); search.Next(), ++seen) {
        if (seen == 3)
            for (int number = 0; number < 500; ++number)
                std::filesystem::remove(this->At("folder/" + std::to_string(number)));
        const auto size = search.Size();
        EXPECT_TRUE(size == 0 || size == 7) << size;
        search.ModifyTime();
    }
    EXPECT_GE(seen, 4);
    EXPECT_LE(seen, 502);
    search.End();
}

TYPED_TEST(SearchServices, LargeFoldersComeWhole) {
    constexpr int kCount = 3000;
    for (int number = 0; number < kCount; ++number)
        this->MakeFile("folder/a rather long name to fill the buffers " + std::to_string(number) + ".txt", "");
    EXPECT_EQ(static_cast<std::size_t>(kCount), this->FoundIn("folder", "*.txt").size());
    EXPECT_EQ(static_cast<std::size_t>(kCount) + 2, this->FoundIn("folder", "*.*").size());
}

TYPED_TEST(SearchServices, LongNamesComeWhole) {
    const std::string name(200, 'n');
    this->MakeFile("folder/" + name);
    EXPECT_EQ(this->Texts({name}), this->FoundIn("folder", "nnn*"));
}

// Declared like FILETIME in a system's header.
struct eSystemTime {
    unsigned long dwLowDateTime;
    unsigned long dwHighDateTime;
};

TEST(FileTime, ConvertsImplicitlyToTheSystemsStructure) {
    const eSystemTime time = IO::eFileTime::FromTicks(0x0123456789ABCDEFull);
    EXPECT_EQ(0x89ABCDEFu, time.dwLowDateTime);
    EXPECT_EQ(0x01234567u, time.dwHighDateTime);
    EXPECT_EQ(0x0123456789ABCDEFull, IO::eFileTime::FromTicks(0x0123456789ABCDEFull).Ticks());
    EXPECT_EQ(~0ull, IO::eFileTime::FromTicks(~0ull).Ticks());
}

TEST(FileTime, IsEqualWhereBothHalvesAre) {
    const auto time = IO::eFileTime::FromTicks(0x0000000200000001ull);
    EXPECT_EQ(time, IO::eFileTime::FromTicks(0x0000000200000001ull));
    EXPECT_NE(time, IO::eFileTime::FromTicks(0x0000000200000002ull));
    EXPECT_NE(time, IO::eFileTime::FromTicks(0x0000000100000001ull));
}

} // namespace

TEST(SearchRange, GoesOverTheEntriesFromTheCurrentOneOn) {
    const eTempFolder folder;
    for (const char* name : {"a.txt", "b.txt", "c.txt", "d.dat"})
        folder.Write(name, name);
    std::set<std::string> found;
    IO::eSearch search(folder.Name().c_str(), "*.txt");
    for (const auto& entry : search) {
        EXPECT_TRUE(entry.IsFile());
        EXPECT_EQ(entry.Size(), 5u);
        found.insert(entry.Name());
    }
    EXPECT_EQ(found, (std::set<std::string>{"a.txt", "b.txt", "c.txt"}));
    EXPECT_FALSE(search.Valid());
    int wide = 0;
    IO::eSearchW wideSearch(folder.NameW(), L"*.dat");
    for (const auto& entry : wideSearch)
        wide += std::wstring(entry.Name()) == L"d.dat" ? 1 : 10;
    EXPECT_EQ(wide, 1);
    IO::eSearch none(folder.Name().c_str(), "*.none");
    for ([[maybe_unused]] const auto& entry : none)
        ADD_FAILURE();
    static_assert(std::input_iterator<IO::eSearch::eIterator>);
}
