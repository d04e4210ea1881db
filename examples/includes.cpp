// SPDX-License-Identifier: BSL-1.0
#include <fstream>
#include <iostream>
#include <string>

#include <qzl_base/error.h>
#include <qzl_io/sdl.h>

// A document that takes parts from other files: {use "lamps.sdl"} stands for that file's content. The reader opens a
// file only if the application tells it to, so the application decides which files a document may name.

static eSDLKeyword* words;
static eSDLKeyword sceneWord(words, "scene", 1);
static eSDLKeyword lightWord(words, "light", 2);
static eSDLKeyword useWord(words, "use", 3);

// Only files in the document's own folder: no name that leads out of it.
static bool IsAllowed(const eFileName& name) {
    return name.IsValidName() && name.GetItem(Extension) == ".sdl";
}

static void Use(eSDLReader& reader, const eFileName& folder) {
    reader.GetBlock(useWord.id);
    const eFileName name(reader.GetString());
    const xError::ePlace place = reader.Place();
    reader >> endb;
    if (!IsAllowed(name))
        reader.Complain("Only files of this folder may be used!", place);
    reader.Include(folder.GetAdd(name)); // what is in it is read next, as if it stood here
}

static int CountLights(const eFileName& file) {
    const eSDLLimits limits{.sourceBytes = 1 << 20, .tokenBytes = 4096, .includeDepth = 8}; // a circle ends there
    eSDLReader reader(file, "scene", nullptr, limits);
    reader.PushKeywords(words);
    reader.ReportOnce();
    int lights = 0;
    while (!reader.End()) {
        if (reader.NextBlock() == useWord.id) {
            Use(reader, file.GetItem(Folder));
            continue;
        }
        reader.GetBlock(lightWord.id);
        reader.SkipBlock();
        ++lights;
    }
    reader.Finish();
    return lights;
}

static std::string FailureOf(const eFileName& file) {
    try {
        CountLights(file);
    } catch (const xError::eException& exception) {
        return exception.what();
    }
    return {};
}

int main() {
    std::ofstream("house.sdl") << "{scene\n\t{light \"door\"}\n\t{use \"lamps.sdl\"}\n}\n";
    std::ofstream("lamps.sdl") << "{light \"kitchen\"}\n{light \"hall\"}\n";
    std::ofstream("circle.sdl") << "{scene {use \"round.sdl\"}}";
    std::ofstream("round.sdl") << "{use \"round.sdl\"}";
    std::ofstream("outside.sdl") << "{scene {use \"../secret.sdl\"}}";

    const int lights = CountLights("house.sdl");
    const std::string circle = FailureOf("circle.sdl");
    const std::string outside = FailureOf("outside.sdl");
    std::cout << lights << " lights\n" << circle << '\n' << outside << '\n';
    return lights == 3 && circle == "Include limit exceeded!" && outside == "Only files of this folder may be used!"
               ? 0
               : 1;
}
