// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "../support/keywords.h"
#include "../support/read_scene.h"
#include "../support/stream_values.h"
#include "../support/suite.h"
#include "../support/sum_scene.h"

// What the library offers against bad data, beside the same work without it: the first row of each work.

namespace bench {
namespace {

// What is not used costs nothing; on a stream a limit is one comparison.
constexpr double kNothing = 1.05;
// A place is asked for once a record, which has nine values.
constexpr double kPlaces = 1.15;
// A checked value is asked for twice: whether it is there, and what it is.
constexpr double kChecked = 2.0;

constexpr unsigned long long kFarLimit = 1ULL << 40;

eSDLLimits FarLimits() {
    eSDLLimits limits;
    limits.sourceBytes = kFarLimit;
    limits.tokenBytes = kFarLimit;
    limits.includeDepth = 16;
    return limits;
}

// An application that keeps where each record began, to complain of it later.
std::uint64_t ReadWithPlaces(const std::string& text) {
    IO::eBufferStream stream(std::string_view{text});
    eSDLReader reader(&stream, nullptr);
    reader.PushKeywords(SceneKeywords());
    reader.GetBlock(wordScene);
    eSceneSum sum(reader);
    long long lines = 0;
    while (!reader.End()) {
        sum.Record();
        lines += reader.Place().line;
    }
    reader >> endb;
    return lines > 0 ? sum.Value() : 0;
}

std::uint64_t ReadAndFinish(const std::string& text) {
    IO::eBufferStream stream(std::string_view{text});
    eSDLReader reader(&stream, nullptr);
    reader.ReportOnce();
    reader.PushKeywords(SceneKeywords());
    reader.GetBlock(wordScene);
    const std::uint64_t sum = SumScene(eDocument::Records, reader);
    reader >> endb;
    reader.Finish(eSDLRest::Refuse);
    return sum;
}

eRow OwnRow(const char* contender, double target, std::size_t bytes, std::function<std::uint64_t()> pass) {
    eRow row;
    row.contender = contender;
    row.target = target;
    row.bytes = bytes;
    row.pass = std::move(pass);
    return row;
}

void AddReading(eSuite& suite, unsigned kilobytes) {
    const std::string work = "safety in reading records, " + SizeName(kilobytes);
    if (!suite.Wants(work))
        return;
    const std::string& text = Text(eDocument::Records, kilobytes, eFormat::Sdl);
    const auto add = [&](const char* contender, double target, std::function<std::uint64_t()> pass) {
        suite.Add(work, Values(eDocument::Records, kilobytes), OwnRow(contender, target, text.size(), std::move(pass)));
    };
    add("eSDLReader", 0, [&text] { return ReadScene(eDocument::Records, text); });
    add("with limits", kNothing, [&text] { return ReadScene(eDocument::Records, text, FarLimits()); });
    add("with ReportOnce and Finish", kNothing, [&text] { return ReadAndFinish(text); });
    add("with the place of each record", kPlaces, [&text] { return ReadWithPlaces(text); });
}

std::uint64_t GetChecked(IO::eStream& in, const eSets& sets) {
    return GetSets(sets, [&](eTypedValues& set) {
        in.TryGet(set.integer);
        in.TryGet(set.byte);
        in.TryGet(set.real);
        in.TryGet(set.precise);
        in.TryGet(set.large);
        in >> set.name;
    });
}

std::uint64_t GetInTransactions(IO::eStream& in, const eSets& sets) {
    return GetSets(sets, [&](eTypedValues& set) {
        IO::eReadTransaction record(in);
        in >> set.integer >> set.byte >> set.real >> set.precise >> set.large >> set.name;
        record.Commit();
    });
}

void AddValues(eSuite& suite, unsigned kilobytes) {
    const std::string work = "safety in reading typed values from memory, " + SizeName(kilobytes);
    if (!suite.Wants(work))
        return;
    const eSets sets = Sets(kilobytes);
    const auto filled = std::make_shared<IO::eMemoryStream>(sets.Bytes() + 64, 0);
    PutOnStream(*filled, sets);
    const auto limited = std::make_shared<IO::eMemoryStream>(*filled);
    limited->SetLimits({kFarLimit, kFarLimit});
    using eGet = std::uint64_t (*)(IO::eStream&, const eSets&);
    const auto add = [&](const char* contender, double target, const std::shared_ptr<IO::eMemoryStream>& from,
                         eGet get) {
        suite.Add(work, sets.Values(), OwnRow(contender, target, sets.Bytes(), [=] {
                      from->Reset();
                      return get(*from, sets);
                  }));
    };
    add("eMemoryStream >>", 0, filled, GetFromStream);
    add("with limits", kNothing, limited, GetFromStream);
    add("TryGet", kChecked, filled, GetChecked);
    add("each record in an eReadTransaction", kChecked, filled, GetInTransactions);
}

const eContender contender(0, [](eSuite& suite) {
    for (const unsigned kilobytes : suite.Options().kilobytes) {
        AddReading(suite, kilobytes);
        AddValues(suite, kilobytes);
    }
});

} // namespace
} // namespace bench
