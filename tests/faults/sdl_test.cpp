// SPDX-License-Identifier: BSL-1.0
// Documents are read and written while everything that this takes fails.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>

#include "faults/injection.h"
#include "faults/kept_document.h"
#include "faults/torture.h"
#include "faults/work_folder.h"

namespace {

constexpr int kEntries = 800;
const std::string kScene = "a scene with a rather long name.sdl";

std::string TextOf(int entry) {
    return std::string(1200, static_cast<char>('a' + entry % 26)) + std::to_string(entry);
}

const std::vector<std::string>& Texts() {
    static const std::vector<std::string> texts = [] {
        std::vector<std::string> made;
        for (int entry = 0; entry < kEntries; ++entry)
            made.push_back(TextOf(entry));
        return made;
    }();
    return texts;
}

// About 1 MB: entries with a long text, two numbers and a block.
std::string MakeDocument() {
    std::string document = "{scene\r\n";
    for (int entry = 0; entry < kEntries; ++entry) {
        const std::string number = std::to_string(entry);
        document += "\t{entry \"" + Texts()[static_cast<std::size_t>(entry)] + "\" " + number + " " + number + ".5\r\n";
        document += "\t\t{point 1 2 3}\r\n\t}\r\n";
    }
    return document + "}\r\n";
}

const std::string& Document() {
    static const std::string document = MakeDocument();
    return document;
}

// The number of entries that are as they should be.
int RightEntries(eSDLReader& reader) {
    int right = 0;
    while (!reader.End()) {
        reader >> begb;
        reader.GetIdent();
        const std::string text = reader.GetString();
        const bool numbers = reader.GetInt() == right && reader.GetFloat() == static_cast<float>(right) + 0.5f;
        reader.SkipBlock();
        right += numbers && text == Texts()[static_cast<std::size_t>(right)] ? 1 : 0;
    }
    return right;
}

// Whatever cannot be read ends with a report, never with a part of the document.
class eReading : public eScenario {
public:
    void Look(const eAftermath& after) override { EXPECT_TRUE(!after.complete || right == kEntries) << right; }

    bool Expects(std::string_view message) const override {
        return message.ends_with(" - read error!") || message == "Not SDL file!" || message == "Not enough memory!";
    }

protected:
    int right = 0;
};

class eReadingFile : public eReading {
public:
    eReadingFile() : name(folder.Write(kScene, Document())) {}

    bool Run() override {
        right = 0;
        eSDLReader reader(name, "scene", nullptr);
        right = RightEntries(reader);
        return true;
    }

private:
    eWorkFolder folder;
    eFileName name;
};

class eReadingInclude : public eReading {
public:
    eReadingInclude()
        : outer(folder.Write("outer.sdl", "{scene {entry \"first\" 1 2} {entry \"last\" 1 2}}")),
          inner(folder.Write("inner.sdl", "{entry \"second\" 1 2} {entry \"third\" 1 2}")) {}

    // A file that cannot be included is an empty source, so the number of entries tells.
    bool Run() override {
        int entries = 0;
        {
            eSDLReader reader(outer, "scene", nullptr);
            for (; !reader.End(); ++entries) {
                reader >> begb;
                reader.GetIdent();
                reader.SkipBlock();
                if (entries == 0)
                    reader.Include(inner);
            }
        }
        right = entries == 4 ? kEntries : entries;
        return entries == 4;
    }

private:
    eWorkFolder folder;
    eFileName outer;
    eFileName inner;
};

void Open(eSDLWriter& writer, const char* name) {
    writer.Stream().WriteControl(sdlBlockStart);
    writer << ident{name};
}

void WriteDocument(eSDLWriter& writer) {
    Open(writer, "scene");
    for (int entry = 0; entry < kEntries; ++entry) {
        writer << endl;
        Open(writer, "entry");
        writer << Texts()[static_cast<std::size_t>(entry)] << entry << static_cast<float>(entry) + 0.5f << endl;
        Open(writer, "point");
        writer << 1 << 2 << 3 << endb << endl << endb;
    }
    writer << endl << endb << endl;
}

// A file is as it was unless the whole document is there, and a missing one may have been created empty.
template <bool existing>
class eWritingFile : public eScenario {
public:
    eWritingFile() : name(existing ? folder.Write(kScene, kOld) : folder.Name(kScene)) {}

    bool Run() override {
        warnings = eNoted::Warnings();
        opened = false;
        eSDLWriter writer(name);
        opened = writer.Opened();
        WriteDocument(writer);
        writer.Close();
        warnings = eNoted::Warnings() - warnings;
        said = eNoted::LastWarning();
        return opened && warnings == 0;
    }

    void Look(const eAftermath& after) override {
        EXPECT_LE(warnings, 1) << "warned more than once";
        const bool stands = folder.Exists(kScene);
        const eKeptDocuments left(folder, kScene, Document(), said, after);
        EXPECT_EQ(stands ? std::set<std::string>{kScene} : std::set<std::string>{}, left.Entries());
        EXPECT_TRUE(stands || (!existing && !after.complete));
        const std::string content = stands ? folder.Read(kScene) : "";
        EXPECT_TRUE(content == Document() || (!after.complete && content == (existing ? kOld : ""))) << content.size();
    }

    bool Expects(std::string_view message) const override {
        return message.starts_with('"' + name.str() + "\" ") || message == "Not enough memory!";
    }

private:
    static inline const std::string kOld = "{old}";

    eWorkFolder folder;
    eFileName name;
    bool opened = false;
    int warnings = 0;
    std::string said;
};

// What did not fit is dropped by the stream, which then says so.
class eWritingStream : public eScenario {
public:
    bool Run() override {
        IO::eMemoryStream target;
        {
            eSDLWriter writer(&target);
            WriteDocument(writer);
        }
        whole = static_cast<std::size_t>(target.Size()) == Document().size() &&
                std::memcmp(target.Buffer(), Document().data(), Document().size()) == 0;
        return target.Disabled(IO::StreamMode::Bad);
    }

    void Look(const eAftermath& after) override { EXPECT_TRUE(!after.complete || whole); }

    bool Expects(std::string_view message) const override {
        return message == "Not enough memory!" || message == "Attempt to write beyond the stream!";
    }

private:
    bool whole = false;
};

// --- Words ---

// Several words share an id, and several share a name if there are fewer names than words.
constexpr int kWords = 50;

template <int different>
class eWords : public eScenario {
public:
    eWords() {
        for (int word = 0; word < kWords; ++word)
            Name(word) = "a word with the number " + std::to_string(word % different);
        for (int word = 0; word < kWords; ++word)
            new (&At(word)) eSDLKeyword(head, Name(word).c_str(), 1 + word % 20);
    }
    ~eWords() override {
        for (int word = 0; word < kWords; ++word)
            At(word).~eSDLKeyword();
    }
    eWords(const eWords&) = delete;
    eWords& operator=(const eWords&) = delete;

    bool Run() override {
        wrong = 0;
        for (int word = 0; word < kWords; ++word) {
            const int first = word % different;
            wrong += head->Find(Name(word).c_str()) != 1 + first % 20;
            wrong += At(word).Find(Name(word).c_str()) != 1 + word % 20;
            wrong += !IsName(head->Find(1 + word % 20), word % 20);
            wrong += !IsName(At(word).Find(1 + word % 20), word);
        }
        return wrong == 0;
    }

    void Look(const eAftermath& after) override { EXPECT_TRUE(wrong == 0 || !after.complete) << wrong; }

    bool Expects(std::string_view) const override { return false; }

private:
    bool IsName(const char* found, int word) { return found && found == Name(word); }
    std::string& Name(int word) { return names[static_cast<std::size_t>(word)]; }
    eSDLKeyword& At(int word) { return reinterpret_cast<eSDLKeyword*>(memory)[word]; }

    std::array<std::string, kWords> names;
    alignas(eSDLKeyword) unsigned char memory[kWords * sizeof(eSDLKeyword)] = {}; // as static storage is
    eSDLKeyword* head = nullptr;
    int wrong = 0;
};

// --- Everything else that a reader and a writer hold ---

eSDLKeyword* words;
eSDLKeyword sceneWord(words, "scene", 1);
eSDLKeyword entryWord(words, "an_entry_with_a_rather_long_name", 2);

class eTurning : public eSDLCipher {
public:
    std::size_t GetEncodedSize(std::size_t size) override { return size; }
    std::size_t Encode(void* target, std::size_t capacity, const void* source, std::size_t size) override {
        const std::size_t turned = std::min(capacity, size);
        for (std::size_t at = 0; at < turned; ++at)
            static_cast<char*>(target)[at] = static_cast<char>(~static_cast<const char*>(source)[at]);
        return turned;
    }
};

class eRoundTrip : public eScenario {
public:
    eRoundTrip() : name(folder.NameW(L"a scene with a rather long name.sdl")) {}

    bool Run() override {
        right = false;
        const auto cipher = std::make_shared<eTurning>();
        const int before = eNoted::Warnings();
        {
            eSDLWriter writer(name, cipher);
            writer.PushKeywords(words);
            eSDLWriter copy(writer);
            writer << block{sceneWord.id};
            copy << block{entryWord.id} << std::wstring(100, L'w') << "escaped \"text\"" << 1.25f << endb;
            writer << endb;
        }
        if (eNoted::Warnings() != before)
            return false;
        eSDLReader reader(name, "scene", cipher);
        reader.PushKeywords(words);
        eSDLReader copy(reader);
        const bool block = copy.GetBlock() == entryWord.id;
        const bool wide = copy.GetStringW() == std::wstring(100, L'w');
        copy.Back();
        reader = copy;
        eStrings strings;
        reader >> strings;
        right = block && wide && strings.size() == 2 && strings[1].str() == "escaped \"text\"" &&
                reader.GetFloat() == 1.25f;
        reader >> endb;
        return right;
    }

    void Look(const eAftermath& after) override { EXPECT_TRUE(right || !after.complete); }

    bool Expects(std::string_view message) const override {
        return message.find("cannot be saved") != message.npos || message.find("was not saved") != message.npos ||
               message.ends_with(" - read error!") || message == "Not SDL file!" || message == "SDLWriter: Not open!" ||
               message == "Not enough memory!";
    }

private:
    eWorkFolder folder;
    const eFileNameW name;
    bool right = false;
};

} // namespace

TEST(Faults, ReadingADocument) {
    Torture<eReadingFile>("read SDL of 1 MB");
}

TEST(Faults, ReadingAnIncludedDocument) {
    Torture<eReadingInclude>("read SDL that includes a file");
}

TEST(Faults, WritingADocumentByName) {
    Torture<eWritingFile<true>>("write SDL of 1 MB over a file");
    Torture<eWritingFile<false>>("write SDL of 1 MB to a missing file");
}

TEST(Faults, WritingADocumentToMemory) {
    Torture<eWritingStream>("write SDL of 1 MB to memory");
}

TEST(Faults, SearchingForWords) {
    Torture<eWords<kWords>>("search a table of keywords");
    Torture<eWords<30>>("search a table of keywords that have names in common");
}

TEST(Faults, RoundTrip) {
    Torture<eRoundTrip>("write and read SDL with keywords, a cipher and copies");
}

// --- Findings ---

TEST(Faults, AWriterThatAnExceptionDestroysWhileThereIsNoMemoryEndsQuietly) {
    IO::eMemoryStream target;
    std::optional<eInjection> noMemory;
    int caught = 0;
    try {
        eSDLWriter writer(&target);
        writer << 1;
        noMemory.emplace(kNoMemoryAtAll, 1);
        throw 7;
    } catch (int thrown) {
        caught = thrown;
    }
    noMemory.reset();
    EXPECT_EQ(7, caught);
}

TEST(Faults, ATableOfKeywordsFindsAllOfThemAfterThereWasNoMemory) {
    eWords<kWords> table;
    for (unsigned long long n = 1; n <= 5; ++n) {
        const eInjection once(kNoMemoryOnce, n);
        try {
            table.Run();
        } catch (const std::bad_alloc&) {
        }
    }
    EXPECT_TRUE(table.Run());
}
