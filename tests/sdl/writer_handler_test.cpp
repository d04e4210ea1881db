// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include <qzl_base/error.h>
#include <qzl_io/sdl.h>

#include "support/content.h"
#include "turning_cipher.h"

// A handler may use the writer whose report it gets.

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

// Writes 1 and a number that is none. The handler of its warning does `use`.
void WriteInvalid(eSDLWriter& writer, const std::function<void()>& use) {
    bool used = false;
    const xError::eWarningHandlerGuard handler([&](const xError::eReport&) {
        if (!std::exchange(used, true))
            use();
    });
    writer << 1 << kNan;
    EXPECT_TRUE(used);
}

} // namespace

TEST(WriterInItsWarning, MayWriteAsMuchAsItWants) {
    IO::eMemoryStream target;
    for (std::size_t size = 480; size < 530; ++size) {
        target.Clear();
        eSDLWriter writer(&target);
        WriteInvalid(writer, [&] { writer << std::string(size, '\n'); });
        std::string expected = "1 \"";
        for (std::size_t i = 0; i < size; ++i)
            expected += "\\n";
        expected += "\" 0";
        for (int i = 0; i < 1000; ++i) {
            writer << 7;
            expected += " 7";
        }
        writer.Close();
        ASSERT_EQ(expected, Content(target)) << size;
    }
}

TEST(WriterInItsWarning, MayBeFlushed) {
    for (const std::size_t size : {std::size_t{1}, std::size_t{5000}, std::size_t{5} << 20}) {
        IO::eMemoryStream target, other;
        const std::string item(size, 'y');
        eSDLWriter writer(&target);
        writer << item;
        WriteInvalid(writer, [&] { writer.Stream().Flush(&other, nullptr); });
        writer << 2;
        writer.Close();
        EXPECT_EQ('"' + item + "\" 1 ", Content(other));
        EXPECT_EQ("0 2", Content(target));
    }
}

TEST(WriterInItsWarning, MayBeClosed) {
    IO::eMemoryStream target;
    eSDLWriter writer(&target);
    WriteInvalid(writer, [&] { writer.Close(); });
    EXPECT_FALSE(writer.Opened());
    EXPECT_EQ("1 ", Content(target));
}

TEST(WriterInItsWarning, MayBeOpenedAnew) {
    IO::eMemoryStream target, other;
    eSDLWriter writer(&target);
    WriteInvalid(writer, [&] { writer.Open(&other); });
    writer << 2;
    writer.Close();
    EXPECT_EQ("1 ", Content(target));
    EXPECT_EQ("2", Content(other));
}

TEST(WriterInItsError, MayBeOpenedAnew) {
    unsigned char bytes[4] = {};
    IO::eBufferStream small(bytes, 3, 3);
    IO::eMemoryStream other;
    eSDLWriter writer(&small);
    writer << 123456;
    bool used = false;
    {
        const xError::eErrorHandlerGuard handler([&](const xError::eReport&) {
            if (!std::exchange(used, true))
                writer.Open(&other);
        });
        writer.Close();
    }
    EXPECT_TRUE(used);
    EXPECT_TRUE(writer.Opened());
    EXPECT_FALSE(writer.Failure());
    writer << 2;
    writer.Close();
    EXPECT_EQ("2", Content(other));
}

namespace {

// Opens a writer anew while it encodes its text.
class eReopeningCipher : public eTurningCipher {
public:
    size_t Encode(void* dst, size_t dstCapacity, const void* src, size_t srcSize) override {
        if (writer)
            std::exchange(writer, nullptr)->Open(next);
        return eTurningCipher::Encode(dst, dstCapacity, src, srcSize);
    }

    eSDLWriter* writer = nullptr;
    IO::eStream* next = nullptr;
};

} // namespace

TEST(WriterInItsCipher, MayBeOpenedAnew) {
    IO::eMemoryStream target, other;
    const auto cipher = std::make_shared<eReopeningCipher>();
    eSDLWriter writer(&target, cipher);
    cipher->writer = &writer;
    cipher->next = &other;
    writer << "text";
    writer.Close();
    EXPECT_EQ(Turned("\"text\""), Content(target));
    EXPECT_TRUE(writer.Opened());
    writer << 2;
    writer.Close();
    EXPECT_EQ(Turned("2"), Content(other));
}
