// SPDX-License-Identifier: BSL-1.0
#include "platform/characters.h"

#include <clocale>
#include <string>

#include <mbctype.h>

#include <gtest/gtest.h>

#include <qzl_io/system.h>

#include "support/wine.h"

namespace {

using IO::Platform::LowerCase;

template <class Text>
Text Lowered(Text text) {
    LowerCase(&text);
    return text;
}

// Saves the run-time's locale, and restores it on destruction.
class eLocale {
public:
    explicit eLocale(const char* name) : before(std::setlocale(LC_ALL, nullptr)) {
        known = std::setlocale(LC_ALL, name) != nullptr;
    }
    ~eLocale() { std::setlocale(LC_ALL, before.c_str()); }
    eLocale(const eLocale&) = delete;
    eLocale& operator=(const eLocale&) = delete;

    bool Known() const { return known; }

private:
    std::string before;
    bool known;
};

TEST(LowerCase, IsAsciiInTheLocaleOfC) {
    const eLocale c("C");
    EXPECT_EQ("work-1_\xC4\xE4", Lowered(std::string("WORK-1_\xC4\xE4")));
    EXPECT_EQ(L"work-1_", Lowered(std::wstring(L"WORK-1_")));
    EXPECT_EQ("", Lowered(std::string()));
    EXPECT_EQ(L"", Lowered(std::wstring()));
}

TEST(LowerCase, IsThatOfTheCurrentLocale) {
    const eLocale german("German_Germany.1252");
    if (!german.Known())
        GTEST_SKIP() << "the run-time has no German locale";
    EXPECT_EQ("\xE4x", Lowered(std::string("\xC4X")));
    EXPECT_EQ(L"\x00E4x", Lowered(std::wstring(L"\x00C4X")));
}

TEST(LowerCase, LeavesTheHalvesOfDoubleByteCharacters) {
    const eLocale japanese("Japanese_Japan.932");
    if (!japanese.Known())
        GTEST_SKIP() << "the run-time has no Japanese locale";
    if (IsUnderWine())
        GTEST_SKIP() << "Wine's run-time lowers byte by byte";
    EXPECT_EQ("\x83\x41"
              "a",
              Lowered(std::string("\x83\x41"
                                  "A")));
}

// Saves the run-time's code page for file names, and restores it on destruction.
class eNameCodePage {
public:
    explicit eNameCodePage(int page) { known = ::_setmbcp(page) == 0; }
    ~eNameCodePage() { ::_setmbcp(_MB_CP_ANSI); }
    eNameCodePage(const eNameCodePage&) = delete;
    eNameCodePage& operator=(const eNameCodePage&) = delete;

    bool Known() const { return known; }

private:
    bool known;
};

TEST(SplitPath, SkipsTheSecondHalvesOfDoubleByteCharacters) {
    const eNameCodePage japanese(932);
    if (!japanese.Known())
        GTEST_SKIP() << "the run-time has no Japanese code page";
    std::string drive, dir, name, ext;
    IO::System::Path::SplitPath("c:\\\x95\\\\\x83\\.txt", &drive, &dir, &name, &ext);
    EXPECT_EQ("c:", drive);
    EXPECT_EQ("\\\x95\\\\", dir);
    EXPECT_EQ("\x83\\", name);
    EXPECT_EQ(".txt", ext);
}

} // namespace
