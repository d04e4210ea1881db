// SPDX-License-Identifier: BSL-1.0
#include <iostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/error.h>
#include <qzl_io/qzl_io.h>

#include "support/current_folder.h"
#include "support/temp_folder.h"

// The code that the guides show beside the programs in examples/, one test for each piece.

namespace {

constexpr char kScene[] = "{scene\n\t{light \"lamp\" 1.5 3}\n\t{light name = \"sun\" {power 2}}\n}\n";

// What the guides leave to the application.
class Guides : public testing::Test {
protected:
    void Show(const std::string& text) { shown += text; }
    void Add(const std::string& name, float power, int count = 1) {
        added.push_back(name + " " + std::to_string(power * static_cast<float>(count)));
    }
    void Use(const std::string& name, unsigned long long size) { added.push_back(name + " " + std::to_string(size)); }

    eTempFolder work;
    eCurrentFolder current{work.Path()};
    std::string shown;
    std::vector<std::string> added;
};

TEST_F(Guides, Streams) {
    IO::eMemoryStream stream;
    stream << 258 << std::string("bc") << true; // 02 01 00 00   02 62 63   01
    stream.Reset();
    int number = 0;
    std::string text;
    bool flag = false;
    stream >> number >> text >> flag;
    EXPECT_EQ(number, 258);
    EXPECT_EQ(text, "bc");
    EXPECT_TRUE(flag);
}

TEST_F(Guides, StreamsOfFiles) {
    constexpr int kVersion = 1;
    const std::string map = "a map";
    {
        IO::eFileStream in("map.bin", IO::StreamMode::Read);
        if (!in.IsOpen())
            Show(in.Failure().text);
        EXPECT_NE(shown, "");
    }
    shown.clear();
    IO::eSaveFile file("map.bin");
    file << kVersion << map;
    if (!file.Commit())
        Show(file.Failure().text);
    EXPECT_EQ(shown, "");
    EXPECT_EQ(work.Read("map.bin").size(), 4 + 1 + map.size());
}

bool TakeRecord(IO::eStream& stream) {
    IO::eReadTransaction record(stream);
    unsigned int length = 0;
    if (!stream.TryGet(length) || stream.Remaining() < length)
        return false; // not yet: the position is back before the length
    std::string text(length, '\0');
    stream.Read(text.data(), length);
    return record.Commit();
}

TEST_F(Guides, RecordsThatArriveInParts) {
    IO::eMemoryStream stream;
    stream << 3U << 'a' << 'b';
    stream.Reset();
    EXPECT_FALSE(TakeRecord(stream));
    EXPECT_EQ(stream.Position(), 0u);
    stream.Seek(0, IO::eSeekDir::End) << 'c';
    stream.Reset();
    EXPECT_TRUE(TakeRecord(stream));
}

TEST_F(Guides, FileNames) {
    const eFileName file("C:\\data\\archive.tar.gz");    // "C:/data/archive.tar.gz"
    const eFileName folder = file.GetItem(Folder);       // "C:/data/"
    const eFileName title = file.GetItem(Title);         // "archive"
    const eFileName extension = file.GetItem(Extension); // ".gz"
    const eFileName name = file.GetItem(NameExt);        // "archive.tar.gz"
    const eFileName notes = folder.GetAdd("notes.txt");  // "C:/data/notes.txt"
    EXPECT_EQ(file, "C:/data/archive.tar.gz");
    EXPECT_EQ(folder, "C:/data/");
    EXPECT_EQ(title, "archive");
    EXPECT_EQ(extension, ".gz");
    EXPECT_EQ(name, "archive.tar.gz");
    EXPECT_EQ(notes, "C:/data/notes.txt");
}

static eSDLKeyword* words;
static eSDLKeyword sceneWord(words, "scene", 1);
static eSDLKeyword lightWord(words, "light", 2);

TEST_F(Guides, ReadingAndWriting) {
    {
        eSDLWriter writer(eFileName("lights.sdl"));
        writer.PushKeywords(words);
        writer << block{sceneWord.id} << endl;
        writer << block{lightWord.id} << "lamp" << 1.5f << 3 << endb << endl;
        writer << endb << endl;
        writer.Close();
        if (writer.Failure())
            Show(writer.Failure().text);
    }
    EXPECT_EQ(shown, "");
    eSDLReader reader(eFileName("lights.sdl"), "scene", nullptr);
    reader.PushKeywords(words);
    while (!reader.End()) {
        reader.GetBlock(lightWord.id);
        const std::string name = reader.GetString();
        const float power = reader.GetFloat();
        const int bulbs = reader.GetInt();
        reader >> endb;
        Add(name, power, bulbs);
    }
    reader.Finish();
    EXPECT_EQ(added, std::vector<std::string>{"lamp 4.500000"});
}

TEST_F(Guides, Diagnostics) {
    work.Write("circle.sdl", "{scene -1}");
    const auto ReadScene = [](const eFileName& file) {
        eSDLReader reader(file, "scene", nullptr);
        const float radius = reader.GetFloat();
        const xError::ePlace place = reader.Place();
        reader >> endb;
        if (radius <= 0)
            reader.Complain("radius must be positive", place);
    };
    testing::internal::CaptureStderr();
    const eFileName file("circle.sdl");
    try {
        ReadScene(file);
    } catch (const xError::eException& exception) {
        if (const auto& diagnostic = exception.Report().diagnostic)
            std::cerr << xError::Render(*diagnostic);
        else
            std::cerr << exception.what() << '\n';
    }
    EXPECT_NE(testing::internal::GetCapturedStderr().find("circle.sdl:1:8: error: radius must be positive"),
              std::string::npos);
}

TEST_F(Guides, Documents) {
    work.Write("scene.sdl", kScene);
    eSDLDocument document;
    if (!document.Open(eFileName("scene.sdl")))
        Show(document.Failure().text);

    for (const eSDLNode& light : document.Find("scene")) // blocks, values, words
        if (light.Is("light"))
            Add(light.Value(0).As<std::string>().value_or(""), light.Value(1).As<float>().value_or(1));

    float power = document.Find("scene/light[name=\"sun\"]/power").Value().As<float>().value_or(1);
    EXPECT_EQ(power, 2);
    EXPECT_EQ(added.size(), 2u);
    EXPECT_EQ(shown, "");
}

TEST_F(Guides, DocumentsThatAreEdited) {
    eSDLDocument document(kScene);
    const eSDLNode scene = document.Find("scene");
    const eSDLNode light = document.Find("scene/light");
    const eSDLNode power = document.Find("scene/light[1]/power/0");
    document.Set(power, 2.5f); // value, word
    document.Rename(light, "lamp");
    document.InsertAfter(light, eSDLItem::Block("light"));        // also InsertBefore
    document.Append(scene, eSDLItem::Source("{light \"moon\"}")); // any SDL text
    document.Remove(light);
    document.Save(eFileName("scene.sdl")); // in one step, as IO::eSaveFile
    EXPECT_EQ(work.Read("scene.sdl"),
              "{scene\n\t{light}\n\t{light name = \"sun\" {power 2.5}}\n\t{light \"moon\"}\n}\n");
}

TEST_F(Guides, Schemas) {
    work.Write("scene.sdl", kScene);
    work.Write("scene.sdls", "{schema {block scene {others}}}");
    testing::internal::CaptureStderr();
    eSDLDocument rules;
    rules.Open(eFileName("scene.sdls"));
    const eSDLSchema schema(rules);
    eSDLDocument document;
    document.Open(eFileName("scene.sdl"));
    for (const xError::eDiagnostic& mistake : schema.Check(document))
        std::cerr << xError::Render(mistake);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(Guides, Searches) {
    for (IO::eSearch search("c:/data/", "*.txt"); search.Valid(); search.Next())
        if (search.IsFile())
            Use(search.Name(), search.Size());
    EXPECT_EQ(shown, "");
}

TEST_F(Guides, SearchesOfTrees) {
    for (const auto& entry : IO::eTreeSearch("c:/data", {"*.sdl", "*.json"}))
        if (entry.IsFile())
            Use(entry.Name(), entry.Size());
    EXPECT_EQ(shown, "");
}

TEST_F(Guides, TreesThatTell) {
    work.Write("data/file", "content");
    const bool stopped = false;
    unsigned long long bytes = 0;
    std::string warned;
    const auto Show = [&](unsigned long long now, unsigned long long) { bytes = now; };
    const auto Warn = [&](const eFileName&, const std::string& text) { warned += text; };
    IO::System::eTreeTask task;
    task.progress = [&](const IO::System::eTreeProgress& at) {
        Show(at.now.bytes, at.all.bytes);
        return !stopped; // false cancels; what is done by then stays done
    };
    const IO::System::eTreeResult result = IO::System::Path::CopyTree("data", "backup", task);
    for (const auto& failure : result.failures)
        Warn(failure.name, failure.reason.text); // "The file could not be copied: Permission denied."
    EXPECT_TRUE(result);
    EXPECT_EQ(bytes, 7u);
    EXPECT_EQ(warned, "");
}

TEST_F(Guides, FilesFromStrangers) {
    work.Write("scene.sdl", kScene);
    const eFileName file("scene.sdl");
    const eSDLLimits limits{.sourceBytes = 16 << 20, .tokenBytes = 4096, .includeDepth = 0};
    eSDLReader reader(file, "scene", nullptr, limits);
    reader.SkipBlock(true);
    reader.Finish();

    IO::eFileStream stream(file, IO::StreamMode::Read);
    stream.SetLimits({.textBytes = 200, .listBytes = 64 * 1024});
    EXPECT_EQ(stream.Limits().textBytes, 200u);

    work.Write("in.json", "[[1]]");
    const eFileName input("in.json");
    const eFileName output("out.sdl");
    const bool converted = JsonToSdlWithin({.bytes = 16 << 20, .depth = 32}, input, output);
    EXPECT_TRUE(converted);
}

} // namespace
