// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/streams.h>

#include <array>
#include <cstdint>
#include <string>

#include "work.h"

namespace bench {
namespace {

// Sizes in kilobytes.
constexpr std::array<unsigned, 3> kSaved{1, 1'000, 100'000};
constexpr unsigned kLargest = 1'000; // in a small run, and repeated as often as other rows

std::uint64_t SaveBeside(const std::string& name, const std::string& document, IO::eSaveEnd end) {
    IO::eSaveFile file(eFileName(name), end);
    file.Write(document.data(), document.size());
    return file.Commit() ? document.size() : 0;
}

std::uint64_t WriteInPlace(const std::string& name, const std::string& document) {
    IO::eFileStream file(eFileName(name), IO::StreamMode::Write | IO::StreamMode::Create);
    file.Write(document.data(), document.size());
    file.Close();
    return document.size();
}

// How many times as long as writing in place saving in one step may take: a small document is one more file that is
// made, renamed and flushed.
double Allowed(unsigned kilobytes) {
    return kilobytes < 1000 ? 4.0 : 1.5;
}

eRow SavingRow(const std::string& contender, double allowed, const std::string& target, std::size_t size,
               std::function<std::uint64_t()> pass) {
    eRow row;
    row.contender = contender;
    row.target = allowed;
    row.bytes = size;
    row.pass = pass;
    row.check = [target, pass] {
        pass();
        return SumOfFile(target);
    };
    row.repetitions = size > kLargest * 1000 ? 5 : 0;
    return row;
}

const eContender contender(0, [](eSuite& suite) {
    for (const unsigned kilobytes : kSaved) {
        const std::string work = "saving a document of " + SizeName(kilobytes);
        if (!suite.Wants(work) || (suite.Options().small && kilobytes > kLargest))
            continue;
        std::string document;
        for (std::size_t at = 0; document.size() < kilobytes * std::size_t{1000}; ++at)
            document.append(reinterpret_cast<const char*>(Pieces()[at % 8].data()), kPieceSize);
        document.resize(kilobytes * std::size_t{1000});
        const std::size_t size = document.size();
        const std::string target = WorkFile("saved.bin");
        const auto add = [&](const std::string& name, double allowed, std::function<std::uint64_t()> pass) {
            suite.Add(work, 1, SavingRow(name, allowed, target, size, std::move(pass)), "document");
        };
        const double allowed = Allowed(kilobytes);
        add("eFileStream, in place", 0, [=] { return WriteInPlace(target, document); });
        add("eSaveFile, InMemory", allowed, [=] { return SaveBeside(target, document, IO::eSaveEnd::InMemory); });
        add("eSaveFile, OnDisk", allowed, [=] { return SaveBeside(target, document, IO::eSaveEnd::OnDisk); });
    }
});

} // namespace
} // namespace bench
