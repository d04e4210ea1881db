// SPDX-License-Identifier: BSL-1.0
#include "files.h"

#include <array>
#include <iostream>
#include <utility>

#include "native_name.h"
#include "terminal.h"
#include "verb.h"

namespace {

[[noreturn]] void FailToRead(const std::string& name, const std::string& reason) {
    throw eTrouble(ShownName(name) + ": " + terminal::Printable(reason));
}

std::unique_ptr<IO::eStream> StandardInput() {
    auto content = std::make_unique<IO::eMemoryStream>();
    std::array<char, 1 << 16> piece;
    while (std::cin.read(piece.data(), piece.size()) || std::cin.gcount() > 0)
        content->Write(piece.data(), static_cast<unsigned long long>(std::cin.gcount()));
    if (std::cin.bad())
        FailToRead(std::string(kStandard), "it could not be read");
    content->Seek(0, IO::eSeekDir::Begin);
    return content;
}

} // namespace

std::string ShownName(const std::string& name) {
    return terminal::Printable(name);
}

std::unique_ptr<IO::eStream> OpenInput(const std::string& name) {
    if (name == kStandard)
        return StandardInput();
    std::unique_ptr<IO::eStream> stream(IO::GetStream(NativeName(name), IO::StreamMode::Read));
    if (!stream || !stream->IsOpen())
        FailToRead(name, stream ? stream->Failure().text : "There is no memory for it.");
    return stream;
}

eOutput::eOutput(std::string target) : name(std::move(target)) {
    if (name == kStandard)
        return;
    file = std::make_unique<IO::eSaveFile>(NativeName(name));
    if (!file->IsOpen())
        Fail();
}

void eOutput::Write(std::string_view text) {
    if (file)
        file->Write(text.data(), text.size());
    else if (!std::cout.write(text.data(), static_cast<std::streamsize>(text.size())))
        Fail();
}

IO::eStream& eOutput::Stream() {
    if (file)
        return *file;
    collected = std::make_unique<IO::eMemoryStream>();
    return *collected;
}

void eOutput::Commit() {
    if (collected) {
        std::cout.write(reinterpret_cast<const char*>(collected->Buffer()),
                        static_cast<std::streamsize>(collected->Size()));
        collected.reset();
    }
    if (file ? !file->Commit() : !std::cout.flush())
        Fail();
}

void eOutput::Fail() const {
    if (!file)
        throw eTrouble("standard output could not be written");
    throw eTrouble(ShownName(name) + ": " + terminal::Printable(file->Failure().text));
}
