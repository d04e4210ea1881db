// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl.h>

#include <cstdint>
#include <stdexcept>
#include <string>

#include "work.h"

namespace bench {
namespace {

std::uint64_t Convert(const std::string& from, const std::string& to) {
    if (!JsonToSdl(eFileName(from), eFileName(to)))
        throw std::runtime_error("cannot convert " + from);
    return 1;
}

const eContender contender(0, [](eSuite& suite) {
    for (const eJsonWork& work : JsonWorks(suite.Options())) {
        if (!suite.Wants(work.name))
            continue;
        const std::string in = work.Input();
        const std::string out = WorkFile(std::string("ours_") + Name(work.document) + ".sdl");
        eRow row{"JsonToSdl",
                 eKind::Ours,
                 0,
                 work.Json().size(),
                 {},
                 [=] { return Convert(in, out); },
                 [=] {
                     Convert(in, out);
                     return SumOfConverted(out);
                 }};
        const double source = KeepsTree() ? 0 : static_cast<double>(work.Json().size());
        row.peakAllowed = [=] { return source + static_cast<double>(ReadWhole(out).size()) + 1048576; };
        if (KeepsTree())
            row.peakBase = "cpprestsdk's parse alone";
        suite.Add(work.name, work.Count(), row);
    }
});

} // namespace
} // namespace bench
