#include <qzl_io/sdl/json_to_sdl.h>

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

// Shows reports the file that is being worked on, and the place of the walk in it.
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

std::string ReadFile(eFileAtWork* file, const eJsonLimits& limits) {
    IO::eFileStream stream(file->Name(), IO::StreamMode::Read);
    if (!stream.IsOpen())
        file->Fail(kOpenError, stream.Failure().text);
    if (stream.Size() > limits.bytes)
        throw std::length_error("Json size limit exceeded!");
    std::string text(stream.Remaining(), '\0');
    stream.Read(text.data(), text.size());
    if (stream.Enabled(IO::StreamMode::Bad))
        file->Fail("%1% - read error!", stream.Failure().text);
    if (json_text::IsDeeper(text, limits.depth))
        throw std::length_error("Json depth limit exceeded!");
    return text;
}

void WriteFile(eFileAtWork* file, const eTextPieces& beginning, eSDLWriter::eWriteStream* rest) {
    IO::eSaveFile stream(file->Name());
    if (!stream.IsOpen())
        file->Fail(kOpenError, stream.Failure().text);
    beginning.WriteTo(&stream);
    rest->Flush(&stream, nullptr);
    if (!stream.Commit())
        file->Fail("%1% - write error!", stream.Failure().text);
}

// --- The text ---

// The output of one conversion. The file is opened when the text is complete, so that an earlier failure leaves it
// unchanged.
struct eConvertedText {
    eSDLTextStream end;
    eTextPieces beginning;
};

// Writes the events of a document as SDL. Meanwhile reports about the file name the place.
class eSdlFromJson final : public eJsonSink {
public:
    eSdlFromJson(eConvertedText* target, eFileAtWork* source)
        : text(target->end), beginning(target->beginning), file(*source) {
        file.place = &place;
    }
    ~eSdlFromJson() { file.place = nullptr; }
    eSdlFromJson(const eSdlFromJson&) = delete;
    eSdlFromJson& operator=(const eSdlFromJson&) = delete;

    void BeginDocument() override { file.line = ConversionReport::kWalkingLine; }

    void BeginObject() override { BeginContainer(eKind::Object); }
    void Name(std::string_view name) override;
    void EndObject() override { EndContainer(); }
    void BeginArray() override { BeginContainer(eKind::Array); }
    void EndArray() override { EndContainer(); }

    void String(std::string_view string) override;
    void Signed(std::int64_t value) override;
    void Unsigned(std::uint64_t value) override;
    void Double(double value) override;
    void Bool(bool value) override { WriteInt(value); }
    void Null() override { EndValue(); }
    void Unknown() override;

private:
    using eKind = eJsonPlace::eKind;

    static constexpr int kItemsInPiece = 8192;

    void BeginItem();
    void BeginScalar();
    void BeginContainer(eKind kind);
    void EndContainer();
    void EndValue();
    void EndLine() { text.newlinePending = true; }

    void WriteInt(int value);
    void WriteLongInteger();

    eSDLWriter::eWriteStream& text;
    eTextPieces& beginning;
    int items = 0; // since the last piece
    eJsonPlace place;
    eFileAtWork& file;
};

// Begins an item that starts a line, before which the text may be cut.
void eSdlFromJson::BeginItem() {
    if (++items < kItemsInPiece)
        return;
    beginning.Take(&text);
    items = 0;
}

void eSdlFromJson::BeginScalar() {
    if (place.Around() == eKind::Array)
        BeginItem();
}

void eSdlFromJson::BeginContainer(eKind kind) {
    if (place.Around() == eKind::Array) {
        BeginItem();
        text.WriteControl(sdlBlockStart);
    }
    if (place.Around() != eKind::Document)
        EndLine();
    place.Enter(kind);
}

void eSdlFromJson::EndContainer() {
    place.Leave();
    if (place.Around() != eKind::Document)
        EndLine();
    if (place.Around() == eKind::Array)
        text.WriteControl(sdlBlockEnd);
    EndValue();
}

void eSdlFromJson::EndValue() {
    switch (place.Around()) {
    case eKind::Object:
        text.WriteControl(sdlBlockEnd);
        break;
    case eKind::Array:
        place.EndElement();
        break;
    case eKind::Document:
        return;
    }
    EndLine();
}

void eSdlFromJson::Name(std::string_view name) {
    BeginItem();
    text.WriteControl(sdlBlockStart);
    text.WriteIdent(name.data(), eSDLWriter::eWriteStream::kNoKeyword);
    place.NameMember(name);
}

void eSdlFromJson::String(std::string_view string) {
    BeginScalar();
    text.WriteString(string.data());
    EndValue();
}

void eSdlFromJson::WriteInt(int value) {
    BeginScalar();
    text.WriteInt(value);
    EndValue();
}

void eSdlFromJson::WriteLongInteger() {
    BeginScalar();
    xError::Warning(ConversionReport::kSource, ConversionReport::kNumberLine, "Json number not parsed correctly.", 0);
    text.WriteInt(0);
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
    if (value <= UINT32_MAX)
        WriteInt(static_cast<int>(value));
    else
        WriteLongInteger();
}

void eSdlFromJson::Double(double value) {
    BeginScalar();
    text.WriteFloat(static_cast<float>(value));
    EndValue();
}

void eSdlFromJson::Unknown() {
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

bool JsonToSdl(const eFileName& input, const eFileName& output) {
    return JsonToSdlWithin(eJsonLimits(), input, output);
}

bool JsonToSdlWithin(const eJsonLimits& limits, const eFileName& input, const eFileName& output) {
    eFileAtWork reading(input, ConversionReport::kReadingLine);
    std::unique_ptr<eConvertedText> text;
    const auto convert = [&] {
        text = std::make_unique<eConvertedText>();
        eSdlFromJson sink(text.get(), &reading);
        FeedJson(ReadFile(&reading, limits), &sink);
    };
    if (!Succeeds(reading, convert))
        return false;
    eFileAtWork writing(output, ConversionReport::kWritingLine);
    return Succeeds(writing, [&] { WriteFile(&writing, text->beginning, &text->end); });
}
