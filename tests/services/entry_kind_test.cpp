// SPDX-License-Identifier: BSL-1.0
#include "platform/pure/entry_kind.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using IO::Platform::eEntryKind;
using IO::Platform::IsListedLink;
using IO::Platform::ListedKind;

constexpr unsigned long kReadOnly = 0x1, kDirectory = 0x10, kArchive = 0x20, kReparsePoint = 0x400;

TEST(ListedKind, GoesByTheReparseTag) {
    struct eRow {
        std::string what;
        unsigned long tag;
        bool link;
    };
    for (const eRow& row : {
             eRow{"junction or mounted volume", 0xA0000003, true},
             eRow{"symbolic link", 0xA000000C, true},
             eRow{"symbolic link of the subsystem for other programs", 0xA000001D, true},
             eRow{"global link", 0xA0000019, true},
             eRow{"tombstone of a projected folder", 0xA0000022, true},
             eRow{"tombstone of a container's layer", 0xA000001F, true},
             eRow{"link of a container's layer", 0xA0000027, true},
             eRow{"link of a container's layer, second kind", 0xA0001027, true},
             eRow{"container's layer", 0x80000018, false},
             eRow{"container's layer, second kind", 0x90001018, false},
             eRow{"cloud", 0x9000001A, false},
             eRow{"cloud, first variant", 0x9000101A, false},
             eRow{"cloud, seventh variant", 0x9000701A, false},
             eRow{"cloud, last variant", 0x9000F01A, false},
             eRow{"projected folder", 0x9000001C, false},
             eRow{"deduplicated", 0x80000013, false},
             eRow{"compressed", 0x80000017, false},
             eRow{"network file system", 0x80000014, false},
             eRow{"installed program's alias", 0x8000001B, false},
             eRow{"socket", 0x80000023, false},
             eRow{"archive on tape", 0xC0000004, false},
             eRow{"archive on tape, second kind", 0x80000006, false},
             eRow{"single instance", 0x80000007, false},
             eRow{"distributed", 0x8000000A, false},
             eRow{"an unknown tag", 0, true},
         }) {
        for (const unsigned long other : {0ul, kReadOnly, kArchive, kReadOnly | kArchive | 0x1000ul}) {
            const unsigned long file = kReparsePoint | other, folder = file | kDirectory;
            EXPECT_EQ(row.link, IsListedLink(file, row.tag)) << row.what;
            EXPECT_EQ(row.link, IsListedLink(folder, row.tag)) << row.what;
            EXPECT_EQ(row.link ? eEntryKind::Link : eEntryKind::File, ListedKind(file, row.tag)) << row.what;
            EXPECT_EQ(row.link ? eEntryKind::Link : eEntryKind::Folder, ListedKind(folder, row.tag)) << row.what;
        }
    }
}

// Without a reparse point the field of the tag may contain anything.
TEST(ListedKind, TakesNoTagForOneWithoutAReparsePoint) {
    EXPECT_FALSE(IsListedLink(kArchive, 0xA000000C));
    EXPECT_FALSE(IsListedLink(kDirectory, 0xA0000003));
    EXPECT_EQ(eEntryKind::File, ListedKind(kArchive, 0xA000000C));
    EXPECT_EQ(eEntryKind::Folder, ListedKind(kDirectory, 0xA0000003));
}

} // namespace
