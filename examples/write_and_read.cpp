// SPDX-License-Identifier: BSL-1.0
#include <iostream>
#include <string>

#include <qzl_io/sdl.h>

static eSDLKeyword* words;
static eSDLKeyword sceneWord(words, "scene", 1);
static eSDLKeyword lightWord(words, "light", 2);

int main() {
    {
        eSDLWriter writer(eFileName("lights.sdl"));
        writer.PushKeywords(words);
        writer << block{sceneWord.id} << endl;
        writer << block{lightWord.id} << "lamp" << 1.5f << 3 << endb << endl;
        writer << block{lightWord.id} << "sun" << 1200.0f << 1 << endb << endl;
        writer << endb << endl;
    }
    eSDLReader reader(eFileName("lights.sdl"), "scene", nullptr);
    reader.PushKeywords(words);
    while (!reader.End()) {
        reader.GetBlock(lightWord.id);
        const std::string name = reader.GetString();
        const float power = reader.GetFloat();
        std::cout << name << ": " << power << " W, " << reader.GetInt() << " bulb(s)\n";
        reader >> endb;
    }
}
