// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <random>
#include <string>

#include <qzl_io/sdl/document.h>

#include "sdl/document_edits.h"
#include "sdl/document_model.h"
#include "sdl/hard_pieces.h"
#include "sdl/random_source.h"
#include "support/rounds.h"

namespace {

void ExpectAsReader(const std::string& text) {
    const eSDLDocument document(text);
    ASSERT_EQ(document.Text(), text);
    ASSERT_EQ(document.Size(), text.size());
    ASSERT_EQ(JoinedParts(document), text);
    const auto read = ReadAsReader(text);
    ASSERT_EQ(document.ErrorCount() == 0, read.has_value()) << testing::PrintToString(text);
    std::size_t errors = 0;
    for (const xError::eDiagnostic& diagnostic : document.Errors())
        errors += diagnostic.severity == xError::eDiagnostic::eSeverity::Error;
    ASSERT_EQ(errors, document.ErrorCount()) << testing::PrintToString(text);
    if (read) {
        ASSERT_EQ(ShownItems(document), *read) << testing::PrintToString(text);
    }
}

TEST(DocumentText, AnyPiecesComeBackAndAreErrorsWhereAReaderRefusesThem) {
    std::mt19937 random(1);
    for (eRounds rounds(20000, 1000000); rounds.Next();) {
        ExpectAsReader(RandomSource(random, 20));
        if (HasFatalFailure())
            return;
    }
}

TEST(DocumentText, AnyBytesComeBackAndAreErrorsWhereAReaderRefusesThem) {
    constexpr char kBytes[] = "aA0129 \t\r\n=;\"\\{}()#+-*/.ex%_,$\x80\xC3\xA9";
    std::mt19937 random(2);
    for (eRounds rounds(50000, 3000000); rounds.Next();) {
        std::string text;
        for (auto left = random() % 24; left > 0; --left)
            text += kBytes[random() % sizeof kBytes];
        ExpectAsReader(text);
        if (HasFatalFailure())
            return;
    }
}

TEST(DocumentText, EveryPieceAtEveryPlaceHasItsParts) {
    for (const std::string& piece : kHardPieces)
        for (const char* tail : {"", "{#m b \"}\" 1.5}", "\" 1 ({}) {##h (}}\n} x"}) {
            ExpectAsReader(piece + tail);
            const eModelParts parts = PartsOf(eSDLDocument(piece + tail));
            for (std::size_t place = 1; place < 130; ++place) {
                const std::string text = std::string(place, ' ') + piece + tail;
                ASSERT_EQ(PartsOf(eSDLDocument(text)), parts) << text;
            }
        }
}

TEST(DocumentParts, TellTheNumberOfBlocksAroundThem) {
    using namespace std::string_literals;
    const eSDLDocument document("\xEF\xBB\xBF; c\n{a {#m b 1}(define x)$}2\0{"s);
    std::string shown;
    for (const eSDLPart& part : document.Parts())
        if (part.kind != eSDLKind::Blank)
            shown += std::string(part.text) + ' ' + std::to_string(part.depth) + '\n';
    EXPECT_EQ(shown, "\xEF\xBB\xBF 0\n; c 0\n{ 0\na 1\n{#m 1\nb 2\n1 2\n} 1\n(define x) 1\n$ 1\n} 0\n2 0\n\0{ 0\n"s);
}

} // namespace
