// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/reader.h>

#include <memory>
#include <new>
#include <utility>

#include <qzl_base/convert.h>
#include <qzl_io/streams.h>

#include "sdl_reader_checks.h"

// How a reader gets its sources: the first one, and those that it includes.

namespace {

namespace Checks = xSDL::Checks;

template <class Name>
std::unique_ptr<IO::eStream> OpenSource(const Name& file) {
    std::unique_ptr<IO::eStream> stream(IO::GetStream(file, IO::StreamMode::Read));
    if (!stream)
        throw std::bad_alloc();
    return stream;
}

} // namespace

eSDLReader::eSDLReader(const eFileName& file, const char* signature, std::shared_ptr<eSDLCipher> sourceCipher)
    : eSDLReader(file, signature, std::move(sourceCipher), eSDLLimits()) {}

eSDLReader::eSDLReader(const eFileNameW& file, const char* signature, std::shared_ptr<eSDLCipher> sourceCipher)
    : eSDLReader(file, signature, std::move(sourceCipher), eSDLLimits()) {}

eSDLReader::eSDLReader(const eFileName& file, eSDLKeyword* table, std::shared_ptr<eSDLCipher> sourceCipher)
    : eSDLReader(file, table, std::move(sourceCipher), eSDLLimits()) {}

eSDLReader::eSDLReader(const eFileName& file, std::shared_ptr<eSDLCipher> sourceCipher)
    : eSDLReader(file, std::move(sourceCipher), eSDLLimits()) {}

eSDLReader::eSDLReader(const eFileNameW& file, std::shared_ptr<eSDLCipher> sourceCipher)
    : eSDLReader(file, std::move(sourceCipher), eSDLLimits()) {}

eSDLReader::eSDLReader(IO::eStream* stream, std::shared_ptr<eSDLCipher> sourceCipher)
    : eSDLReader(stream, std::move(sourceCipher), eSDLLimits()) {}

eSDLReader::eSDLReader(const eFileName& file, const char* signature, std::shared_ptr<eSDLCipher> sourceCipher,
                       const eSDLLimits& most)
    : cipher(std::move(sourceCipher)), sourceLimits(most) {
    Init();
    PushParser(NewParser(file, {}));
    signatureBlock = true;
    CheckSignature(signature, Checks::kFileNotSDL);
}

eSDLReader::eSDLReader(const eFileNameW& file, const char* signature, std::shared_ptr<eSDLCipher> sourceCipher,
                       const eSDLLimits& most)
    : cipher(std::move(sourceCipher)), sourceLimits(most) {
    Init();
    PushParser(NewParser(file));
    signatureBlock = true;
    CheckSignature(signature, Checks::kWideFileNotSDL);
}

eSDLReader::eSDLReader(const eFileName& file, eSDLKeyword* table, std::shared_ptr<eSDLCipher> sourceCipher,
                       const eSDLLimits& most)
    : cipher(std::move(sourceCipher)), sourceLimits(most) {
    Init();
    PushParser(NewParser(file, {}));
    PushKeywords(table);
}

eSDLReader::eSDLReader(const eFileName& file, std::shared_ptr<eSDLCipher> sourceCipher, const eSDLLimits& most)
    : cipher(std::move(sourceCipher)), sourceLimits(most) {
    Init();
    PushParser(NewParser(file, {}));
}

eSDLReader::eSDLReader(const eFileNameW& file, std::shared_ptr<eSDLCipher> sourceCipher, const eSDLLimits& most)
    : cipher(std::move(sourceCipher)), sourceLimits(most) {
    Init();
    PushParser(NewParser(file));
}

eSDLReader::eSDLReader(IO::eStream* stream, std::shared_ptr<eSDLCipher> sourceCipher, const eSDLLimits& most)
    : cipher(std::move(sourceCipher)), sourceLimits(most) {
    Init();
    PushParser(new eSDLParser({}, *stream, keywords, {}, cipher.get(), sourceLimits, EnteringSources(parsers.size())));
}

eSDLReader::eSDLReader(const eSDLReader& other) = default;

eSDLReader& eSDLReader::operator=(const eSDLReader& other) = default;

void eSDLReader::Init() {
    signatureBlock = false;
    checkAtEnd = true;
    controlFlag = false;
}

void eSDLReader::Include(const eFileName& file) {
    PushParser(NewParser(file, {}));
}

eSDLParser* eSDLReader::NewParser(const eFileName& file, const std::map<eStringKey, eStringKey>& parameters) {
    RequireRoomForSource();
    const std::unique_ptr<IO::eStream> stream = OpenSource(file);
    return new eSDLParser(file.str(), *stream, keywords, parameters, cipher.get(), sourceLimits,
                          EnteringSources(parsers.size()));
}

eSDLParser* eSDLReader::NewParser(const eFileNameW& file) {
    RequireRoomForSource();
    const std::unique_ptr<IO::eStream> stream = OpenSource(file);
    return new eSDLParser(ToString(file.str()), *stream, keywords, {}, cipher.get(), sourceLimits,
                          EnteringSources(parsers.size()));
}

void eSDLReader::PushParser(eSDLParser* parser) {
    std::shared_ptr<eSDLParser> owned(parser); // before the list grows, which may fail
    RequireRoomForSource();
    owned->LimitTokens(sourceLimits.tokenBytes);
    if (checkRange)
        owned->CheckNumbers();
    parsers.push_back(std::move(owned));
}

// The first source is not an included one.
void eSDLReader::RequireRoomForSource() {
    if (parsers.size() > sourceLimits.includeDepth)
        Fail(Checks::kIncludeLimit);
}

void eSDLReader::PopParser() {
    if (parsers.empty())
        return;
    if (!parsers.back()->failure.empty())
        NoteUnopened(*parsers.back());
    parsers.pop_back();
}
