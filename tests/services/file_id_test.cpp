// SPDX-License-Identifier: BSL-1.0
#include "platform/pure/file_id.h"

#include <gtest/gtest.h>

namespace {

using IO::AreOneFolder;
using IO::eFileId;
using IO::MayBeOneFile;

constexpr unsigned long long kOnes = ~0ull;

TEST(FileId, IsNumberedWhereVolumeAndNumberAreTold) {
    struct eRow {
        eFileId id;
        bool numbered;
    };
    for (const eRow& row : {
             eRow{{}, false},
             eRow{{1, 0, 0, {}}, false},         // no number
             eRow{{0, 0, 7, {}}, false},         // no volume
             eRow{{1, 0, kOnes, {}}, false},     // a number that does not fit into 64 bits
             eRow{{1, kOnes, kOnes, {}}, false}, // nor into 128 bits
             eRow{{1, 0, 7, {}}, true},
             eRow{{1, 7, 0, {}}, true},
             eRow{{1, 7, kOnes, {}}, true},
             eRow{{1, kOnes, 7, {}}, true},
             eRow{{kOnes, 0, 1, {}}, true},
         })
        EXPECT_EQ(row.numbered, row.id.IsNumbered()) << row.id.volume << " " << row.id.high << " " << row.id.low;
}

TEST(FileId, IsComparedByNumberAndWhereThatIsMissingByFinalName) {
    struct eRow {
        eFileId one, other;
        bool oneFolder, maybeOneFile;
    };
    for (const eRow& row : {
             eRow{{1, 0, 7, {}}, {1, 0, 7, {}}, true, true},
             eRow{{1, 0, 7, {}}, {1, 0, 8, {}}, false, false},
             eRow{{1, 0, 7, {}}, {2, 0, 7, {}}, false, false},
             eRow{{1, 5, 7, {}}, {1, 6, 7, {}}, false, false},
             eRow{{1, 5, 7, {}}, {1, 5, 7, {}}, true, true},
             eRow{{1, 0, 7, L"a"}, {1, 0, 7, L"b"}, true, true},
             eRow{{1, 0, 7, L"a"}, {1, 0, 8, L"a"}, false, false},
             // Unknown folders are neither equal nor different.
             eRow{{}, {}, false, true},
             eRow{{1, 0, 0, {}}, {1, 0, 0, {}}, false, true},
             eRow{{1, 0, kOnes, {}}, {1, 0, kOnes, {}}, false, true},
             eRow{{0, 0, 7, {}}, {0, 0, 7, {}}, false, true},
             eRow{{1, 0, 0, {}}, {1, 0, 7, {}}, false, true},
             eRow{{1, 0, 0, L"a"}, {1, 0, 0, {}}, false, true},
             eRow{{1, 0, 0, L"a"}, {1, 0, 0, L"a"}, true, true},
             eRow{{1, 0, 0, L"a"}, {1, 0, 0, L"b"}, false, true},
             eRow{{1, 0, 0, L"a"}, {1, 0, 7, L"a"}, true, true},
         }) {
        EXPECT_EQ(row.oneFolder, AreOneFolder(row.one, row.other));
        EXPECT_EQ(row.oneFolder, AreOneFolder(row.other, row.one));
        EXPECT_EQ(row.maybeOneFile, MayBeOneFile(row.one, row.other));
        EXPECT_EQ(row.maybeOneFile, MayBeOneFile(row.other, row.one));
    }
}

} // namespace
