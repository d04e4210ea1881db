// SPDX-License-Identifier: BSL-1.0
#include <iostream>
#include <string>
#include <vector>

#include <qzl_base/error.h>
#include <qzl_io/sdl.h>

// A scene file: things within things, written and read value by value, with the version of the form in it.

struct eThing {
    std::string name;
    float position[3] = {0, 0, 0};
    std::vector<eThing> things;
};

static eSDLKeyword* words;
static eSDLKeyword sceneWord(words, "scene", 1);
static eSDLKeyword versionWord(words, "version", 2);
static eSDLKeyword thingWord(words, "thing", 3);
static eSDLKeyword positionWord(words, "position", 4);

static constexpr int kVersion = 2;
static constexpr int kDeepest = 100; // this program's functions call themselves for each level

static void WriteThing(eSDLWriter& writer, const eThing& thing) {
    writer << block{thingWord.id} << thing.name << endl;
    writer << block{positionWord.id} << thing.position[0] << thing.position[1] << thing.position[2] << endb << endl;
    for (const eThing& inner : thing.things)
        WriteThing(writer, inner);
    writer << endb << endl;
}

static bool WriteScene(const eFileName& file, const eThing& root) {
    eSDLWriter writer(file);
    writer.PushKeywords(words);
    writer << block{sceneWord.id} << endl << block{versionWord.id} << kVersion << endb << endl;
    WriteThing(writer, root);
    writer << endb << endl;
    writer.Close();
    return !writer.Failure();
}

// Reads what follows {thing, and its }.
static eThing ReadThing(eSDLReader& reader, int depth) {
    if (depth > kDeepest)
        reader.Complain("Things are too deep in things!");
    eThing thing;
    thing.name = reader.GetString();
    while (!reader.End())
        switch (reader.NextBlock()) {
        case 3: // thing
            reader.GetBlock();
            thing.things.push_back(ReadThing(reader, depth + 1));
            break;
        case 4: // position
            reader.GetBlock();
            reader >> thing.position[0] >> thing.position[1] >> thing.position[2] >> endb;
            break;
        default: // what a later version has added
            reader >> begb;
            reader.SkipBlock();
        }
    reader >> endb;
    return thing;
}

static eThing ReadScene(const eFileName& file) {
    eSDLReader reader(file, "scene", nullptr);
    reader.PushKeywords(words);
    reader.ReportOnce();
    int version = 1; // files of the first version do not tell
    if (reader.TryGetBlock(versionWord.id))
        reader >> version >> endb;
    if (version > kVersion)
        reader.Complain("The file is of a later version!");
    reader.GetBlock(thingWord.id);
    eThing root = ReadThing(reader, 1);
    reader.Finish();
    return root;
}

static void Show(const eThing& thing, int depth) {
    std::cout << std::string(static_cast<std::size_t>(depth) * 2, ' ') << thing.name << " at " << thing.position[0]
              << '\n';
    for (const eThing& inner : thing.things)
        Show(inner, depth + 1);
}

int main() {
    const eThing room{
        "room", {0, 0, 0}, {{"table", {1.5F, 0, 2}, {{"lamp", {1.5F, 0.75F, 2}, {}}}}, {"door", {4, 0, 0}, {}}}};
    if (!WriteScene("room.sdl", room))
        return 1;
    try {
        const eThing read = ReadScene("room.sdl");
        Show(read, 0);
        return read.things.size() == 2 && read.things[0].things[0].position[1] == 0.75F ? 0 : 1;
    } catch (const xError::eException& exception) {
        std::cerr << exception.what() << '\n' << exception.Report().context;
        return 1;
    }
}
