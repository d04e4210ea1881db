// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>

#include <cstdint>
#include <string>

#include "../support/keywords.h"
#include "../support/read_bare.h"
#include "../support/write_record.h"
#include "scene.h"

namespace bench {
namespace {

void WriteAll(IO::eMemoryStream& to, eRecords records) {
    eSDLWriter writer(&to, nullptr);
    writer.PushKeywords(SceneKeywords());
    writer << block{wordScene} << endl;
    for (const eRecord& record : records)
        WriteRecord(writer, record);
    writer << endb << endl;
}

size_t Size(eRecords records) {
    IO::eMemoryStream text;
    WriteAll(text, records);
    return text.Size();
}

std::uint64_t Check(eRecords records) {
    IO::eMemoryStream text;
    WriteAll(text, records);
    const std::string whole(reinterpret_cast<const char*>(text.Buffer()), text.Size());
    return ReadBare(whole.c_str());
}

const eContender contender(0, [](eSuite& suite) {
    for (const unsigned kilobytes : suite.Options().kilobytes) {
        if (!suite.Wants(WriteWork(kilobytes)))
            continue;
        const size_t count = Items(eDocument::Records, kilobytes);
        suite.Add(WriteWork(kilobytes), Values(eDocument::Records, kilobytes),
                  {"eSDLWriter",
                   eKind::Ours,
                   0,
                   Text(eDocument::Records, kilobytes, eFormat::Sdl).size(),
                   {},
                   [count] { return Size(Records(count)); },
                   [count] { return Check(Records(count)); }});
    }
});

} // namespace
} // namespace bench
