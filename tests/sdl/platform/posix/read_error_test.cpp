// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cerrno>
#include <functional>
#include <string>

#include <sys/stat.h>

#include <gmock/gmock.h>

#include <qzl_io/sdl.h>

#include "sdl/sdl_source.h"
#include "short_file.h"
#include "support/platform/posix/fault.h"
#include "support/temp_folder.h"

namespace {

using testing::HasSubstr;

std::string Integers() {
    std::string text = "{list";
    for (int i = 0; i < 100'000; ++i)
        text += ' ' + std::to_string(i);
    return text + "}";
}

int TokensIn(eSDLReader reader) {
    int tokens = 0;
    while (!reader.Check(sdlNone))
        ++tokens;
    return tokens;
}

// `load` returns the number of tokens read. If the read that finds the end of the file fails, nothing is lost.
void ExpectReported(const std::function<int()>& load, const std::string& name) {
    const int all = load();
    int reported = 0;
    const int failures = FailEachCall("pread", EIO, [&] {
        try {
            EXPECT_EQ(load(), all);
        } catch (const xError::eException& exception) {
            ++reported;
            EXPECT_EQ(exception.Report().message, name + " - read error!");
            EXPECT_EQ(exception.Report().file, "internal/src/bios/qzl_io/sdl_parser");
            EXPECT_THAT(exception.Report().context, HasSubstr("could not be read to its end: Input/output error."));
        }
    });
    EXPECT_GE(reported, std::max(failures - 1, 1)) << name;
}

class ReadErrors : public testing::Test {
protected:
    void SetUp() override {
        if (!eFault::ReachesLibraries())
            GTEST_SKIP() << "the libraries' calls do not pass through the test program";
    }

    const eTempFolder folder;
};

TEST_F(ReadErrors, AreReportedByEveryWayToLoadASource) {
    const std::string name = folder.Write("list.sdl", Integers());
    const std::string small = folder.Write("small.sdl", "{list 1}");
    const eFileName file(name);
    const eFileNameW wide(folder.NameW(L"list.sdl"));
    const auto closed = [](eSDLReader reader) {
        reader.CheckEOF(false);
        return TokensIn(reader);
    };
    ExpectReported([&] { return closed(eSDLReader(file, "list", nullptr)); }, name);
    ExpectReported([&] { return closed(eSDLReader(wide, "list", nullptr)); }, name);
    ExpectReported([&] { return TokensIn(eSDLReader(file, nullptr)); }, name);
    ExpectReported([&] { return TokensIn(eSDLReader(wide, nullptr)); }, name);
    ExpectReported([&] { return TokensIn(eSDLReader(file, static_cast<eSDLKeyword*>(nullptr), nullptr)); }, name);
    ExpectReported([&] { return TokensIn(eSDLReader(eFileName(small), nullptr)); }, small);
    ExpectReported(
        [&] {
            eSDLReader reader = ReaderOf("1 2");
            reader.Include(file);
            return TokensIn(reader);
        },
        name);
    ExpectReported(
        [&] {
            IO::eFileStream stream(file, IO::StreamMode::Read);
            return TokensIn(eSDLReader(&stream, nullptr));
        },
        "Stream");
}

// A broken disk takes seconds to refuse.
TEST_F(ReadErrors, EndTheReading) {
    const eFileName file(folder.Write("list.sdl", Integers()));
    const std::function<void()> loads[] = {
        [&] { EXPECT_THROW(eSDLReader(file, nullptr), xError::eException); },
        [&] { EXPECT_FALSE(eSDLDocument().Open(file)); },
    };
    for (const auto& load : loads) {
        const eFault fault("pread", EIO, 1, eFault::kAlways);
        load();
        EXPECT_EQ(fault.Calls(), 1);
    }
}

TEST_F(ReadErrors, OfAnIncludedFileLeaveTheReaderWhereItWas) {
    const eFileName file(folder.Write("list.sdl", Integers()));
    eSDLReader reader = ReaderOf("1 2");
    EXPECT_EQ(reader.GetInt(), 1);
    {
        const eFault fault("pread", EIO);
        EXPECT_THROW(reader.Include(file), xError::eException);
    }
    EXPECT_EQ(reader.GetInt(), 2);
}

TEST_F(ReadErrors, AFileThatEndsEarlyIsOneWithoutAReasonOfTheSystems) {
    const std::string shorter = FileShorterThanItSays();
    if (shorter.empty())
        GTEST_SKIP() << "no file that is shorter than it says";
    const auto load = [&] { eSDLReader reader(eFileName(shorter), nullptr); };
    EXPECT_EQ(FailureOf(load).message, shorter + " - read error!");
    EXPECT_THAT(ContextOf(load), HasSubstr("\nThe file is shorter than when it was opened.\n"));
}

TEST_F(ReadErrors, TheReasonIsNotThatOfAnEarlierFailure) {
    IO::eFileStream missing(eFileName(folder.Name("no.sdl")), IO::StreamMode::Read);
    const unsigned char bytes[] = {'1', '2'};
    IO::eBufferStream failing(bytes, sizeof bytes, sizeof bytes + 2);
    failing.Disable(IO::StreamMode::Errors);
    EXPECT_THAT(ContextOf([&] { eSDLReader reader(&failing, nullptr); }), HasSubstr("could not be read to its end."));
}

TEST_F(ReadErrors, AFifoIsRefusedAsAFolderIs) {
    const std::string fifo = folder.Name("fifo");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    const auto open = [&](const std::string& name) { eSDLReader reader(eFileName(name), "scene", nullptr); };
    for (const std::string& name : {fifo, folder.Name()}) {
        EXPECT_EQ(FailureOf([&] { open(name); }), ReaderFailure(17, "Not SDL file!"));
        EXPECT_THAT(ContextOf([&] { open(name); }), HasSubstr("\nThe file could not be opened: "));
    }
    eSDLReader reader = ReaderOf("1");
    reader.Include(eFileName(fifo));
    EXPECT_EQ(reader.GetInt(), 1);
}

} // namespace
