// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>

#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "../support/keywords.h"
#include "../support/read_bare.h"
#include "../support/read_scene.h"
#include "../support/suite.h"
#include "../support/sum_scene.h"
#include "../support/work_folder.h"
#include "../support/write_record.h"

namespace bench {
namespace {

constexpr double kMebibyte = 1048576;

// A value of a large document may take this much longer than one of a document that is beyond the caches, too.
constexpr double kGrowthAllowed = 1.15;
constexpr unsigned kBeyondCaches = 16;

constexpr const char* kReadingWork = "reading a file value by value, 9 values a record";
constexpr const char* kReadingMemoryWork = "reading a text in memory value by value, 9 values a record";
constexpr const char* kWritingWork = "writing a file, with its records generated meanwhile";
constexpr const char* kWritingMemoryWork = "writing to memory, with its records generated meanwhile";
constexpr const char* kConvertingWork = "converting JSON, file to file";

constexpr unsigned kBytesOfRecord = 112;
constexpr int kRepetitions = 5;

// A tree of 1 GB of JSON would not fit into the memory of every machine.
constexpr unsigned kLargestTree = 128;

size_t Count(unsigned megabytes) {
    return size_t{megabytes} * 1'000'000 / kBytesOfRecord;
}

// The sizes that a run measures, in megabytes. The first one is what the others are compared with.
std::vector<unsigned> Sizes(const eOptions& options) {
    return options.small  ? std::vector<unsigned>{}
           : options.full ? std::vector<unsigned>{kBeyondCaches, 1, 128, 1000}
                          : std::vector<unsigned>{kBeyondCaches, 1, 128};
}

// A document with a given number of records, on disk and in memory, and the checksum of its values.
struct eLargeDocument {
    std::string file;
    std::string text;
    std::uint64_t sum;
};

const eLargeDocument& Document(unsigned megabytes) {
    static std::map<unsigned, eLargeDocument> made;
    const auto [entry, isNew] = made.try_emplace(megabytes);
    if (isNew) {
        std::string text = TextOf(eDocument::Records, Count(megabytes), eFormat::Sdl);
        const std::uint64_t sum = ReadBare(text.c_str());
        entry->second = {WorkFile("grown" + std::to_string(megabytes) + ".sdl"), std::move(text), sum};
        WriteWhole(entry->second.file, entry->second.text);
    }
    return entry->second;
}

std::uint64_t ReadFile(const std::string& file) {
    eSDLReader reader(eFileName(file), "scene", nullptr);
    reader.PushKeywords(SceneKeywords());
    return SumScene(eDocument::Records, reader);
}

void WriteRecords(eSDLWriter& writer, size_t count) {
    writer.PushKeywords(SceneKeywords());
    writer << block{wordScene} << endl;
    for (size_t i = 0; i < count; ++i)
        WriteRecord(writer, Record(i));
    writer << endb << endl;
    writer.Close();
}

std::uint64_t WriteFile(const std::string& file, size_t count) {
    eSDLWriter writer(eFileName(file), nullptr);
    WriteRecords(writer, count);
    return count;
}

void WriteMemory(IO::eMemoryStream& text, size_t count) {
    eSDLWriter writer(&text, nullptr);
    WriteRecords(writer, count);
}

// What pages that were not used before cost: a copy of the text into a block of its own.
std::uint64_t CopyIntoFreshPages(const std::string& text) {
    const auto block = std::make_unique_for_overwrite<char[]>(text.size());
    std::memcpy(block.get(), text.data(), text.size());
    return static_cast<unsigned char>(block[text.size() / 2]);
}

std::uint64_t Convert(const std::string& from, const std::string& to) {
    if (!JsonToSdl(eFileName(from), eFileName(to)))
        throw std::runtime_error("cannot convert " + from);
    return 1;
}

eRow Grown(unsigned megabytes, const char* what) {
    eRow row;
    row.contender = what;
    row.size = megabytes;
    row.target = megabytes > kBeyondCaches ? kGrowthAllowed : 0;
    row.bytes = Document(megabytes).text.size();
    row.counted = false;
    row.values = ValuesOf(eDocument::Records, Count(megabytes));
    row.repetitions = kRepetitions;
    return row;
}

void AddReading(eSuite& suite, unsigned megabytes) {
    const eLargeDocument& document = Document(megabytes);
    eRow row = Grown(megabytes, "eSDLReader(eFileName)");
    row.pass = [&document] { return ReadFile(document.file); };
    row.check = [&document] { return SameSum(ReadFile(document.file), document.sum); };
    row.peakAllowed = [&document] { return static_cast<double>(document.text.size()) + kMebibyte; };
    suite.Add(kReadingWork, 0, row, "value", "MB");
}

void AddReadingMemory(eSuite& suite, unsigned megabytes) {
    const eLargeDocument& document = Document(megabytes);
    eRow row = Grown(megabytes, "eSDLReader(eStream*)");
    row.pass = [&document] { return ReadScene(eDocument::Records, document.text); };
    row.check = [&document] { return SameSum(ReadScene(eDocument::Records, document.text), document.sum); };
    suite.Add(kReadingMemoryWork, 0, row, "value", "MB");

    eRow pages = Grown(megabytes, "the text copied into fresh pages");
    pages.kind = eKind::Note;
    pages.target = 0;
    pages.pass = [&document] { return CopyIntoFreshPages(document.text); };
    pages.check = [] { return 1; };
    suite.Add(kReadingMemoryWork, 0, pages, "value", "MB");
}

void AddWriting(eSuite& suite, unsigned megabytes) {
    const size_t count = Count(megabytes);
    const std::string out = WorkFile("grown_written" + std::to_string(megabytes) + ".sdl");
    const eLargeDocument& document = Document(megabytes);
    eRow row = Grown(megabytes, "eSDLWriter(eFileName)");
    row.pass = [=] { return WriteFile(out, count); };
    row.check = [=, &document] {
        WriteFile(out, count);
        return SameSum(ReadFile(out), document.sum);
    };
    row.peakAllowed = [&document] { return 2 * static_cast<double>(document.text.size()); };
    suite.Add(kWritingWork, 0, row, "value", "MB");
}

void AddWritingMemory(eSuite& suite, unsigned megabytes) {
    const size_t count = Count(megabytes);
    const eLargeDocument& document = Document(megabytes);
    eRow row = Grown(megabytes, "eSDLWriter(eStream*)");
    row.pass = [=] {
        IO::eMemoryStream text;
        WriteMemory(text, count);
        return text.Size();
    };
    row.check = [=, &document] {
        IO::eMemoryStream text;
        WriteMemory(text, count);
        const std::string written(reinterpret_cast<const char*>(text.Buffer()), text.Size());
        return SameSum(ReadBare(written.c_str()), document.sum);
    };
    suite.Add(kWritingMemoryWork, 0, row, "value", "MB");
}

void AddConverting(eSuite& suite, unsigned megabytes) {
    const std::string in = WorkFile("grown" + std::to_string(megabytes) + ".json");
    const std::string out = WorkFile("grown_converted" + std::to_string(megabytes) + ".sdl");
    const std::string json = TextOf(eDocument::Records, Count(megabytes), eFormat::Json);
    WriteWhole(in, json);
    eRow row = Grown(megabytes, "JsonToSdl");
    row.bytes = json.size();
    row.pass = [=] { return Convert(in, out); };
    row.check = [=, sum = Document(megabytes).sum] {
        Convert(in, out);
        const std::string text = ReadWhole(out);
        return SameSum(ReadBare(text.c_str()), sum);
    };
    suite.Add(kConvertingWork, 0, row, "value", "MB");
}

const eContender contender(0, [](eSuite& suite) {
    for (const unsigned megabytes : Sizes(suite.Options())) {
        if (suite.Wants(kReadingWork))
            AddReading(suite, megabytes);
        if (suite.Wants(kReadingMemoryWork))
            AddReadingMemory(suite, megabytes);
        if (suite.Wants(kWritingWork))
            AddWriting(suite, megabytes);
        if (suite.Wants(kWritingMemoryWork))
            AddWritingMemory(suite, megabytes);
        if (suite.Wants(kConvertingWork) && megabytes <= kLargestTree)
            AddConverting(suite, megabytes);
    }
});

} // namespace
} // namespace bench
