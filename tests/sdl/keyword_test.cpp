// SPDX-License-Identifier: BSL-1.0
#include <atomic>
#include <deque>
#include <memory>
#include <new>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_io/sdl/keyword.h>

#include "support/seconds_of.h"

namespace {

eSDLKeyword* colors;
eSDLKeyword red(colors, "Red", 1);
eSDLKeyword green(colors, "green", 2);
eSDLKeyword redAgain(colors, "RED", 3);
eSDLKeyword tinted(colors, "tinted_with_a_long_name", 2);

// A table of any length, in memory that is zero before the entries are constructed, as static storage is.
class eTable {
public:
    void Add(const std::string& name, int id) {
        names.push_back(name);
        auto memory = std::make_unique<eMemory>();
        new (memory->bytes) eSDLKeyword(head, names.back().c_str(), id);
        memories.push_back(std::move(memory));
    }

    ~eTable() {
        for (const auto& memory : memories)
            Entry(*memory)->~eSDLKeyword();
    }

    eSDLKeyword& At(std::size_t place) const { return *Entry(*memories[place]); }

    eSDLKeyword* head = nullptr;

private:
    struct eMemory {
        alignas(eSDLKeyword) unsigned char bytes[sizeof(eSDLKeyword)] = {};
    };

    static eSDLKeyword* Entry(eMemory& memory) { return std::launder(reinterpret_cast<eSDLKeyword*>(memory.bytes)); }

    std::deque<std::string> names;
    std::vector<std::unique_ptr<eMemory>> memories;
};

std::string Upper(std::string text) {
    for (char& c : text)
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    return text;
}

int FindOneByOne(const eSDLKeyword* table, const std::string& name) {
    for (; table; table = table->next)
        if (Upper(table->name) == Upper(name))
            return table->id;
    return 0;
}

const char* FindOneByOne(const eSDLKeyword* table, int id) {
    for (; table; table = table->next)
        if (table->id == id)
            return table->name;
    return nullptr;
}

// A name of up to 40 characters; most names differ only in a few characters or in letter case.
std::string RandomName(std::mt19937& random) {
    static constexpr char kCharacters[] = "aAbB@`[{_1\xC4";
    std::string name(random() % 41, random() % 2 ? 'x' : 'X');
    for (auto changes = random() % 3; changes > 0 && !name.empty(); --changes)
        name[random() % name.size()] = kCharacters[random() % (sizeof kCharacters - 1)];
    return name;
}

} // namespace

TEST(SdlKeyword, EntriesKeepTheOrderOfTheirConstruction) {
    EXPECT_EQ(colors, &red);
    EXPECT_EQ(red.next, &green);
    EXPECT_EQ(green.next, &redAgain);
    EXPECT_EQ(redAgain.next, &tinted);
    EXPECT_EQ(tinted.next, nullptr);
    EXPECT_STREQ(red.name, "Red");
    EXPECT_EQ(red.id, 1);
}

TEST(SdlKeyword, FindsTheFirstEntryOfANameWhateverItsLetterCase) {
    const struct {
        const char* name;
        int id;
    } rows[] = {{"red", 1},
                {"RED", 1},
                {"Red", 1},
                {"GREEN", 2},
                {"tinted_WITH_a_long_name", 2},
                {"", 0},
                {"re", 0},
                {"redd", 0},
                {"r", 0},
                {"tinted_with_a_long_namf", 0},
                {"tinted-with-a-long-name", 0}};
    for (const auto& row : rows)
        EXPECT_EQ(colors->Find(row.name), row.id) << row.name;
    EXPECT_EQ(colors->Find(static_cast<const char*>(nullptr)), 0);
}

TEST(SdlKeyword, SearchBeginsAtTheEntryThatIsAsked) {
    EXPECT_EQ(green.Find("red"), 3);
    EXPECT_EQ(tinted.Find("red"), 0);
    EXPECT_STREQ(green.Find(1), nullptr);
}

TEST(SdlKeyword, FindsTheFirstNameOfAnIdentity) {
    EXPECT_STREQ(colors->Find(1), "Red");
    EXPECT_STREQ(colors->Find(2), "green");
    EXPECT_STREQ(colors->Find(3), "RED");
    EXPECT_STREQ(colors->Find(4), nullptr);
}

TEST(SdlKeyword, ANullTableHasNoEntries) {
    EXPECT_EQ(eSDLKeyword::FindIn(nullptr, "red"), 0);
    EXPECT_EQ(eSDLKeyword::FindIn(nullptr, "red", 3), 0);
    EXPECT_EQ(eSDLKeyword::FindIn(nullptr, 1), nullptr);
}

TEST(SdlKeyword, AnEntryWithoutANameIsNeverFoundAndHidesNothing) {
    static eSDLKeyword* table;
    static eSDLKeyword nameless(table, nullptr, 7);
    static eSDLKeyword named(table, "a", 8);
    EXPECT_EQ(table->Find("a"), 8);
    EXPECT_EQ(table->Find("b"), 0);
    EXPECT_STREQ(table->Find(7), nullptr);
    EXPECT_STREQ(table->Find(8), "a");
}

TEST(SdlKeyword, OnlyAsciiLettersHaveTwoCases) {
    eTable table;
    table.Add("a@[`{1_\xC4\xE4", 7);
    EXPECT_EQ(table.head->Find("A@[`{1_\xC4\xE4"), 7);
    for (const char* other : {"a`[`{1_\xC4\xE4", "a@{`{1_\xC4\xE4", "a@[@{1_\xC4\xE4", "a@[`[1_\xC4\xE4",
                              "a@[`{\x11_\xC4\xE4", "a@[`{1\x7F\xC4\xE4", "a@[`{1_\xE4\xE4", "a@[`{1_\xC4\xC4"})
        EXPECT_EQ(table.head->Find(other), 0) << other;
}

TEST(SdlKeyword, EqualNamesOfEveryLengthAreFound) {
    eTable table;
    std::string name;
    for (int length = 0; length <= 70; ++length, name += static_cast<char>('a' + length % 26))
        table.Add(name, length + 1);
    name.clear();
    for (int length = 0; length <= 70; ++length, name += static_cast<char>('a' + length % 26))
        EXPECT_EQ(table.head->Find(Upper(name).c_str()), length + 1);
    for (std::size_t at = 0; at < 60; ++at) {
        std::string changed = name.substr(0, 60);
        changed[at] = '.';
        EXPECT_EQ(table.head->Find(changed.c_str()), 0) << changed;
    }
}

TEST(SdlKeyword, EntriesAddedAfterASearchAreFound) {
    eTable table;
    for (int id = 1; id <= 1000; ++id) {
        table.Add("word" + std::to_string(id), id);
        ASSERT_EQ(table.head->Find(("WORD" + std::to_string(id)).c_str()), id);
        ASSERT_EQ(table.head->Find("word1"), 1);
    }
    for (int id = 1; id <= 1000; ++id)
        EXPECT_EQ(table.head->Find(("word" + std::to_string(id)).c_str()), id);
    EXPECT_EQ(table.head->Find("word1001"), 0);
}

TEST(SdlKeyword, FindsInTablesOfAnySizeWhatASearchOneByOneFinds) {
    for (const int size : {1, 2, 15, 16, 17, 64, 65, 300, 2000}) {
        std::mt19937 random(static_cast<unsigned>(size));
        eTable table;
        int id = 0;
        while (id < size) {
            for (int added = 1 + static_cast<int>(random() % 100); added > 0 && id < size; --added)
                table.Add(RandomName(random), ++id);
            const eSDLKeyword* const start = random() % 2 || !table.head->next ? table.head : table.head->next;
            for (int round = 0; round < 50; ++round) {
                const std::string name = RandomName(random);
                ASSERT_EQ(start->Find(name.c_str()), FindOneByOne(start, name)) << name << " among " << id;
            }
        }
    }
}

TEST(SdlKeyword, FindsFromAnyEntryWhatASearchOneByOneFinds) {
    for (const int size : {1, 2, 17, 300}) {
        std::mt19937 random(static_cast<unsigned>(size));
        eTable table;
        for (int made = 0; made < size;) {
            for (int added = 1 + static_cast<int>(random() % 100); added > 0 && made < size; --added, ++made)
                table.Add(RandomName(random), static_cast<int>(random() % 50) - 25);
            for (int round = 0; round < 500; ++round) {
                const eSDLKeyword& start = table.At(random() % static_cast<unsigned>(made));
                const std::string name = RandomName(random);
                const int id = static_cast<int>(random() % 60) - 30;
                ASSERT_EQ(start.Find(name.c_str()), FindOneByOne(&start, name)) << name << " among " << made;
                ASSERT_EQ(start.Find(id), FindOneByOne(&start, id)) << id << " among " << made;
            }
        }
    }
}

TEST(SdlKeyword, FollowsNextWhereTablesHaveBeenJoinedOrCut) {
    for (const bool searchedBefore : {false, true}) {
        eTable common;
        eTable own;
        for (const char* name : {"x", "y", "z"})
            common.Add(name, name[0]);
        for (const char* name : {"a", "y", "b", "c"})
            own.Add(name, name[0] + 100);
        if (searchedBefore) {
            EXPECT_EQ(common.head->Find("y"), 'y');
        }
        own.At(3).next = common.head; // a y b c x y z
        own.Add("a", 'A');            // a y b c x y z a
        for (const eSDLKeyword* start = own.head; start; start = start->next)
            for (const char* name : {"a", "y", "b", "c", "x", "z", "A"}) {
                const int id = FindOneByOne(start, std::string(name));
                EXPECT_EQ(start->Find(name), id) << name << " from " << start->name;
                EXPECT_EQ(start->Find(id), FindOneByOne(start, id)) << name << " from " << start->name;
            }
    }
    eTable cut;
    for (const char* name : {"a", "b", "c", "d"})
        cut.Add(name, name[0]);
    cut.At(1).next = nullptr;
    EXPECT_EQ(cut.head->Find("c"), 0);
    EXPECT_EQ(cut.At(2).Find("d"), 'd');
    EXPECT_EQ(cut.At(2).Find("a"), 0);
    EXPECT_STREQ(cut.At(2).Find('d'), "d");
}

TEST(SdlKeyword, TablesOfAnySizeAreBuiltAndSearchedInATimeThatDoesNotGrow) {
    constexpr int kSize = 200'000;
    // If the cost were quadratic, these entries would take minutes.
    const double seconds = SecondsOf([&] {
        eTable table;
        for (int id = 1; id <= kSize; ++id)
            table.Add("word" + std::to_string(id), id);
        for (int id = 1; id <= kSize; ++id)
            ASSERT_STREQ(table.head->Find(id), ("word" + std::to_string(id)).c_str());
        for (std::size_t place = 0; place < kSize; ++place) {
            ASSERT_EQ(table.At(place).Find("Word200000"), kSize);
            ASSERT_STREQ(table.At(place).Find(kSize), "word200000");
            ASSERT_EQ(table.At(place).Find("none"), 0);
        }
    });
    EXPECT_LT(seconds, 20);
}

TEST(SdlKeyword, TheConstructorLeavesNextAsItFindsIt) {
    alignas(eSDLKeyword) unsigned char memory[sizeof(eSDLKeyword)] = {};
    eSDLKeyword* head = nullptr;
    auto* entry = new (memory) eSDLKeyword(head, "only", 1);
    EXPECT_EQ(head, entry);
    EXPECT_EQ(entry->next, nullptr);
    EXPECT_EQ(entry->Find("only"), 1);
    entry->~eSDLKeyword();
}

TEST(SdlKeyword, ManyThreadsSearchOneTableAtOnce) {
    for (int round = 0; round < 20; ++round) {
        eTable table;
        for (int id = 1; id <= 300; ++id)
            table.Add("name" + std::to_string(id), id);
        std::atomic<int> wrong = 0;
        std::vector<std::thread> threads;
        for (int first = 1; first <= 4; ++first)
            threads.emplace_back([&, first] {
                for (int id = first; id <= 300; ++id)
                    wrong += table.head->Find(("Name" + std::to_string(id)).c_str()) != id;
            });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(wrong, 0);
    }
}

TEST(SdlKeyword, ThreadsSearchFromAnyEntryWhileOthersSearchByIdForTheFirstTime) {
    for (int round = 0; round < 20; ++round) {
        eTable table;
        for (int word = 0; word < 200; ++word)
            table.Add("name" + std::to_string(word), 1 + word % 50);
        EXPECT_EQ(table.head->Find("name7"), 8);
        std::atomic<int> wrong = 0;
        std::vector<std::thread> threads;
        for (const bool byId : {true, false, true, false})
            threads.emplace_back([&, byId] {
                for (std::size_t at = 0; at < 150; ++at) {
                    const std::string name = "name" + std::to_string(at);
                    wrong += byId ? table.At(at).Find(1 + static_cast<int>(at % 50)) != std::string_view(name)
                                  : table.At(at / 2).Find(name.c_str()) != 1 + static_cast<int>(at % 50);
                }
            });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(wrong, 0);
    }
}
