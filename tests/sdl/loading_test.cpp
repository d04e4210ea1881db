// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>

#include <gmock/gmock.h>

#include <qzl_io/sdl/reader.h>
#include <qzl_io/streams.h>

#include "support/reports.h"
#include "support/temp_folder.h"
#include "turning_cipher.h"

// The state of a stream after a source has been loaded from it.

namespace {

struct eCase {
    std::size_t size;
    std::size_t start;
    std::shared_ptr<eTurningCipher> cipher;
};

void ExpectReadToItsEnd(IO::eStream& stream, const eCase& loaded, const char* kind) {
    stream.Seek(loaded.start, IO::eSeekDir::Begin);
    { eSDLReader reader(&stream, loaded.cipher); }
    EXPECT_EQ(stream.Position(), loaded.size) << kind;
    EXPECT_EQ(stream.Size(), loaded.size) << kind;
    EXPECT_TRUE(stream.Disabled(IO::StreamMode::Bad)) << kind;
}

} // namespace

TEST(SdlLoading, LeavesTheStreamAtItsEnd) {
    const eTempFolder folder;
    const eReports reports;
    for (const std::size_t size : {0u, 5u, 70'000u})
        for (const std::size_t start : {0u, 2u})
            for (const auto& cipher : {std::shared_ptr<eTurningCipher>(), std::make_shared<eTurningCipher>()}) {
                const std::string text(size, 'a');
                const eCase loaded{size, std::min(start, size), cipher};
                IO::eMemoryStream memory;
                memory.Write(text.data(), text.size());
                ExpectReadToItsEnd(memory, loaded, "memory");
                IO::eBufferStream buffer(text);
                ExpectReadToItsEnd(buffer, loaded, "buffer");
                IO::eFileStream file(eFileName(folder.Write("a.sdl", text)),
                                     IO::StreamMode::Read | IO::StreamMode::Errors);
                ExpectReadToItsEnd(file, loaded, "file");
                if (cipher) {
                    const std::size_t read = loaded.size - loaded.start;
                    EXPECT_THAT(cipher->capacities, testing::ElementsAre(read, read, read));
                    EXPECT_THAT(cipher->inputs, testing::ElementsAre(read, read, read));
                    EXPECT_THAT(cipher->sizes, testing::IsEmpty());
                }
            }
    EXPECT_TRUE(reports.errors().empty());
}
