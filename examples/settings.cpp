// SPDX-License-Identifier: BSL-1.0
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include <qzl_base/diagnostic.h>
#include <qzl_io/sdl.h>

// Settings that people edit, too: what is missing has a default, what is wrong is told, and what this version does not
// know stays in the file.

struct eSettings {
    int width = 800;
    int height = 600;
    std::string language = "en";
    float volume = 0.5F;
    std::vector<std::string> recent;
};

// Takes the value at the path if there is one of that type; otherwise the default stays.
template <class T>
static void Take(const eSDLDocument& document, std::string_view path, T* value) {
    const eSDLNode node = document.Find(path);
    node.Value().Get(value);
}

static eSettings ReadSettings(const eSDLDocument& document) {
    eSettings settings;
    Take(document, "settings/window/width", &settings.width);
    Take(document, "settings/window/height", &settings.height);
    Take(document, "settings/language", &settings.language);
    Take(document, "settings/volume", &settings.volume);
    for (const eSDLNode& file : document.Find("settings/recent"))
        settings.recent.push_back(file.As<std::string>().value_or(""));
    return settings;
}

// Sets a value of a block within the settings, and adds the block if it is missing.
static bool Change(eSDLDocument* document, const std::string& block, const eSDLItem& value) {
    if (const eSDLNode node = document->Find("settings/" + block))
        return document->Set(node.Value(), value);
    const eSDLNode added = document->Append(document->Find("settings"), eSDLItem::Block(block));
    return static_cast<bool>(document->Append(added, value));
}

static const char* const kWritten = R"({settings
	{window width = 1024 heigth = 768}  ; a spelling mistake
	{volume 0.8}
	{theme "dark"}                      ; of a later version
}
)";

int main() {
    std::ofstream("settings.sdl", std::ios::binary) << kWritten;

    eSDLDocument rules;
    eSDLDocument document;
    if (!rules.Open(eFileName("settings.sdls")) || !document.Open(eFileName("settings.sdl"))) {
        std::cerr << rules.Failure().text << document.Failure().text << '\n';
        return 1;
    }
    const std::vector<xError::eDiagnostic> mistakes = eSDLSchema(rules).Check(document, 10);
    for (const xError::eDiagnostic& mistake : mistakes)
        std::cout << xError::Render(mistake);

    const eSettings settings = ReadSettings(document);
    std::cout << settings.width << " x " << settings.height << ", " << settings.language << ", " << settings.volume
              << '\n';

    const bool saved = Change(&document, "volume", 0.25F) && Change(&document, "language", "de") &&
                       document.Save(eFileName("settings.sdl"), IO::eSaveEnd::InMemory);
    std::cout << document.Text();
    const bool kept =
        document.Text().find("{theme \"dark\"}                      ; of a later version") != std::string::npos;
    const bool right = settings.width == 1024 && settings.height == 600 && settings.volume == 0.8F && !mistakes.empty();
    return saved && kept && right ? 0 : 1;
}
