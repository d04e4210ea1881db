#include <qzl_io/sdl/json_to_sdl.h>

#include <cstdint>
#include <exception>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include <qzl_base/error.h>
#include <qzl_base/format.h>
#include <qzl_base/stack_entry.h>
#include <qzl_io/sdl/parser.h>
#include <qzl_io/sdl/writer.h>
#include <qzl_io/streams.h>

#include "files/failure_text.h"
#include "json/document.h"
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

using web::json::value;

// The member or element that a walk is in; the steps from the root to it are a list.
class eJsonStep {
public:
    eJsonStep(const eJsonStep** current, const utility::string_t* memberName, std::size_t elementIndex)
        : place(*current), outer(*current), name(memberName), index(elementIndex) {
        place = this;
    }
    ~eJsonStep() { place = outer; }
    eJsonStep(const eJsonStep&) = delete;
    eJsonStep& operator=(const eJsonStep&) = delete;

    // As in "/items/3/name".
    std::string Path() const {
        const std::string last = name ? JsonTextToUtf8(*name) : std::to_string(index);
        return (outer ? outer->Path() : std::string()) + '/' + last;
    }

private:
    const eJsonStep*& place;
    const eJsonStep* outer;
    const utility::string_t* name; // null for an element
    std::size_t index;
};

// Names a file, and the place in it where the walk is, to the reports that are made meanwhile.
class eFileAtWork : public xDebug::eStackEntry {
public:
    explicit eFileAtWork(const eFileName& path) : name(path) {}
    ~eFileAtWork() override { LeaveStack(); }
    eFileAtWork(const eFileAtWork&) = delete;
    eFileAtWork& operator=(const eFileAtWork&) = delete;

    std::string DSE_Title() const override { return '"' + name.str() + '"'; }
    std::string DSE_Brief() const override { return place ? ", " + place->Path() : std::string(); }
    std::string DSE_Full() const override { return failure; }

    const eFileName& Name() const { return name; }

    // Ends the work on the file with the message, which names it; the reports say what could not be done and why.
    [[noreturn]] void Fail(const char* message, const char* notDone) {
        failure = FailureText(notDone);
        throw std::runtime_error((format(message) % name).str());
    }

    const eJsonStep* place = nullptr;

private:
    const eFileName& name;
    std::string failure;
};

// --- Files ---

std::unique_ptr<IO::eStream> OpenFile(eFileAtWork* file, int mode) {
    IO::Platform::TakeFailureReason(); // of something before
    std::unique_ptr<IO::eStream> stream(IO::GetStream(file->Name(), mode));
    if (!stream || !stream->IsOpen())
        file->Fail("%1% - open error!", "The file could not be opened");
    return stream;
}

std::string ReadFile(eFileAtWork* file) {
    const std::unique_ptr<IO::eStream> stream = OpenFile(file, IO::StreamMode::Read);
    std::string text(stream->Size() - stream->Position(), '\0');
    stream->Read(text.data(), text.size());
    if (stream->Enabled(IO::StreamMode::Bad))
        file->Fail("%1% - read error!", "The file could not be read to its end");
    return text;
}

void WriteFile(eFileAtWork* file, const eTextPieces& beginning, eSDLWriter::eWriteStream* rest) {
    const std::unique_ptr<IO::eStream> stream = OpenFile(file, IO::StreamMode::Write | IO::StreamMode::Create);
    beginning.WriteTo(stream.get());
    rest->Flush(stream.get(), nullptr);
    stream->Flush();
    if (stream->Enabled(IO::StreamMode::Bad))
        file->Fail("%1% - write error!", "The file could not be written to its end");
}

// --- The walk ---

// Writes a document and takes it apart: each object and array is freed when it is written, while the cache holds it.
class eJsonWalk {
public:
    eJsonWalk(eSDLWriter::eWriteStream* target, eTextPieces* textBefore, const eJsonStep** currentPlace)
        : text(*target), before(*textBefore), place(currentPlace) {}

    void WriteJsonValue(value json) { WriteJsonValue(&json, json.type()); }

private:
    static constexpr int kItemsInPiece = 8192;

    static bool IsContainer(value::value_type type) { return type == value::Object || type == value::Array; }
    // Whether 32 bits hold the integer, with a sign or without.
    static bool IsShort(const web::json::number& integer) {
        return integer.is_uint64() ? integer.to_uint64() <= UINT32_MAX : integer.is_int32();
    }

    void WriteJsonValue(value* json, value::value_type type);
    void WriteJsonNumber(const web::json::number& number);
    void WriteJsonObject(web::json::object* object);
    void WriteJsonArray(web::json::array* array);
    void WriteLines(value container, value::value_type type);

    void BeginItem();
    void EndLine() { text.newlinePending = true; }

    eSDLWriter::eWriteStream& text;
    eTextPieces& before;
    int items = 0; // since the last piece
    const eJsonStep** place;
};

// An item that begins a line, and so one before which the text may be cut.
void eJsonWalk::BeginItem() {
    if (++items < kItemsInPiece)
        return;
    before.Take(&text);
    items = 0;
}

void eJsonWalk::WriteJsonNumber(const web::json::number& number) {
    if (!number.is_integral()) {
        text.WriteFloat(static_cast<float>(number.to_double()));
    } else if (IsShort(number)) {
        text.WriteInt(number.to_int32());
    } else {
        xError::Warning(ConversionReport::kSource, ConversionReport::kNumberLine, "Json number not parsed correctly.",
                        0);
        text.WriteInt(0);
    }
}

void eJsonWalk::WriteJsonObject(web::json::object* object) {
    for (auto& [name, member] : *object) {
        const eJsonStep step(place, &name, 0);
        const value::value_type type = member.type();
        BeginItem();
        text.WriteControl(sdlBlockStart);
        text.WriteIdent(JsonTextToUtf8(name).c_str(), eSDLWriter::eWriteStream::kNoKeyword);
        if (IsContainer(type))
            WriteLines(std::move(member), type);
        else
            WriteJsonValue(&member, type);
        text.WriteControl(sdlBlockEnd);
        EndLine();
    }
}

void eJsonWalk::WriteJsonArray(web::json::array* array) {
    std::size_t index = 0;
    for (value& element : *array) {
        const eJsonStep step(place, nullptr, index++);
        const value::value_type type = element.type();
        if (type != value::Null)
            BeginItem();
        if (IsContainer(type)) {
            text.WriteControl(sdlBlockStart);
            WriteLines(std::move(element), type);
            text.WriteControl(sdlBlockEnd);
        } else {
            WriteJsonValue(&element, type);
        }
        EndLine();
    }
}

void eJsonWalk::WriteLines(value container, value::value_type type) {
    EndLine();
    WriteJsonValue(&container, type);
    EndLine();
}

void eJsonWalk::WriteJsonValue(value* json, value::value_type type) {
    switch (type) {
    case value::Number:
        WriteJsonNumber(json->as_number());
        return;
    case value::Boolean:
        text.WriteInt(json->as_bool());
        return;
    case value::String:
        text.WriteString(JsonTextToUtf8(json->as_string()).c_str());
        return;
    case value::Object:
        WriteJsonObject(&json->as_object());
        return;
    case value::Array:
        WriteJsonArray(&json->as_array());
        return;
    case value::Null:
        return;
    }
    xError::Fatal(ConversionReport::kSource, ConversionReport::kValueTypeLine,
                  "Json parsing failed due to unknown json value type.");
}

// Where there was no memory for the report, there may be now that the step has given back its own.
void Warn(int line, const char* message) {
    try {
        xError::Warning(ConversionReport::kSource, line, message, 0);
        return;
    } catch (const std::bad_alloc&) {
    }
    try {
        xError::Warning(ConversionReport::kSource, line, message, 0);
    } catch (const std::bad_alloc&) {
        // There is none at all.
    }
}

// Runs one step of a conversion; what it throws becomes one warning and false.
template <class eStep>
bool Succeeds(int line, const eStep& step) {
    try {
        step();
        return true;
    } catch (const std::exception& failure) {
        Warn(line, failure.what());
    } catch (...) {
        Warn(line, "Json conversion failed.");
    }
    return false;
}

// What one conversion holds. The output is opened when its text is complete, so that a failure on the way leaves it
// alone.
struct eConversion {
    value json;
    eSDLTextStream text;
    eTextPieces beginning;
};

} // namespace

bool JsonToSdl(const eFileName& input, const eFileName& output) {
    eFileAtWork reading(input);
    std::unique_ptr<eConversion> conversion;
    const auto read = [&] {
        conversion = std::make_unique<eConversion>();
        conversion->json = ParseJson(ReadFile(&reading));
    };
    if (!Succeeds(ConversionReport::kReadingLine, read))
        return false;
    const auto walk = [&] {
        eJsonWalk(&conversion->text, &conversion->beginning, &reading.place)
            .WriteJsonValue(std::move(conversion->json));
    };
    if (!Succeeds(ConversionReport::kWalkingLine, walk))
        return false;
    eFileAtWork writing(output);
    return Succeeds(ConversionReport::kWritingLine,
                    [&] { WriteFile(&writing, conversion->beginning, &conversion->text); });
}
