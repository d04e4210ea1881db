// SPDX-License-Identifier: BSL-1.0
#include <iostream>
#include <map>
#include <string>
#include <string_view>

#include <qzl_io/streams.h>

// A binary file that holds many items: a mark and a version at its start, an index at its end, so that one item is read
// without the others. Its layout:
//
//     "QBOX"                4 bytes
//     version               int
//     items                 the bytes of each
//     index                 for each item its name, then its place and size as 64 bits
//     number of items       int
//     place of the index    64 bits: the last bytes of the file

static constexpr char kMark[] = {'Q', 'B', 'O', 'X'};
static constexpr int kVersion = 1;
static constexpr unsigned long long kEndSize = 4 + 8;

struct ePlace {
    unsigned long long begin = 0;
    unsigned long long size = 0;
};
using eIndex = std::map<std::string, ePlace>;

static bool Save(const eFileName& file, const std::map<std::string, std::string>& items) {
    IO::eSaveFile out(file, IO::eSaveEnd::InMemory);
    out.Write(kMark, sizeof kMark);
    out << kVersion;
    eIndex index;
    for (const auto& [name, bytes] : items) {
        index[name] = {out.Position(), bytes.size()};
        out.Write(bytes.data(), bytes.size());
    }
    const unsigned long long indexBegin = out.Position();
    for (const auto& [name, place] : index)
        out << name << place.begin << place.size;
    out << static_cast<int>(index.size()) << indexBegin;
    return out.Commit();
}

// Reads mark, version and index. Nothing in the file is believed before it is compared with the file's size.
static bool ReadIndex(IO::eStream& in, eIndex* index) {
    char mark[sizeof kMark] = {};
    int version = 0;
    int count = 0;
    unsigned long long indexBegin = 0;
    if (in.Size() < sizeof mark + sizeof version + kEndSize)
        return false;
    in.Read(mark, sizeof mark);
    if (std::string_view(mark, sizeof mark) != std::string_view(kMark, sizeof kMark) || !in.TryGet(version) ||
        version > kVersion)
        return false;
    in.Seek(in.Size() - kEndSize, IO::eSeekDir::Begin);
    if (!in.TryGet(count) || !in.TryGet(indexBegin) || indexBegin > in.Size())
        return false;
    in.Seek(indexBegin, IO::eSeekDir::Begin);
    for (int item = 0; item < count; ++item) {
        std::string name;
        ePlace place;
        in >> name;
        if (in.Enabled(IO::StreamMode::Bad) || !in.TryGet(place.begin) || !in.TryGet(place.size) ||
            place.begin > indexBegin || place.size > indexBegin - place.begin)
            return false;
        (*index)[name] = place;
    }
    return true;
}

static std::string ReadItem(IO::eStream& in, const ePlace& place) {
    std::string bytes(place.size, '\0');
    in.Seek(place.begin, IO::eSeekDir::Begin).Read(bytes.data(), bytes.size());
    return bytes;
}

int main() {
    if (!Save("box.bin", {{"readme", "What is in this box."}, {"noise", std::string(100000, '\x5a')}, {"empty", ""}}))
        return 1;

    IO::eFileStream in("box.bin", IO::StreamMode::Read);
    eIndex index;
    if (!ReadIndex(in, &index)) {
        std::cerr << "This is no such file, or it is broken.\n";
        return 1;
    }
    for (const auto& [name, place] : index)
        std::cout << name << ": " << place.size << " bytes\n";
    const std::string text = ReadItem(in, index["readme"]);
    std::cout << text << '\n';

    // A file that was cut short is noticed.
    IO::eMemoryStream half;
    in.Seek(0, IO::eSeekDir::Begin).CopyTo(half, in.Size() / 2);
    half.Seek(0, IO::eSeekDir::Begin);
    eIndex none;
    return text == "What is in this box." && in.Disabled(IO::StreamMode::Bad) && !ReadIndex(half, &none) ? 0 : 1;
}
