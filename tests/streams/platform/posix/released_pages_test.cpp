// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

#include <qzl_io/streams.h>

#include "support/temp_folder.h"

namespace Mode = IO::StreamMode;

TEST(ReleasedPages, AFileGivesTheMemoryOfABlockBackAsItTakesItsBytes) {
    const eTempFolder folder;
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const std::size_t size = 8u << 20;
    void* const mapped = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(mapped, MAP_FAILED);
    auto* const block = static_cast<char*>(mapped);
    std::fill(block, block + size, 'x');
    IO::eFileStream file(folder.Name("file"), Mode::Write | Mode::Create);
    file.WriteReleasing(block, size - 1);
    file.Close();
    EXPECT_TRUE(folder.Read("file") == std::string(size - 1, 'x'));
    std::size_t kept = 0;
    for (std::size_t at = 0; at < size; at += page)
        kept += block[at] == 'x' ? 1 : 0;
    EXPECT_EQ(kept, 1u) << "the last page is not wholly written";
    ::munmap(mapped, size);
}
