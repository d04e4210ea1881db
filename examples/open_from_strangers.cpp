// SPDX-License-Identifier: BSL-1.0
#include <fstream>
#include <iostream>
#include <string>

#include <qzl_base/error.h>
#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>

static constexpr unsigned long long kMegabyte = 1ULL << 20;

static eSDLKeyword* words;
static eSDLKeyword lightWord(words, "light", 1);

static int CountLights(const eFileName& file) {
    const eSDLLimits limits{.sourceBytes = 16 * kMegabyte, .tokenBytes = 4096, .includeDepth = 0};
    eSDLReader reader(file, "scene", nullptr, limits);
    reader.PushKeywords(words);
    int lights = 0;
    for (; !reader.End(); ++lights) {
        reader.GetBlock(lightWord.id);
        reader.SkipBlock();
    }
    return lights;
}

static bool ReadPlaylist(const eFileName& file, eStrings* titles) {
    IO::eFileStream stream(file, IO::StreamMode::Read); // without Errors: what is wrong only sets Bad
    stream.SetLimits({.textBytes = 200, .listBytes = 65'536});
    if (!stream.IsOpen() || stream.Size() > kMegabyte)
        return false;
    stream >> *titles;
    return stream.Disabled(IO::StreamMode::Bad);
}

static bool Convert(const eFileName& json, const eFileName& sdl) {
    return JsonToSdlWithin({.bytes = 16 * kMegabyte, .depth = 32}, json, sdl);
}

static void Write(const char* name, const std::string& bytes) {
    std::ofstream(name, std::ios::binary) << bytes;
}

int main() {
    xError::SetWarningHandler(
        [](const xError::eReport& report) { std::cout << "refused: " << report.message << "\n"; });

    Write("friendly.sdl", R"({scene {light "lamp" 1.5} {light "sun" 1200}})");
    Write("hostile.sdl", "{scene {" + std::string(10000, 'a') + "}}");
    const int lights = CountLights("friendly.sdl");
    std::cout << lights << " lights\n";
    bool refused = false;
    try {
        CountLights("hostile.sdl");
    } catch (const xError::eException& failure) {
        refused = true;
        std::cout << "refused: " << failure.what() << "\n";
    }

    eStrings titles;
    Write("hostile.bin", std::string(8, '\xFF') + std::string(100000, '\0')); // a list of 2^64 - 1 texts
    const bool read = ReadPlaylist("hostile.bin", &titles);
    std::cout << (read ? "a playlist\n" : "refused: the playlist\n");

    Write("hostile.json", std::string(100, '[') + std::string(100, ']'));
    const bool converted = Convert("hostile.json", "converted.sdl");
    return lights == 2 && refused && !read && titles.empty() && !converted ? 0 : 1;
}
