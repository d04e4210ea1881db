// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>

#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "../support/keywords.h"
#include "../support/read_bare.h"
#include "../support/suite.h"
#include "../support/sum_scene.h"
#include "../support/work_folder.h"
#include "../support/write_record.h"

namespace bench {
namespace {

constexpr double kMebibyte = 1048576;

// Growth is linear; the allowance is for data beyond the processor's caches.
constexpr double kGrowthAllowed = 1.5;

constexpr const char* kReadingWork = "reading a file value by value, 9 values a record";
constexpr const char* kWritingWork = "writing a file, with its records generated meanwhile";
constexpr const char* kConvertingWork = "converting JSON, file to file";

constexpr unsigned kBytesOfRecord = 112;
constexpr int kRepetitions = 3;

// A tree of 1 GB of JSON would not fit into the memory of every machine.
constexpr unsigned kLargestTree = 100;

size_t Count(unsigned megabytes) {
    return size_t{megabytes} * 1'000'000 / kBytesOfRecord;
}

// The decades that a run measures.
std::vector<unsigned> Decades(const eOptions& options) {
    return options.small  ? std::vector<unsigned>{}
           : options.full ? std::vector<unsigned>{1, 10, 100, 1000}
                          : std::vector<unsigned>{1, 10, 100};
}

// A document on disk with a given number of records, and the checksum of its values.
struct eFileOnDisk {
    std::string name;
    size_t bytes;
    std::uint64_t sum;
};

const eFileOnDisk& Document(unsigned megabytes) {
    static std::map<unsigned, eFileOnDisk> made;
    const auto [entry, isNew] = made.try_emplace(megabytes);
    if (isNew) {
        const std::string text = TextOf(eDocument::Records, Count(megabytes), eFormat::Sdl);
        entry->second = {WorkFile("grown" + std::to_string(megabytes) + ".sdl"), text.size(), ReadBare(text.c_str())};
        WriteWhole(entry->second.name, text);
    }
    return entry->second;
}

std::uint64_t ReadFile(const std::string& file) {
    eSDLReader reader(eFileName(file), "scene", nullptr);
    reader.PushKeywords(SceneKeywords());
    return SumScene(eDocument::Records, reader);
}

std::uint64_t WriteFile(const std::string& file, size_t count) {
    eSDLWriter writer(eFileName(file), nullptr);
    writer.PushKeywords(SceneKeywords());
    writer << block{wordScene} << endl;
    for (size_t i = 0; i < count; ++i)
        WriteRecord(writer, Record(i));
    writer << endb << endl;
    writer.Close();
    return count;
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
    row.target = megabytes == 1 ? 0 : kGrowthAllowed;
    row.counted = false;
    row.values = ValuesOf(eDocument::Records, Count(megabytes));
    row.repetitions = kRepetitions;
    return row;
}

void AddReading(eSuite& suite, unsigned megabytes) {
    const eFileOnDisk file = Document(megabytes);
    eRow row = Grown(megabytes, "eSDLReader(eFileName)");
    row.bytes = file.bytes;
    row.pass = [file] { return ReadFile(file.name); };
    row.check = [file] { return SameSum(ReadFile(file.name), file.sum); };
    row.peakAllowed = [file] { return static_cast<double>(file.bytes) + kMebibyte; };
    suite.Add(kReadingWork, 0, row, "value", "MB");
}

void AddWriting(eSuite& suite, unsigned megabytes) {
    const eFileOnDisk file = Document(megabytes);
    const size_t count = Count(megabytes);
    const std::string out = WorkFile("grown_written" + std::to_string(megabytes) + ".sdl");
    eRow row = Grown(megabytes, "eSDLWriter(eFileName)");
    row.bytes = file.bytes;
    row.pass = [=] { return WriteFile(out, count); };
    row.check = [=] {
        WriteFile(out, count);
        return SameSum(ReadFile(out), file.sum);
    };
    row.peakAllowed = [file] { return 2 * static_cast<double>(file.bytes); };
    suite.Add(kWritingWork, 0, row, "value", "MB");
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
    for (const unsigned megabytes : Decades(suite.Options())) {
        if (suite.Wants(kReadingWork))
            AddReading(suite, megabytes);
        if (suite.Wants(kWritingWork))
            AddWriting(suite, megabytes);
        if (suite.Wants(kConvertingWork) && megabytes <= kLargestTree)
            AddConverting(suite, megabytes);
    }
});

} // namespace
} // namespace bench
