// SPDX-License-Identifier: BSL-1.0
#include <iostream>
#include <string>
#include <vector>

#include <qzl_base/format.h>
#include <qzl_io/sdl.h>

// Short names of the library beside the same names of a program and of the standard library.

static eSDLKeyword* words;
static eSDLKeyword memoryWord(words, "memory", 1);

// A program with names of its own in a namespace: `::` leads to those of the library.
namespace application {

struct block {
    int first = 0;
    int size = 0;
};

template <class... T>
std::string format(const T&... parts) {
    return (std::string() + ... + std::to_string(parts));
}

static void Write(eSDLWriter& writer, const std::vector<block>& blocks) {
    writer << ::block{memoryWord.id};
    for (const block& each : blocks)
        writer << each.first << each.size;
    writer << endb << ::endl;
}

static std::string Describe(const block& each) {
    return ::format("%1% bytes at %2%") % each.size % format(each.first);
}

} // namespace application

// A local variable hides the type; `::` finds it again.
static void WriteOne(eSDLWriter& writer, int size) {
    const application::block block{0, size};
    writer << ::block{memoryWord.id} << block.size << endb << endl;
}

int main() {
    // In a function the names of std do not hide those of the library: each endl goes to where it fits.
    using namespace std;
    IO::eMemoryStream stream;
    {
        eSDLWriter writer(&stream);
        writer.PushKeywords(words);
        application::Write(writer, {{16, 4}, {32, 8}});
        WriteOne(writer, 64);
        writer << "the end" << endl;
    }
    const string text(reinterpret_cast<const char*>(stream.Buffer()), stream.Size());
    cout << text << application::Describe({16, 4}) << endl;
    return text == "{memory 16 4 32 8}\r\n{memory 64}\r\n\"the end\"\r\n" ? 0 : 1;
}
