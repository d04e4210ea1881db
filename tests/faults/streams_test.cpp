// SPDX-License-Identifier: BSL-1.0
// Streams over files and memory while everything that they use fails: what does not arrive is told by Bad, and what is
// told to have arrived is there.
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/strings.h>
#include <qzl_io/streams.h>

#include "faults/injection.h"
#include "faults/platform/system.h"
#include "faults/torture.h"
#include "faults/work_folder.h"

namespace Mode = IO::StreamMode;

namespace {

constexpr int kValues = 20'000;
constexpr char kName[] = "a file with a rather long name";
constexpr wchar_t kNameW[] = L"a file with a rather long name";
const std::string kText = "a text that takes memory of its own";
const std::wstring kWideText = L"a wide text that takes memory of its own";

bool IsStreamMessage(std::string_view message) {
    return message == "Not enough memory!" || message == "Attempt to read beyond the stream!" ||
           message == "Attempt to write beyond the stream!" || message == "Invalid read location!" ||
           message == "Invalid seek location!" || message.ends_with(" - open error!") ||
           message.starts_with("Stream.PlaceBuffer: ");
}

class eStreamScenario : public eScenario {
public:
    bool Expects(std::string_view message) const override { return IsStreamMessage(message); }

protected:
    eWorkFolder folder;
};

void WriteValues(IO::eStream& stream, const eStrings& texts) {
    for (int value = 0; value < kValues; ++value)
        stream << value << static_cast<double>(value);
    stream << kText << kWideText << texts;
}

bool AreValues(IO::eStream& stream) {
    int wrong = 0;
    for (int value = 0; value < kValues; ++value) {
        int number = -1;
        double real = -1;
        stream >> number >> real;
        wrong += number != value || real != static_cast<double>(value);
    }
    std::string text;
    std::wstring wide;
    eStrings texts;
    stream >> text >> wide >> texts;
    return wrong == 0 && text == kText && wide == kWideText && texts.size() == 3 && texts[2].str() == kText;
}

eStrings SomeTexts() {
    eStrings texts;
    for (const char* text : {"", "short", kText.c_str()})
        texts.Add(text);
    return texts;
}

// --- Typed values ---

template <bool returns>
class eTypedValues : public eStreamScenario {
public:
    eTypedValues() : name(folder.Name(kName)) {}

    bool Run() override {
        right = false;
        bool written = false;
        {
            IO::eFileStream target(name, Mode::Write | Mode::Create | (returns ? Mode::Read : 0));
            written = target.IsOpen();
            WriteValues(target, texts);
            target.Close();
            written = written && target.Disabled(Mode::Bad);
        }
        IO::eFileStream source(name, Mode::Read);
        const bool read = source.IsOpen();
        right = AreValues(source);
        return written && read && source.Disabled(Mode::Bad);
    }

    void Look(const eAftermath& after) override { EXPECT_TRUE(right || !after.complete); }

    bool Returns() const override { return returns; }

private:
    const eFileName name;
    const eStrings texts = SomeTexts();
    bool right = false;
};

class eValuesInMemory : public eStreamScenario {
public:
    bool Run() override {
        right = false;
        IO::eMemoryStream stream;
        WriteValues(stream, texts);
        IO::eMemoryStream copy(stream);
        copy.Reset();
        right = AreValues(copy);
        return stream.Disabled(Mode::Bad) && copy.Disabled(Mode::Bad);
    }

    void Look(const eAftermath& after) override { EXPECT_TRUE(right || !after.complete); }

    bool Returns() const override { return true; }

private:
    const eStrings texts = SomeTexts();
    bool right = false;
};

// --- Files as a whole ---

class eCopying : public eStreamScenario {
public:
    eCopying() : from(folder.Write("from", content)), to(folder.Name(kName)) {}

    bool Run() override {
        IO::eFileStream source(from, Mode::Read);
        IO::eFileStream target(to, Mode::Write | Mode::Create);
        const bool opened = source.IsOpen() && target.IsOpen();
        source.CopyTo(target, content.size());
        target.Close();
        return opened && source.Disabled(Mode::Bad) && target.Disabled(Mode::Bad);
    }

    void Look(const eAftermath& after) override {
        EXPECT_EQ(content, folder.Read("from"));
        EXPECT_TRUE(!after.complete || folder.Read(kName) == content);
    }

private:
    static inline const std::string content = std::string(150'000, 'a') + std::string(150'000, 'b');

    const eFileName from, to;
};

// The middle of a file is replaced, and its end cut off.
class eChanging : public eStreamScenario {
public:
    eChanging() : name(folder.Write(kName, std::string(100'000, 'o'))) {}

    bool Run() override {
        IO::eFileStream stream(name, Mode::Write);
        const bool opened = stream.IsOpen();
        stream.Seek(40'000, IO::eSeekDir::Begin);
        stream.Write(part.data(), part.size());
        stream.Trunc();
        stream.Close();
        return opened && stream.Disabled(Mode::Bad);
    }

    void Look(const eAftermath& after) override {
        EXPECT_TRUE(!after.complete || folder.Read(kName) == std::string(40'000, 'o') + part);
    }

private:
    static inline const std::string part = std::string(50'000, 'n');

    const eFileName name;
};

class eLines : public eStreamScenario {
public:
    eLines() : name(folder.Name(kName)) {}

    bool Run() override {
        lines = 0;
        bool written = false;
        {
            IO::eFileStream target(name, Mode::Write | Mode::Create);
            written = target.IsOpen();
            IO::eTextStream text(&target);
            for (int line = 0; line < kLines; ++line)
                text.WriteStr(kText.c_str()).WriteStr(IO::TextLineSeparator());
            target.Close();
            written = written && target.Disabled(Mode::Bad);
        }
        IO::eFileStream source(name, Mode::Read);
        const bool read = source.IsOpen();
        while (!source.Eos())
            lines += source.GetLine() == kText;
        return written && read && source.Disabled(Mode::Bad);
    }

    void Look(const eAftermath& after) override { EXPECT_TRUE(lines == kLines || !after.complete) << lines; }

private:
    static constexpr int kLines = 50;

    const eFileName name;
    int lines = 0;
};

// --- Opening ---

class eOpening : public eStreamScenario {
public:
    eOpening()
        : name(folder.Write(kName, "content")),
          wide(folder.NameW(kNameW)),
          missing(folder.Name("a file that is missing")) {}

    bool Run() override {
        std::vector<std::unique_ptr<IO::eStream>> opened;
        opened.reserve(6);
        for (const int mode : {int{Mode::Read}, int{Mode::Write}, Mode::Read | Mode::Write | Mode::Errors}) {
            opened.emplace_back(IO::GetStream(name, mode));
            opened.emplace_back(IO::GetStream(wide, mode));
        }
        const IO::eTextStream text(name, Mode::Read);
        int open = text.Position() == 0 ? 0 : -1;
        for (const auto& stream : opened)
            open += stream && stream->IsOpen() && stream->Disabled(Mode::Bad) && stream->Size() == 7;
        refused = !IO::eFileStream(missing, Mode::Read).IsOpen();
        return open == 6;
    }

    void Look(const eAftermath&) override {
        EXPECT_TRUE(refused);
        EXPECT_EQ("content", folder.Read(kName));
        refused = true;
    }

private:
    const eFileName name;
    const eFileNameW wide;
    const eFileName missing;
    bool refused = true;
};

// --- Copies that share ---

class eSharing : public eStreamScenario {
public:
    eSharing() : name(folder.Write(kName, std::string(100'000, 'x'))) {}

    bool Run() override {
        right = false;
        IO::eFileStream first(name, Mode::Read);
        IO::eFileStream second(first);
        IO::eFileStream third;
        third = second;
        const bool opened = third.IsOpen();
        std::string bytes(90'000, '?');
        second.Read(bytes.data(), bytes.size());
        char one = 0;
        first >> one;
        right = one == 'x' && bytes == std::string(90'000, 'x');
        return opened && first.Disabled(Mode::Bad) && second.Disabled(Mode::Bad);
    }

    void Look(const eAftermath& after) override { EXPECT_TRUE(right || !after.complete); }

private:
    const eFileName name;
    bool right = false;
};

} // namespace

TEST(Faults, TypedValuesToAFileAndBack) {
    Torture<eTypedValues<false>>("typed values to a file and back");
    Torture<eTypedValues<true>>("typed values to a file and back, with a handler that returns");
}

TEST(Faults, TypedValuesInMemory) {
    Torture<eValuesInMemory>("typed values in memory");
}

TEST(Faults, CopyingFromFileToFile) {
    Torture<eCopying>("copy a stream");
}

TEST(Faults, ChangingAFile) {
    Torture<eChanging>("change a file");
}

TEST(Faults, Lines) {
    Torture<eLines>("lines of text to a file and back");
}

TEST(Faults, OpeningFiles) {
    Torture<eOpening>("open files");
}

TEST(Faults, CopiesOfAStream) {
    Torture<eSharing>("copies that share a file");
}

// --- Findings ---

TEST(Faults, AStreamThatThereIsNoMemoryForIsNull) {
    const eWorkFolder folder;
    const eFileName name(folder.Write(kName, "content"));
    const eFileNameW wide(folder.NameW(kNameW));
    const long long handles = OpenHandles();
    for (unsigned long long n = 1;; ++n) {
        const eInjection injection(kNoMemoryAtAll, n);
        const std::unique_ptr<IO::eStream> stream(IO::GetStream(name, Mode::Write));
        const std::unique_ptr<IO::eStream> other(IO::GetStream(wide, Mode::Write));
        if (!injection.Struck())
            break;
    }
    EXPECT_EQ(handles, OpenHandles());
}
