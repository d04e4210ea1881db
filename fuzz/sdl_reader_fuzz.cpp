#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

#include <qzl_base/error.h>
#include <qzl_io/sdl/reader.h>
#include <qzl_io/streams.h>

#include "sdl/skip_check.h"

// The first bytes are calls, the rest is the text that they read: every call ends with a value or a report, and looking
// ahead reads nothing. Skipping the whole text as one block ends where cutting its tokens ends.

namespace {

eSDLKeyword* words;
eSDLKeyword sceneWord(words, "scene", 3);
eSDLKeyword lightWord(words, "light", 5);

constexpr std::size_t kCalls = 16;

void Require(bool promise, const char* what) {
    if (promise)
        return;
    std::cerr << what << '\n';
    std::abort();
}

void LookAhead(eSDLReader& reader) {
    const bool start = reader.Start();
    const bool end = reader.End();
    Require(reader.Start() == start && reader.End() == end, "looking ahead has read something");
}

// False at the end of the text.
bool Call(eSDLReader& reader, unsigned call) {
    eStrings strings;
    switch (call % 14) {
    case 0:
        reader.GetInt();
        break;
    case 1:
        reader.GetFloat();
        break;
    case 2:
        reader.GetBool();
        break;
    case 3:
        reader.GetString();
        break;
    case 4:
        reader.GetStringW();
        break;
    case 5:
        reader.GetIdent(call > 127);
        break;
    case 6:
        reader.GetBlock(0);
        break;
    case 7:
        reader >> strings;
        break;
    case 8:
        reader.SkipBlock(call > 127);
        break;
    case 9:
        reader.Grate().assign(1, call > 127);
        break;
    case 10:
        reader.Back();
        break;
    case 11:
        LookAhead(reader);
        break;
    case 12:
        reader >> endb;
        break;
    default:
        return reader.GetToken().type != sdlNone;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::size_t calls = size < kCalls ? size : kCalls;
    const std::string text(reinterpret_cast<const char*>(data) + calls, size - calls);
    IO::eBufferStream stream(text);
    eSDLReader reader(&stream, nullptr);
    reader.PushKeywords(words);
    for (std::size_t step = 0; step < 4 * size; ++step)
        try {
            if (!Call(reader, data[step % (calls ? calls : 1)]))
                break;
        } catch (const xError::eException& exception) {
            Require(exception.Report().line > 0, "a report without its line");
        }
    Require(SkipAtOnce(text) == SkipPlainly(text), "skipping ends elsewhere than the tokens do");
    return 0;
}
