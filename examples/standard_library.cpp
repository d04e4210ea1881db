// SPDX-License-Identifier: BSL-1.0
#include <filesystem>
#include <iostream>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

#include <qzl_base/error.h>
#include <qzl_io/qzl_io.h>
#include <qzl_io/standard.h>

// The library with types of the standard one: views, paths, spans of bytes, streams, and guards.

static eSDLKeyword* words;
static eSDLKeyword noteWord(words, "note", 1);

// Writes a block with views and UTF-8 texts to a file named by a path, and reads it back.
static bool WriteAndRead(const std::filesystem::path& file, std::string_view text) {
    {
        eSDLWriter writer(file);
        const eSDLKeywordsGuard keywords(writer, words); // popped at the end of this block
        writer << block{noteWord.id} << text << u8"caf\u00e9" << endb << endl;
    }
    eSDLReader reader(file, nullptr);
    const eSDLKeywordsGuard keywords(reader, words);
    std::string read;
    std::u8string utf8;
    reader.GetBlock(noteWord.id);
    reader >> read >> utf8 >> endb;
    return read == text && utf8 == u8"caf\u00e9";
}

// Counts the files of the current folder by extension.
static std::unordered_map<eFileName, int> Extensions() {
    std::unordered_map<eFileName, int> extensions;
    IO::eSearch search("./", "*");
    for (const auto& entry : search)
        if (entry.IsFile())
            ++extensions[eFileName(entry.Name()).GetItem(Extension)];
    return extensions;
}

int main() {
    // Warnings are counted instead of printed, until the end of main.
    int warnings = 0;
    const xError::eWarningHandlerGuard handler([&](const xError::eReport&) { ++warnings; });

    const bool same = WriteAndRead(std::filesystem::path("notes.sdl"), "a view");

    IO::eMemoryStream memory;
    memory.Write(std::as_bytes(std::span("bytes")));
    {
        IO::eStandardBuffer buffer(memory);
        std::ostream out(&buffer);
        out << eFileName("a\\b") << ' ' << 42;
    }
    const std::string_view written(reinterpret_cast<const char*>(memory.Buffer()), memory.Size());
    const auto extensions = Extensions();
    std::cout << written << '\n' << extensions.at(".sdl") << " SDL file(s)\n";
    if (!same || warnings != 0 || !written.ends_with("a/b 42")) {
        std::cerr << "Something has changed on its way.\n";
        return 1;
    }
}
