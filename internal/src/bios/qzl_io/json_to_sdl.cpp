// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/json_to_sdl.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <qzl_base/error.h>
#include <qzl_base/format.h>
#include <qzl_base/stack_entry.h>
#include <qzl_io/sdl/parser.h>
#include <qzl_io/sdl/writer.h>
#include <qzl_io/streams.h>

#include "qzl_base/shared/ascii.h"
#include "sdl/automaton.h"
#include "streams/read_text.h"
#include "json/sink.h"
#include "json/text.h"
#include "json/text_pieces.h"

namespace {

namespace ConversionReport {
constexpr const char* kSource = "internal/src/bios/qzl_io/json_to_sdl";
constexpr int kNumberLine = 20;
constexpr int kValueTypeLine = 40;
constexpr int kReadingLine = 60;
constexpr int kWalkingLine = 80;
constexpr int kWritingLine = 100;
} // namespace ConversionReport

// The beginning of a name, as warnings show it. A document may cause as many warnings as it has values, so they must
// not grow with its names.
std::string ShownName(std::string_view name) {
    constexpr std::size_t kMost = 100;
    if (name.size() <= kMost)
        return std::string(name);
    std::size_t end = kMost;
    while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80) // within a character
        --end;
    return std::string(name.substr(0, end)) + "...";
}

// The containers around the value that is being converted; the document itself is the first.
class eJsonPlace {
public:
    enum class eKind { Document, Object, Array };

    eJsonPlace() { Enter(eKind::Document); }

    eKind Around() const { return around.back().kind; }
    void Enter(eKind kind) { around.push_back({kind, {}, 0}); }
    void Leave() { around.pop_back(); }
    void NameMember(std::string_view name) { around.back().name = name; }
    void EndElement() { ++around.back().index; }

    // The path of the value, as in "/items/3/name"; empty for the document's own value.
    std::string Path() const {
        std::string path;
        for (const eContainer& container : around)
            if (container.kind != eKind::Document)
                path.append(1, '/').append(container.Step());
        return path;
    }

private:
    struct eContainer {
        eKind kind;
        std::string_view name; // of an object's current member
        std::size_t index;     // of an array's current element

        std::string Step() const { return kind == eKind::Array ? std::to_string(index) : ShownName(name); }
    };

    std::vector<eContainer> around;
};

// Shows reports the file or stream that is being worked on, and the place of the walk in it.
class eFileAtWork : public xDebug::eStackEntry {
public:
    eFileAtWork(const eFileName& path, int failureLine) : line(failureLine), name(path) {}
    ~eFileAtWork() override { LeaveStack(); }
    eFileAtWork(const eFileAtWork&) = delete;
    eFileAtWork& operator=(const eFileAtWork&) = delete;

    std::string DSE_Title() const override { return '"' + name.str() + '"'; }
    std::string DSE_Brief() const override {
        const std::string path = place ? place->Path() : std::string();
        return path.empty() ? path : ", " + path;
    }
    std::string DSE_Full() const override { return failure; }

    const eFileName& Name() const { return name; }

    // Ends the work on the file with the message. The context of the report says what could not be done and why.
    [[noreturn]] void Fail(const char* message, std::string whatAndWhy) {
        failure = std::move(whatAndWhy);
        throw std::runtime_error((format(message) % name).str());
    }

    const eJsonPlace* place = nullptr;
    int line; // line number of the report that the work on the file fails

private:
    const eFileName& name;
    std::string failure;
};

// --- Files ---

constexpr char kOpenError[] = "%1% - open error!";

std::string ReadStream(eFileAtWork* file, IO::eStream& stream, const eJsonLimits& limits) {
    if (stream.Remaining() > limits.bytes)
        throw std::length_error("Json size limit exceeded!");
    std::string text;
    if (!IO::ReadText(stream, static_cast<std::size_t>(stream.Remaining()), kRoomAfterJson, &text))
        file->Fail("%1% - read error!", stream.Failure().text);
    if (json_text::IsDeeper(text, limits.depth))
        throw std::length_error("Json depth limit exceeded!");
    return text;
}

std::string ReadFile(eFileAtWork* file, const eJsonLimits& limits) {
    IO::eFileStream stream(file->Name(), IO::StreamMode::Read);
    if (!stream.IsOpen())
        file->Fail(kOpenError, stream.Failure().text);
    return ReadStream(file, stream, limits);
}

// --- The text ---

// The output of one conversion. The file is opened when the text is complete, so that an earlier failure leaves it
// unchanged.
struct eConvertedText {
    void WriteTo(IO::eStream* target) const {
        beginning.WriteTo(target);
        end->Flush(target, nullptr);
    }
    void Restart() { *this = eConvertedText(); }

    std::unique_ptr<eSDLTextStream> end = std::make_unique<eSDLTextStream>();
    eTextPieces beginning;
};

constexpr char kWriteError[] = "%1% - write error!";

void WriteFile(eFileAtWork* file, eConvertedText* text) {
    IO::eSaveFile stream(file->Name());
    if (!stream.IsOpen())
        file->Fail(kOpenError, stream.Failure().text);
    text->WriteTo(&stream);
    if (!stream.Commit())
        file->Fail(kWriteError, stream.Failure().text);
}

void WriteStream(eFileAtWork* file, IO::eStream& stream, eConvertedText* text) {
    text->WriteTo(&stream);
    stream.Flush();
    if (stream.Enabled(IO::StreamMode::Bad))
        file->Fail(kWriteError, stream.Failure().text);
}

// --- What is lost ---

// Whether a name reads back as one word.
bool IsWord(std::string_view name) {
    using eClass = xSDL::eCharClass;
    const auto letter = [](char c) { return eClass(eClass::Letter).Has(static_cast<unsigned char>(c)); };
    const auto inside = [&](char c) { return letter(c) || ascii::IsDigit(c); };
    return !name.empty() && (letter(name.front()) || name.front() == '%') &&
           std::all_of(name.begin() + 1, name.end(), inside);
}

bool HasNul(std::string_view text) {
    return text.find('\0') != std::string_view::npos;
}

// Writes the events of a document as SDL. Meanwhile reports about the file name the place.
class eSdlFromJson final : public eJsonSink {
public:
    eSdlFromJson(eConvertedText* target, eFileAtWork* source, eJsonLosses* lost)
        : converted(*target), file(*source), losses(lost) {
        file.place = &place;
    }
    ~eSdlFromJson() { file.place = nullptr; }
    eSdlFromJson(const eSdlFromJson&) = delete;
    eSdlFromJson& operator=(const eSdlFromJson&) = delete;

    void BeginDraft() override {
        Restart();
        draft = true;
    }
    void BeginDocument() override {
        Restart();
        draft = false;
        file.line = ConversionReport::kWalkingLine;
    }

    void BeginObject() override;
    void Name(std::string_view name) override;
    void EndObject() override;
    void BeginArray() override { BeginContainer(eKind::Array); }
    void EndArray() override { EndContainer(); }

    void String(std::string_view string) override;
    void Signed(std::int64_t value) override;
    void Unsigned(std::uint64_t value) override;
    void Double(double value) override;
    void Bool(bool value) override;
    void Null() override;
    void Unknown() override;

private:
    using eKind = eJsonPlace::eKind;

    static constexpr int kItemsInPiece = 8192;

    void Restart();
    void LeaveDraft() const {
        if (draft)
            throw eJsonDraftEnds();
    }

    void BeginItem();
    void BeginScalar();
    void BeginContainer(eKind kind);
    void EndContainer();
    void EndValue();
    void EndLine() { text->newlinePending = true; }

    void WriteInt(int value);
    void WriteLongInteger();

    eConvertedText& converted;
    eSDLTextStream* text = converted.end.get();
    bool draft = false;
    int items = 0; // since the last piece
    eJsonPlace place;
    eFileAtWork& file;
    eJsonLosses* losses;      // null: nobody asks
    bool objectBegun = false; // since the last member or value
};

void eSdlFromJson::Restart() {
    converted.Restart();
    text = converted.end.get();
    items = 0;
    place = eJsonPlace();
    objectBegun = false;
    if (losses)
        *losses = eJsonLosses();
}

// Begins an item that starts a line, before which the text may be cut.
void eSdlFromJson::BeginItem() {
    if (++items < kItemsInPiece)
        return;
    converted.beginning.Take(text);
    items = 0;
}

void eSdlFromJson::BeginScalar() {
    if (place.Around() == eKind::Array)
        BeginItem();
}

void eSdlFromJson::BeginContainer(eKind kind) {
    if (place.Around() == eKind::Array) {
        BeginItem();
        text->WriteControl(sdlBlockStart);
    }
    if (place.Around() != eKind::Document)
        EndLine();
    place.Enter(kind);
}

void eSdlFromJson::EndContainer() {
    place.Leave();
    if (place.Around() == eKind::Array)
        text->WriteControl(sdlBlockEnd);
    EndValue();
}

void eSdlFromJson::EndValue() {
    switch (place.Around()) {
    case eKind::Object:
        text->WriteControl(sdlBlockEnd);
        break;
    case eKind::Array:
        place.EndElement();
        break;
    case eKind::Document:
        return;
    }
    EndLine();
}

void eSdlFromJson::BeginObject() {
    BeginContainer(eKind::Object);
    objectBegun = true;
}

void eSdlFromJson::EndObject() {
    if (losses && objectBegun)
        ++losses->emptyObjects;
    objectBegun = false;
    EndContainer();
}

void eSdlFromJson::Name(std::string_view name) {
    BeginItem();
    text->WriteControl(sdlBlockStart);
    text->WriteIdent(name.data(), eSDLWriter::eWriteStream::kNoKeyword);
    place.NameMember(name);
    objectBegun = false;
    if (losses && !IsWord(name) && ++losses->names == 1)
        losses->firstName = place.Path();
}

void eSdlFromJson::Bool(bool value) {
    if (losses)
        ++losses->booleans;
    WriteInt(value);
}

void eSdlFromJson::Null() {
    if (losses && place.Around() == eKind::Array)
        ++losses->nulls;
    EndValue();
}

void eSdlFromJson::String(std::string_view string) {
    BeginScalar();
    if (losses && HasNul(string))
        ++losses->texts;
    text->WriteString(string.data());
    EndValue();
}

void eSdlFromJson::WriteInt(int value) {
    BeginScalar();
    text->WriteInt(value);
    EndValue();
}

void eSdlFromJson::WriteLongInteger() {
    BeginScalar();
    if (losses)
        ++losses->integers;
    LeaveDraft();
    xError::Warning(ConversionReport::kSource, ConversionReport::kNumberLine, "Json number not parsed correctly.", 0);
    text->WriteInt(0);
    EndValue();
}

void eSdlFromJson::Signed(std::int64_t value) {
    if (value == static_cast<int>(value))
        WriteInt(static_cast<int>(value));
    else
        WriteLongInteger();
}

// A value that fits into 32 bits without a sign keeps its bits.
void eSdlFromJson::Unsigned(std::uint64_t value) {
    if (value > UINT32_MAX)
        return WriteLongInteger();
    if (losses && value > INT32_MAX)
        ++losses->integers;
    WriteInt(static_cast<int>(value));
}

void eSdlFromJson::Double(double value) {
    BeginScalar();
    const auto narrow = static_cast<float>(value);
    if (losses && static_cast<double>(narrow) != value)
        ++losses->floats;
    if (!std::isfinite(narrow))
        LeaveDraft();
    text->WriteFloat(narrow);
    EndValue();
}

void eSdlFromJson::Unknown() {
    LeaveDraft();
    xError::Fatal(ConversionReport::kSource, ConversionReport::kValueTypeLine,
                  "Json parsing failed due to unknown json value type.");
}

// If there was no memory for the report before, there may be some now that the step has released its own.
void Warn(int line, const char* message) {
    try {
        xError::Warning(ConversionReport::kSource, line, message, 0);
        return;
    } catch (const std::bad_alloc&) {
    }
    try {
        xError::Warning(ConversionReport::kSource, line, message, 0);
    } catch (const std::bad_alloc&) {
        // There is no memory at all.
    }
}

// Does the work on a file. An exception becomes one warning and the result false.
template <class eWork>
bool Succeeds(const eFileAtWork& file, const eWork& work) {
    try {
        work();
        return true;
    } catch (const std::exception& failure) {
        Warn(file.line, failure.what());
    } catch (...) {
        Warn(file.line, "Json conversion failed.");
    }
    return false;
}

} // namespace

std::string_view JsonEngine() {
    return kJsonEngine;
}

bool JsonToSdl(const eFileName& input, const eFileName& output) {
    return JsonToSdlWithin(eJsonLimits(), input, output);
}

namespace {

// The text of the document that `read` returns; null after a failure, which has been reported.
template <class eRead>
std::unique_ptr<eConvertedText> Converted(eFileAtWork* reading, eJsonLosses* losses, const eRead& read) {
    std::unique_ptr<eConvertedText> text;
    const bool converted = Succeeds(*reading, [&] {
        text = std::make_unique<eConvertedText>();
        eSdlFromJson sink(text.get(), reading, losses);
        FeedJson(read(), &sink);
    });
    if (!converted && losses)
        *losses = eJsonLosses();
    return converted ? std::move(text) : nullptr;
}

} // namespace

bool JsonToSdlWithin(const eJsonLimits& limits, const eFileName& input, const eFileName& output) {
    eFileAtWork reading(input, ConversionReport::kReadingLine);
    const auto text = Converted(&reading, nullptr, [&] { return ReadFile(&reading, limits); });
    if (!text)
        return false;
    eFileAtWork writing(output, ConversionReport::kWritingLine);
    return Succeeds(writing, [&] { WriteFile(&writing, text.get()); });
}

bool JsonStreamToSdl(IO::eStream& input, IO::eStream& output, eJsonLosses* losses, const eJsonLimits& limits) {
    static const eFileName kStream("Stream");
    if (losses)
        *losses = eJsonLosses();
    eFileAtWork reading(kStream, ConversionReport::kReadingLine);
    const auto text = Converted(&reading, losses, [&] { return ReadStream(&reading, input, limits); });
    if (!text)
        return false;
    eFileAtWork writing(kStream, ConversionReport::kWritingLine);
    return Succeeds(writing, [&] { WriteStream(&writing, output, text.get()); });
}
