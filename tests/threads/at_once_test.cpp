// SPDX-License-Identifier: BSL-1.0
// Everything at once in many threads: each has objects of its own, and they share what a process has once (handlers,
// keyword tables, files, folders, the system's thread storage). Every result is checked, so a wrong one is found
// without a sanitizer, too.

#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iterator>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_base/format.h>
#include <qzl_base/stack_entry.h>
#include <qzl_base/thread_storage.h>
#include <qzl_io/qzl_io.h>

#include "streams/whole_document.h"
#include "support/fast_folder.h"
#include "support/long_tests.h"
#include "support/temp_folder.h"

#include "worker.h"

namespace {

constexpr unsigned kThreads = 16;

eSDLKeyword* words;
const eSDLKeyword itemWord(words, "item", 1);
const eSDLKeyword listWord(words, "list", 2);
const eSDLKeyword endWord(words, "end", 3);

// --- Typed values, in memory and in a file ---

struct eValues {
    explicit eValues(eWorker& worker) {
        for (unsigned count = worker.Random(200); count != 0; --count) {
            numbers.push_back(static_cast<int>(worker.Random(1u << 30)) - (1 << 29));
            texts.push_back(worker.RandomText(60));
        }
    }

    void Write(IO::eStream& stream) const {
        for (std::size_t at = 0; at < numbers.size(); ++at)
            stream << numbers[at] << static_cast<float>(numbers[at]) << texts[at] << ToStringW(texts[at]);
    }

    bool Stand(IO::eStream& stream) const {
        for (std::size_t at = 0; at < numbers.size(); ++at) {
            int number = 0;
            float inexact = 0;
            std::string text;
            std::wstring wide;
            stream >> number >> inexact >> text >> wide;
            if (number != numbers[at] || inexact != static_cast<float>(numbers[at]) || text != texts[at] ||
                wide != ToStringW(texts[at]))
                return false;
        }
        return stream.Disabled(IO::StreamMode::Bad);
    }

    std::vector<int> numbers;
    std::vector<std::string> texts;
};

void TypedValues(eWorker& worker) {
    const eValues values(worker);
    IO::eMemoryStream memory;
    values.Write(memory);
    memory.Reset();
    worker.Expect(values.Stand(memory), "memory holds what was written to it");
    {
        IO::eFileStream file(worker.Own("values"), IO::StreamMode::Write | IO::StreamMode::Create);
        values.Write(file);
    }
    IO::eFileStream file(worker.Own("values"), IO::StreamMode::Read);
    worker.Expect(values.Stand(file), "a file holds what was written to it");
    IO::eMemoryStream copy;
    file.Reset();
    file.CopyTo(copy, memory.Size());
    copy.Reset();
    worker.Expect(values.Stand(copy), "a copy holds what was written to its source");
}

// --- SDL: written, saved and read ---

void WriteItems(eSDLWriter& writer, const eValues& values) {
    writer.PushKeywords(words);
    writer << block{listWord.id} << endl;
    for (std::size_t at = 0; at < values.numbers.size(); ++at)
        writer << block{itemWord.id} << values.numbers[at] << static_cast<float>(values.numbers[at]) / 3
               << values.texts[at] << endb << endl;
    writer << endb << endl;
}

bool AreItems(eSDLReader& reader, const eValues& values) {
    for (std::size_t at = 0; at < values.numbers.size(); ++at) {
        reader.GetBlock(itemWord.id);
        const int number = reader.GetInt();
        const float third = reader.GetFloat();
        if (number != values.numbers[at] || third != static_cast<float>(values.numbers[at]) / 3 ||
            reader.GetString() != values.texts[at])
            return false;
        reader >> endb;
    }
    return reader.End();
}

void Documents(eWorker& worker) {
    const eValues values(worker);
    IO::eMemoryStream memory;
    {
        eSDLWriter writer(&memory);
        WriteItems(writer, values);
    }
    memory.Reset();
    eSDLReader reader(&memory, nullptr);
    reader.PushKeywords(words);
    reader.GetBlock(listWord.id);
    worker.Expect(AreItems(reader, values), "a document in memory is what was written");
    {
        eSDLWriter writer(worker.Own("list.sdl"));
        writer.SetSaveEnd(IO::eSaveEnd::InMemory);
        WriteItems(writer, values);
    }
    eSDLReader saved(worker.Own("list.sdl"), "list", nullptr);
    saved.PushKeywords(words);
    worker.Expect(AreItems(saved, values), "a saved document is what was written");
}

// --- Saves, of files of its own and of files of all ---

// Whether another process or thread may hold up a save, or the opening of a file that is being replaced.
constexpr bool kFilesAreHeld = sizeof(wchar_t) == 2;

std::string ContentOf(const eFileName& name) {
    IO::eFileStream file(name, IO::StreamMode::Read);
    std::string content(file.IsOpen() ? file.Size() : 0, '\0');
    file.Read(content.data(), content.size());
    return content;
}

bool SaveWhole(const eFileName& name, const std::string& document) {
    IO::eSaveFile file(name, IO::eSaveEnd::InMemory);
    file.Write(document.data(), document.size());
    return file.Commit();
}

void Saves(eWorker& worker) {
    const std::string document = WholeDocument(worker.number, worker.Random(100'000));
    worker.Expect(SaveWhole(worker.Own("saved"), document), "a file of its own is saved");
    worker.Expect(ContentOf(worker.Own("saved")) == document, "a saved file is what was written");
    {
        IO::eSaveFile dropped(worker.Own("saved"), IO::eSaveEnd::InMemory);
        dropped << 1;
    }
    worker.Expect(ContentOf(worker.Own("saved")) == document, "a save without Commit changes nothing");
    worker.Expect(SaveWhole(worker.Shared("saved by all"), document) || kFilesAreHeld, "a file of all is saved");
    const std::string seen = ContentOf(worker.Shared("saved by all"));
    worker.Expect(IsWhole(seen) || (kFilesAreHeld && seen.empty()), "a file of all is one whole document");
}

// --- Includes of a file that other threads replace meanwhile ---

void SavePart(eWorker& worker) {
    eSDLWriter writer(worker.Shared("part.sdl"));
    writer.SetSaveEnd(IO::eSaveEnd::InMemory);
    writer << static_cast<int>(worker.number);
    const unsigned count = worker.Random(500);
    writer << static_cast<int>(count);
    for (unsigned each = 0; each < count; ++each)
        writer << static_cast<int>(worker.number) << "a part of a document";
    writer << ident{"end"};
}

void Includes(eWorker& worker) {
    if (!kFilesAreHeld)
        SavePart(worker);
    static const std::string main = "1 \"between\" 2";
    IO::eBufferStream source(main);
    eSDLReader reader(&source, nullptr);
    reader.PushKeywords(words);
    bool whole = reader.GetInt() == 1;
    reader.Include(worker.Shared("part.sdl"));
    const int writer = reader.GetInt();
    for (int count = reader.GetInt(); count != 0; --count)
        whole = whole && reader.GetInt() == writer && reader.GetString() == "a part of a document";
    whole = whole && reader.Check(sdlKeyword, endWord.id) && reader.GetString() == "between" && reader.GetInt() == 2;
    worker.Expect(whole, "an included file is one whole document, at its place");
}

// --- Reports, while other threads exchange the handlers ---

class eNamed : public xDebug::eStackEntry {
public:
    explicit eNamed(std::string text) : name(std::move(text)) {}
    ~eNamed() override { LeaveStack(); }
    std::string DSE_Title() const override { return name; }

private:
    std::string name;
};

void Reports(eWorker& worker) {
    const std::string place = "place " + std::to_string(worker.number) + "." + std::to_string(worker.Random(1000));
    const eNamed entry(place);
    worker.ExpectReport(false, "a warning of " + place, place,
                        [&] { xError::Warning("unit", 1, "a warning of " + place, 0); });
    worker.ExpectReport(true, "an error of " + place, place,
                        [&] { xError::Error("unit", 2, "an error of " + place, true); });
    IO::eBufferStream source(place);
    eSDLReader reader(&source, nullptr);
    worker.ExpectReport(true, "String expected!", place, [&] {
        try {
            reader.GetString();
            worker.Expect(false, "a fatal error throws");
        } catch (const xError::eException& thrown) {
            worker.Expect(thrown.Report().message == "String expected!", "the exception is of this thread's report");
        }
    });
    IO::eMemoryStream none(8);
    none.Enable(IO::StreamMode::Errors);
    IO::eFileStream missing;
    worker.ExpectReport(false, "Saving invalid floating number nan. It was truncated to 0", place, [&] {
        eSDLWriter writer(&none);
        writer << std::numeric_limits<float>::quiet_NaN();
    });
}

void Handlers(eWorker& worker) {
    worker.Expect(xError::SetErrorHandler(eWorker::Handler(true)) != nullptr, "the handler before was one of the test");
    worker.Expect(xError::SetWarningHandler(eWorker::Handler(false)) != nullptr, "so was that of warnings");
}

// An entry may go on another thread while its own thread reports.
void EntriesOfOtherThreads(eWorker& worker) {
    for (int round = 0; round < 3; ++round) {
        auto entry = std::make_unique<eNamed>("passing");
        std::thread other([&entry] { entry.reset(); });
        worker.ExpectReport(false, "meanwhile", "", [] { xError::Warning("unit", 3, "meanwhile", 0); });
        other.join();
    }
}

// --- Thread storage, made and destroyed while threads end ---

struct eCounted {
    eCounted() { ++living; }
    ~eCounted() { --living; }
    eCounted(const eCounted&) = delete;
    eCounted& operator=(const eCounted&) = delete;
    int value = 0;
    static inline std::atomic<int> living = 0;
};

eCriticalResource<eCounted>& StorageOfAll() {
    static eCriticalResource<eCounted> storage;
    return storage;
}

void Storage(eWorker& worker) {
    auto storage = std::make_unique<eCriticalResource<eCounted>>();
    const int before = ++StorageOfAll().Get().value;
    std::array<std::atomic<int>, 3> sums{};
    std::atomic<int> done = 0;
    std::vector<std::thread> threads;
    for (std::atomic<int>& sum : sums)
        threads.emplace_back([&] {
            for (int round = 0; round < 20; ++round)
                ++storage->Get().value;
            sum = storage->Get().value + 100 * StorageOfAll().Get().value +
                  static_cast<int>(eSDLReader::LoadingModes().size());
            eSDLReader::LoadingModes().Add("mode");
            ++done;
        });
    while (done != 3)
        std::this_thread::yield();
    storage.reset(); // while its last users end
    storage = std::make_unique<eCriticalResource<eCounted>>();
    worker.Expect(storage->Get().value == 0, "a new storage has nothing of the one before");
    for (std::thread& thread : threads)
        thread.join();
    for (const std::atomic<int>& sum : sums)
        worker.Expect(sum == 20, "each thread has objects of its own");
    worker.Expect(StorageOfAll().Get().value == before, "no other thread has this thread's object");
}

// --- Files and folders, the machine, texts ---

void Folders(eWorker& worker) {
    namespace Path = IO::System::Path;
    namespace File = IO::System::File;
    const eFileName tree = worker.Own("tree"), copy = worker.Own("copy");
    for (const char* const name : {"/a/b", "/a/empty", "/c"})
        worker.Expect(Path::Create(eFileName(tree.str() + name)), "folders are created");
    const std::string content = WholeDocument(worker.number, worker.Random(1000));
    worker.Expect(SaveWhole(eFileName(tree.str() + "/a/b/file"), content), "a file in them is saved");
    Path::Copy(tree, copy);
    worker.Expect(ContentOf(eFileName(copy.str() + "/a/b/file")) == content, "a tree is copied with its files");
    Path::PurgeEmpty(eFileName(copy.str() + "/"));
    int entries = 0;
    for (IO::eSearch search(eFileName(copy.str() + "/"), eFileName("*.*")); search.Valid(); search.Next())
        entries += search.IsSubfolder();
    worker.Expect(entries == 1, "purging leaves what holds a file");
    worker.Expect(File::Rename(eFileName(copy.str() + "/a/b/file"), worker.Own("renamed")), "a file is renamed");
    worker.Expect(File::Delete(worker.Own("renamed")), "a file is deleted");
    for (const eFileName& folder : {tree, copy}) {
        Path::Delete(folder, true);
        worker.Expect(!File::Access(folder, File::Exist), "a tree is deleted");
    }
}

void Texts(eWorker& worker) {
    const std::string text = worker.RandomText(200);
    for (const int page : {65001, 1252, 437})
        worker.Expect(WideCharToString(StringToWideChar(text, page), page) == text,
                      "a text comes back from a code page");
    std::string escaped = text;
    ConvertEscSequence(&escaped, true);
    ConvertEscSequence(&escaped, false);
    worker.Expect(escaped == text, "a text comes back from its escapes");
    const float number = static_cast<float>(worker.Random(1u << 31)) / 7;
    float back = 0;
    worker.Expect(_FromString(&back, ToString(number).c_str()) && back == number, "a number comes back from its text");
    worker.Expect((format("%1% of %2%") % 1 % text).str() == "1 of " + text, "a pattern is filled");
}

using eRole = void (*)(eWorker&);
constexpr eRole kRoles[] = {&TypedValues,           &Documents, &Saves,   &Includes, &Reports, &Handlers,
                            &EntriesOfOtherThreads, &Storage,   &Folders, &Texts};
constexpr std::size_t kRoleCount = std::size(kRoles);

} // namespace

TEST(Threads, DoEverythingAtOnceAndEachGetsWhatItWrote) {
    const eTempFolder folder(FastFolder());
    const auto time = LongTests() ? std::chrono::seconds(60) : std::chrono::seconds(2);
    const auto end = std::chrono::steady_clock::now() + time;
    auto errorsBefore = xError::SetErrorHandler(eWorker::Handler(true));
    auto warningsBefore = xError::SetWarningHandler(eWorker::Handler(false));
    std::vector<std::unique_ptr<eWorker>> workers;
    for (unsigned number = 0; number < kThreads; ++number) {
        workers.push_back(std::make_unique<eWorker>(folder.Name(), number));
        std::filesystem::create_directory(workers.back()->own);
    }
    SavePart(*workers.front());
    std::array<std::atomic<unsigned>, kRoleCount> done{};
    std::vector<std::thread> threads;
    for (const auto& each : workers)
        threads.emplace_back([&done, &worker = *each, end] {
            for (std::size_t round = 0; round < kRoleCount || std::chrono::steady_clock::now() < end; ++round) {
                const std::size_t role = (round + worker.number) % kRoleCount;
                try {
                    kRoles[role](worker);
                } catch (const std::exception& thrown) {
                    worker.Expect(false, std::string("nothing was thrown in role ") + std::to_string(role) + ": " +
                                             thrown.what());
                }
                ++done[role];
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    xError::SetErrorHandler(std::move(errorsBefore));
    xError::SetWarningHandler(std::move(warningsBefore));
    for (const auto& worker : workers)
        EXPECT_EQ("", worker->failure);
    EXPECT_EQ("", eWorker::Unexpected());
    for (std::size_t role = 0; role < kRoleCount; ++role)
        EXPECT_GE(done[role], kThreads) << role;
    if (LongTests())
        for (std::size_t role = 0; role < kRoleCount; ++role)
            std::printf("role %zu: %u times\n", role, done[role].load());
}
