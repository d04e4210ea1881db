// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <filesystem>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>

#include <qzl_io/streams.h>

#include "support/reports.h"
#include "support/temp_folder.h"

namespace fs = std::filesystem;
namespace Mode = IO::StreamMode;

namespace {

struct eNarrow {
    static eFileName NameIn(const eTempFolder& folder, const std::string& name) { return eFileName(folder.Name(name)); }
};

struct eWide {
    static eFileNameW NameIn(const eTempFolder& folder, const std::string& name) {
        return eFileNameW(folder.NameW(std::wstring(name.begin(), name.end())));
    }
};

template <class Width>
class SaveFile : public testing::Test {
protected:
    auto Name(const std::string& name) const { return Width::NameIn(folder, name); }

    std::set<std::string> Entries() const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder.Path()))
            names.insert(entry.path().filename().string());
        return names;
    }

    eTempFolder folder;
};

using eWidths = testing::Types<eNarrow, eWide>;
TYPED_TEST_SUITE(SaveFile, eWidths);

std::string Document(std::size_t size) {
    std::string text(size, '\0');
    for (std::size_t at = 0; at < size; ++at)
        text[at] = static_cast<char>('a' + at * 7 % 26);
    return text;
}

} // namespace

static_assert(!std::is_copy_constructible_v<IO::eSaveFile> && !std::is_copy_assignable_v<IO::eSaveFile>);
static_assert(std::is_base_of_v<IO::eStream, IO::eSaveFile>);

// --- Commit ---

TYPED_TEST(SaveFile, CommitPutsTheWholeDocumentInTheTargetsPlace) {
    for (const std::size_t size : {0u, 1u, 4095u, 32767u, 32768u, 32769u, 1'000'000u, 40'000'000u})
        for (const IO::eSaveEnd end : {IO::eSaveEnd::OnDisk, IO::eSaveEnd::InMemory}) {
            SCOPED_TRACE(size);
            const std::string document = Document(size);
            this->folder.Write("file", "the old document, longer than some of the new ones");
            IO::eSaveFile file(this->Name("file"), end);
            ASSERT_TRUE(file.IsOpen()) << file.Failure().text;
            file.Write(document.data(), document.size());
            EXPECT_TRUE(file.Commit()) << file.Failure().text;
            EXPECT_FALSE(file.Failure());
            EXPECT_EQ(document, this->folder.Read("file"));
            EXPECT_EQ((std::set<std::string>{"file"}), this->Entries());
        }
}

TYPED_TEST(SaveFile, AMissingTargetComesIntoBeingWithCommit) {
    IO::eSaveFile file(this->Name("file"));
    file << 0x64636261;
    EXPECT_FALSE(this->folder.Exists("file"));
    EXPECT_TRUE(file.Commit());
    EXPECT_EQ("abcd", this->folder.Read("file"));
    EXPECT_EQ((std::set<std::string>{"file"}), this->Entries());
}

TYPED_TEST(SaveFile, TheTargetIsTheOldOneUntilCommit) {
    this->folder.Write("file", "old");
    const std::string document = Document(100'000);
    IO::eSaveFile file(this->Name("file"));
    for (int part = 0; part < 5; ++part) {
        file.Write(document.data(), document.size());
        file.Flush();
        EXPECT_EQ("old", this->folder.Read("file"));
    }
    EXPECT_TRUE(file.Commit());
    EXPECT_EQ(500'000u, fs::file_size(this->folder.Path() / "file"));
}

TYPED_TEST(SaveFile, WithoutCommitTheTargetIsAsItWas) {
    this->folder.Write("file", "old");
    for (const std::string name : {"file", "missing"}) {
        IO::eSaveFile file(this->Name(name));
        file << "new";
        file.Flush();
    }
    EXPECT_EQ("old", this->folder.Read("file"));
    EXPECT_EQ((std::set<std::string>{"file"}), this->Entries());
}

TYPED_TEST(SaveFile, AnExceptionLeavesTheTargetAsItWas) {
    this->folder.Write("file", "old");
    try {
        IO::eSaveFile file(this->Name("file"));
        file << "half of it";
        throw std::runtime_error("while saving");
    } catch (const std::runtime_error&) {
    }
    EXPECT_EQ("old", this->folder.Read("file"));
    EXPECT_EQ((std::set<std::string>{"file"}), this->Entries());
}

TYPED_TEST(SaveFile, CommitIsDoneOnceAndClosesTheStream) {
    IO::eSaveFile file(this->Name("file"));
    file << 'a';
    EXPECT_TRUE(file.Commit());
    this->folder.Write("file", "what somebody else has written since");
    EXPECT_FALSE(file.Commit());
    EXPECT_EQ("what somebody else has written since", this->folder.Read("file"));
}

TYPED_TEST(SaveFile, ABadStreamIsNotCommitted) {
    const eReports reports;
    this->folder.Write("file", "old");
    IO::eSaveFile file(this->Name("file"));
    file << "new";
    file.Seek(1000, IO::eSeekDir::Begin);
    ASSERT_TRUE(file.Enabled(Mode::Bad));
    EXPECT_FALSE(file.Commit());
    EXPECT_TRUE(file.Failure());
    EXPECT_EQ("old", this->folder.Read("file"));
    EXPECT_EQ((std::set<std::string>{"file"}), this->Entries());
}

TYPED_TEST(SaveFile, BytesAmongThoseWrittenCanBeWrittenAgain) {
    const std::string document = Document(100'000);
    IO::eSaveFile file(this->Name("file"));
    file << 0;
    file.Write(document.data(), document.size());
    file.Seek(0, IO::eSeekDir::Begin);
    file << static_cast<int>(document.size());
    file.Seek(0, IO::eSeekDir::End);
    ASSERT_TRUE(file.Commit()) << file.Failure().text;
    const std::string saved = this->folder.Read("file");
    int size = 0;
    std::memcpy(&size, saved.data(), sizeof(size));
    EXPECT_EQ(100'000, size);
    EXPECT_EQ(document, saved.substr(4));
}

// --- What stands in the way ---

TYPED_TEST(SaveFile, AFolderIsNotSaved) {
    fs::create_directory(this->folder.Path() / "sub");
    IO::eSaveFile file(this->Name("sub"));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_NE(std::string::npos, file.Failure().text.find("sub\" cannot be saved: ")) << file.Failure().text;
    EXPECT_FALSE(file.Commit());
    EXPECT_EQ((std::set<std::string>{"sub"}), this->Entries());
}

TYPED_TEST(SaveFile, AMissingFolderIsNotMade) {
    IO::eSaveFile file(this->Name("missing/file"));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_TRUE(file.Failure());
    EXPECT_FALSE(file.Commit());
    EXPECT_TRUE(this->Entries().empty());
}

TYPED_TEST(SaveFile, AnEmptyNameIsNotSaved) {
    IO::eSaveFile file(decltype(this->Name("")){});
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(file.Commit());
}

TYPED_TEST(SaveFile, OpeningReportsNothing) {
    const eReports reports(eReports::Throws);
    EXPECT_FALSE(IO::eSaveFile(this->Name("missing/file")).IsOpen());
    EXPECT_TRUE(reports.errors().empty());
    EXPECT_TRUE(reports.warnings().empty());
}

// --- What others leave behind and do meanwhile ---

TYPED_TEST(SaveFile, WhatAKilledProgramLeftIsRemovedByTheNextSave) {
    this->folder.Write(".file.saving", "half a document");
    {
        IO::eSaveFile file(this->Name("file"));
        file << 'a';
        EXPECT_TRUE(file.Commit()) << file.Failure().text;
    }
    EXPECT_EQ("a", this->folder.Read("file"));
    EXPECT_EQ((std::set<std::string>{"file"}), this->Entries());
}

TYPED_TEST(SaveFile, TwoSavesOfOneTargetDoNotMix) {
    for (const bool firstEndsFirst : {true, false}) {
        this->folder.Write("file", "old");
        const std::string one(100'000, '1'), other(200'000, '2');
        IO::eSaveFile first(this->Name("file")), second(this->Name("file"));
        for (int part = 0; part < 10; ++part) {
            first.Write(one.data(), one.size());
            second.Write(other.data(), other.size());
        }
        EXPECT_TRUE((firstEndsFirst ? first : second).Commit());
        EXPECT_EQ(firstEndsFirst ? '1' : '2', this->folder.Read("file").front());
        EXPECT_TRUE((firstEndsFirst ? second : first).Commit());
        const std::string expected(firstEndsFirst ? std::string(2'000'000, '2') : std::string(1'000'000, '1'));
        EXPECT_EQ(expected, this->folder.Read("file"));
        EXPECT_EQ((std::set<std::string>{"file"}), this->Entries());
    }
}

TYPED_TEST(SaveFile, ATargetRemovedMeanwhileIsThereAgain) {
    this->folder.Write("file", "old");
    IO::eSaveFile file(this->Name("file"));
    file << 'a';
    fs::remove(this->folder.Path() / "file");
    EXPECT_TRUE(file.Commit()) << file.Failure().text;
    EXPECT_EQ("a", this->folder.Read("file"));
}

TYPED_TEST(SaveFile, LongNamesAreSaved) {
    for (const std::size_t length : {200u, 201u, 240u}) {
        const std::string name(length, 'n');
        for (int time = 0; time < 2; ++time) {
            IO::eSaveFile file(this->Name(name));
            file << 'a';
            EXPECT_TRUE(file.Commit()) << file.Failure().text;
        }
        EXPECT_EQ("a", this->folder.Read(name));
    }
}

TYPED_TEST(SaveFile, OpensOnlyOnce) {
    this->folder.Write("file", "old");
    IO::eSaveFile file(this->Name("file"));
    file << 'a';
    IO::eFileStreamBase& stream = file;
    EXPECT_THROW(stream.Open(IO::StreamMode::Write | IO::StreamMode::Errors), xError::eException);
    EXPECT_FALSE(file.Commit());
    EXPECT_EQ("old", this->folder.Read("file"));
}

// --- Hard links ---

TYPED_TEST(SaveFile, AFileWithTwoNamesKeepsThem) {
    this->folder.Write("file", "the old document, which is longer");
    fs::create_hard_link(this->folder.Path() / "file", this->folder.Path() / "other");
    IO::eSaveFile file(this->Name("file"));
    const std::string document = Document(3'000'000);
    file.Write(document.data(), document.size());
    EXPECT_EQ("the old document, which is longer", this->folder.Read("other"));
    ASSERT_TRUE(file.Commit()) << file.Failure().text;
    EXPECT_EQ(document, this->folder.Read("file"));
    EXPECT_EQ(document, this->folder.Read("other"));
    EXPECT_EQ((std::set<std::string>{"file", "other"}), this->Entries());
    IO::eSaveFile shorter(this->Name("other"));
    shorter << 'a';
    ASSERT_TRUE(shorter.Commit()) << shorter.Failure().text;
    EXPECT_EQ("a", this->folder.Read("file"));
}
