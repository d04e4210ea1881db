// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "machine/growing_query.h"
#include "machine/version_name.h"
#include "platform/pure/beside_name.h"
#include "platform/pure/copy_steps.h"
#include "platform/pure/disk_descriptor.h"
#include "platform/pure/entry_kind.h"
#include "platform/pure/file_id.h"
#include "platform/pure/patience.h"

#include "require.h"
#include "script.h"
#include "target.h"

// The bytes are answers of a system that is not to be trusted: serial numbers of disks, values of unknown size, copies
// that move less than asked for, refusals, identities of files.

namespace {

using namespace IO;
using namespace IO::System;

// --- Serial numbers ---

std::string UpToZero(std::string_view text) {
    return std::string(text.substr(0, text.find('\0')));
}

std::string PlainSerialInDescriptor(std::string_view bytes) {
    if (bytes.size() < 28)
        return "";
    const auto at = [&](std::size_t index) {
        return static_cast<std::size_t>(static_cast<unsigned char>(bytes[index]));
    };
    const std::size_t offset = at(24) | at(25) << 8 | at(26) << 16 | at(27) << 24;
    return offset > 0 && offset < bytes.size() ? UpToZero(bytes.substr(offset)) : "";
}

std::string PlainSerialInPage(std::string_view bytes) {
    if (bytes.size() < 4 || bytes[1] != '\x80')
        return "";
    const auto at = [&](std::size_t index) {
        return static_cast<std::size_t>(static_cast<unsigned char>(bytes[index]));
    };
    return UpToZero(bytes.substr(4, at(2) << 8 | at(3)));
}

std::span<const unsigned char> BytesOf(std::string_view text) {
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

void CheckSerials(std::string_view bytes) {
    RequireEqual(SerialInDescriptor(BytesOf(bytes)), PlainSerialInDescriptor(bytes), "the serial in a descriptor");
    RequireEqual(SerialInPage80(BytesOf(bytes)), PlainSerialInPage(bytes), "the serial in a page");
}

// --- A value of unknown size ---

template <class Char>
void CheckQuery(eScript& script) {
    using eEnd = Platform::eQueryEnd;
    const std::basic_string<Char> value(script.Number(2) >> script.Below(8), Char('v'));
    const std::size_t most = (std::size_t{1} << 20) / sizeof(Char);
    eEnd last = eEnd::Failed;
    std::size_t asked = 0, calls = 0;
    const std::basic_string<Char> found = AskGrowing<Char>([&](Char* out, unsigned* bytes) {
        const std::size_t room = *bytes / sizeof(Char);
        Require(room > asked && room <= most && ++calls <= 12, "the buffer does not grow");
        asked = room;
        *bytes = static_cast<unsigned>(script.Below(16) == 0 ? script.Number(4) : value.size() * sizeof(Char));
        last = script.Below(16) == 0 ? eEnd::Failed : value.size() <= room ? eEnd::Done : eEnd::MoreData;
        if (last == eEnd::Done)
            std::copy(value.begin(), value.end(), out);
        return last;
    });
    Require(found.size() == asked, "the size of a queried value");
    const std::size_t filled = last == eEnd::Done ? value.size() : 0;
    Require(found.starts_with(value.substr(0, filled)), "a queried value");
    Require(found.find_first_not_of(Char(), filled) == found.npos, "the zeros after a queried value");
}

// --- Copies that move less than asked for ---

void CheckCopy(eScript& script) {
    const std::size_t step = 1 + script.Below(8);
    const unsigned long long expected = script.Below(64);
    unsigned long long moved = 0;
    bool stopped = false, ended = false;
    const auto way = [&](bool isLast) -> eCopyWay {
        return [&, isLast](std::size_t limit) -> long long {
            Require(!ended && limit > 0 && limit <= step, "a copy asks for too much");
            Require(expected == 0 || moved + limit <= expected, "a copy passes its end");
            const unsigned answer = script.IsOver() ? 1 : script.Below(limit + 2);
            moved += answer > 1 ? answer - 1 : 0;
            ended = answer == 1 && (moved > 0 || isLast);
            return static_cast<long long>(answer) - 1;
        };
    };
    const eCopyEnd end = CopyInSteps({way(false), way(true)}, step, expected, [&](unsigned long long) {
        stopped = script.Below(32) == 31;
        return stopped;
    });
    const bool all = expected != 0 && moved == expected;
    const eCopyEnd right = stopped ? eCopyEnd::Stopped : ended || all ? eCopyEnd::Complete : eCopyEnd::Failed;
    Require(end == right, "the end of a copy");
}

// --- Refusals ---

void CheckPatience(eScript& script) {
    ePatience::ePause slept{0};
    ePatience patience([&slept](ePatience::ePause pause) { slept += pause; });
    for (int requests = 0; requests < 20 && !script.IsOver(); ++requests) {
        eAnswer answer = eAnswer::Refused;
        const bool emptied = script.Flag();
        const auto ask = [&] { return answer = static_cast<eAnswer>(script.Below(4)); };
        const auto before = slept;
        const bool got = script.Flag() ? patience.Get(ask) : patience.GetRemoved(emptied, ask);
        Require(got == (answer == eAnswer::Done), "a request that was done");
        Require(slept - before <= ePatience::ePause(155), "a request is waited for too long");
    }
}

// --- Identities, kinds and names ---

eFileId IdIn(eScript& script) {
    const auto number = [&] { return script.Flag() ? script.Below(2) : ~0ull; };
    eFileId id;
    id.volume = number();
    id.high = number();
    id.low = number();
    id.finalName = std::wstring(script.Below(3), L'n');
    return id;
}

void CheckIdentities(eScript& script) {
    const eFileId one = IdIn(script), other = IdIn(script);
    Require(AreOneFolder(one, other) == AreOneFolder(other, one), "one folder, but not the other way round");
    Require(MayBeOneFile(one, other) == MayBeOneFile(other, one), "one file, but not the other way round");
    Require(MayBeOneFile(one, one), "a file may be itself");
    Require(AreOneFolder(one, one) == (one.IsNumbered() || !one.finalName.empty()),
            "a folder is itself if it is known");
    const bool numbered = one.IsNumbered() && other.IsNumbered();
    Require(!numbered || AreOneFolder(one, other) == MayBeOneFile(one, other), "numbers decide");
}

void CheckKinds(eScript& script) {
    const auto attributes = static_cast<unsigned long>(script.Number(4)),
               tag = static_cast<unsigned long>(script.Number(4));
    const Platform::eEntryKind kind = Platform::ListedKind(attributes, tag);
    Require((kind == Platform::eEntryKind::Link) == Platform::IsListedLink(attributes, tag), "a link");
    Require(kind != Platform::eEntryKind::Link || (attributes & 0x400) != 0, "a link without a reparse point");
    Require(kind != Platform::eEntryKind::Folder || (attributes & 0x10) != 0, "a folder without the attribute");
    const auto major = script.Below(12), minor = script.Below(5);
    const std::string_view server = VersionName(major, minor, true), workstation = VersionName(major, minor, false);
    Require(server == "unknown" || server != workstation, "a server has a name of its own");
    Require(workstation == "unknown" ? server == "unknown" : !workstation.empty(), "a version without a name");
}

void CheckBeside(std::string_view target, unsigned number) {
    const std::string text(target);
    const std::string name = BesideName(".", text, ".saving", number);
    Require(name.size() <= 255, "a name beside a target is too long");
    Require(name.starts_with("." + text.substr(0, 200)), "a name beside a target begins otherwise");
    Require(name != BesideName(".", text + "x", ".saving", number), "two targets have one name beside them");
}

} // namespace

void Check(std::string_view input) {
    CheckSerials(input);
    CheckBeside(input, static_cast<unsigned>(input.size() & 3));
    eScript script(input);
    switch (script.Below(6)) {
    case 0:
        return CheckQuery<char>(script);
    case 1:
        return CheckQuery<wchar_t>(script);
    case 2:
        return CheckCopy(script);
    case 3:
        return CheckPatience(script);
    case 4:
        return CheckIdentities(script);
    default:
        return CheckKinds(script);
    }
}

void Work(std::string_view input) {
    SerialInDescriptor(BytesOf(input));
    SerialInPage80(BytesOf(input));
    BesideName(".", std::string(input), ".saving", 1);
}
