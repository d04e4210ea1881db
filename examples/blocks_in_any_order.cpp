// SPDX-License-Identifier: BSL-1.0
#include <iostream>
#include <string>

#include <qzl_base/error.h>
#include <qzl_io/sdl.h>

// Reads blocks in any order, skips and names the ones that it does not know, and gives defaults to what is missing.

enum class eShading { Flat, Smooth };
constexpr eSDLName<eShading> kShadings[] = {{"flat", eShading::Flat}, {"smooth", eShading::Smooth}};

static eSDLKeyword* words;
static eSDLKeyword materialWord(words, "material", 1);
static eSDLKeyword colorWord(words, "color", 2);
static eSDLKeyword shadingWord(words, "shading", 3);

struct eMaterial {
    std::string name = "unnamed";
    float red = 1;
    float green = 1;
    float blue = 1;
    eShading shading = eShading::Smooth;
};

static eMaterial ReadMaterial(eSDLReader& reader) {
    eMaterial material;
    reader.TryGet(material.name);
    while (!reader.End()) {
        const std::string block(reader.NextBlockName());
        switch (reader.NextBlock()) {
        case 2:
            reader.GetBlock();
            reader >> material.red >> material.green >> material.blue >> endb;
            break;
        case 3:
            reader.GetBlock();
            material.shading = reader.GetName(kShadings);
            reader >> endb;
            break;
        default: // another block is skipped with all that it holds, and anything else is reported
            reader >> begb;
            reader.SkipBlock();
            std::cout << "material " << material.name << ": the block '" << block << "' is unknown\n";
        }
    }
    return material;
}

int main() {
    const std::string text = "{material \"wood\" {gloss 1 2} {shading flat} {color 0.5 0.25 0}}\n"
                             "{material {color 1 0 0}}\n"
                             "{material \"glass\" {shading smoth}}\n";
    IO::eBufferStream stream(text);
    eSDLReader reader(&stream, nullptr);
    reader.PushKeywords(words);
    try {
        while (reader.TryGetBlock(materialWord.id)) {
            const eMaterial material = ReadMaterial(reader);
            reader >> endb;
            std::cout << material.name << ": " << material.red << ' ' << material.green << ' ' << material.blue << ' '
                      << NameOf(kShadings, material.shading) << '\n';
        }
    } catch (const xError::eException& exception) {
        std::cout << exception.what() << '\n'; // Unknown name 'smoth'! Did you mean 'smooth'?
        return 0;
    }
    std::cerr << "The wrong name was not reported.\n";
    return 1;
}
