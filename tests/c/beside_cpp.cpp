// SPDX-License-Identifier: BSL-1.0
#include <atomic>
#include <string>

#include <gtest/gtest.h>

#include <qzl_base/error.h>
#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>
#include <qzl_io_c.h>

namespace {

qzl_status ReadWrong() {
    qzl_reader* reader = nullptr;
    EXPECT_EQ(qzl_reader_new(&reader), QZL_OK);
    EXPECT_EQ(qzl_reader_parse(reader, "$", QZL_TERMINATED, nullptr, 0), QZL_OK);
    qzl_token token{};
    token.size = sizeof token;
    const qzl_status status = qzl_reader_next(reader, &token);
    qzl_reader_free(reader);
    return status;
}

qzl_status ConvertWrong() {
    qzl_document* document = nullptr;
    EXPECT_EQ(qzl_document_new(&document), QZL_OK);
    const qzl_status status = qzl_document_parse_json(document, "[", QZL_TERMINATED, nullptr);
    qzl_document_free(document);
    return status;
}

} // namespace

// An application may use both libraries.
TEST(BesideCpp, HandlersOfTheApplicationAreNeitherCalledNorChanged) {
    std::atomic<int> errors = 0;
    std::atomic<int> warnings = 0;
    const xError::eErrorHandlerGuard errorHandler([&](const xError::eReport&) { ++errors; });
    const xError::eWarningHandlerGuard warningHandler([&](const xError::eReport&) { ++warnings; });
    EXPECT_EQ(ReadWrong(), QZL_MISTAKE);
    const qzl_status converted = ConvertWrong();
    EXPECT_TRUE(converted == QZL_MISTAKE || converted == QZL_UNAVAILABLE) << converted;
    EXPECT_EQ(errors, 0);
    EXPECT_EQ(warnings, 0);

    xError::Error("file", 1, "error", true);
    xError::Warning("file", 2, "warning", 0);
    EXPECT_EQ(errors, 1);
    EXPECT_EQ(warnings, 1);
}

TEST(BesideCpp, NothingIsPrinted) {
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    EXPECT_EQ(ReadWrong(), QZL_MISTAKE);
    ConvertWrong();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(BesideCpp, BothReadTheSameDocument) {
    const std::string text = "{a 1.5 \"x\"}";
    eSDLDocument document(text);
    qzl_document* other = nullptr;
    ASSERT_EQ(qzl_document_new(&other), QZL_OK);
    ASSERT_EQ(qzl_document_parse(other, text.data(), text.size(), nullptr, 0), QZL_OK);
    double number = 0;
    EXPECT_EQ(qzl_document_get_number(other, "a", QZL_TERMINATED, &number), QZL_OK);
    EXPECT_EQ(document.Find("a").Value().As<double>(), number);
    qzl_document_free(other);
}
