// SPDX-License-Identifier: BSL-1.0
#include <exception>
#include <iostream>
#include <memory>
#include <string>

#include <qzl_base/diagnostic.h>
#include <qzl_base/error.h>
#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>

// Shows mistakes of a document as a compiler does: the reader's, and the application's own.

static eSDLKeyword* sceneWords;
static eSDLKeyword ballWord(sceneWords, "ball", 1);

static void ReadBall(eSDLReader& reader) {
    reader.GetBlock(ballWord.id);
    const float radius = reader.GetFloat();
    const xError::ePlace radiusPlace = reader.Place(); // kept until all is known that the radius depends on
    const bool hollow = reader.GetBool();
    if (radius <= 0 && !hollow)
        reader.Complain("radius must be positive", radiusPlace);
    reader >> endb;
}

// Finish checks the last } here, where a report can be caught, and not in the destructor.
static void ReadScene(const eFileName& file) {
    eSDLReader reader(file, "scene", nullptr);
    reader.PushKeywords(sceneWords);
    while (reader.Start())
        ReadBall(reader);
    reader.Finish(eSDLRest::Refuse);
}

static std::string MistakeIn(const std::string& text) {
    const eFileName file("mistake.sdl");
    const std::unique_ptr<IO::eStream> stream(IO::GetStream(file, IO::StreamMode::Write | IO::StreamMode::Create));
    stream->Write(text.data(), text.size());
    stream->Flush();
    try {
        ReadScene(file);
    } catch (const xError::eException& exception) {
        if (exception.Report().diagnostic)
            return Render(*exception.Report().diagnostic);
        return exception.what();
    }
    return "no mistake\n";
}

int main() {
    const struct {
        const char* text;
        const char* shown;
    } documents[] = {
        {"{scene {ball 2 1} {ball 0.5 0}} ; all is well\n", "no mistake\n"},
        {"{scene\n  {bal 2 1}\n}", "mistake.sdl:2:4: error: Invalid block identifier!\n"
                                   "  2 |   {bal 2 1}\n"
                                   "    |    ^~~\n"
                                   "  expected the word 'ball', found the word 'bal'\n"
                                   "  did you mean 'ball'?\n"},
        {"{scene\n  {ball -3 0}\n}", "mistake.sdl:2:9: error: radius must be positive\n"
                                     "  2 |   {ball -3 0}\n"
                                     "    |         ^~\n"},
        {"{scene\n  {ball 1 1\n", "mistake.sdl:3:1: error: Block terminator expected!\n"
                                  "  expected '}', found the end of the text\n"
                                  "mistake.sdl:2:3: note: The block that is not closed begins here.\n"
                                  "  2 |   {ball 1 1\n"
                                  "    |   ^\n"},
        {"{scene\n}\n}", "mistake.sdl:3:1: error: Text after the end!\n"
                         "  3 | }\n"
                         "    | ^\n"
                         "  expected the end of the text, found '}'\n"},
    };
    for (const auto& document : documents) {
        const std::string shown = MistakeIn(document.text);
        std::cout << shown << '\n';
        if (shown != document.shown)
            return 1;
    }
    return 0;
}
