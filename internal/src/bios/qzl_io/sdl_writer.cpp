// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/writer.h>

#include <memory>
#include <string>
#include <utility>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_io/streams/save_file.h>

#include "files/whole_name.h"
#include "platform/file_handle.h"
#include "platform/saved_file.h"
#include "sdl_writer_reports.h"
#include "streams/failure_text.h"

// Where the text of a writer goes, and when.

namespace {

namespace WriterReport = xSDL::WriterReport;

// The text of a writer that is not open.
class eRefusingText : public eSDLWriter::eWriteStream {
public:
    void WriteString(const char*) override { Refuse(); }
    void WriteFloat(float) override { Refuse(); }
    void WriteInt(int) override { Refuse(); }
    void WriteControl(int) override { Refuse(); }
    void WriteIdent(const char*, int) override { Refuse(); }
    void WriteHashed(const char*) override { Refuse(); }
    void Flush(IO::eStream*, std::shared_ptr<eSDLCipher>) override {}
    void MarkEmpty() override { Refuse(); }

private:
    [[noreturn]] static void Refuse() {
        xError::Fatal(WriterReport::kSource, WriterReport::kNotOpenLine, "SDLWriter: Not open!");
    }
};

IO::eFailure CannotBeSaved(const std::string& name) {
    const int refusal = IO::Platform::TakeRefusal();
    return {refusal, FailureText("\"" + name + "\" cannot be saved", refusal)};
}

std::string Narrow(const eFileName& name) {
    return name.str();
}
std::string Narrow(const eFileNameW& name) {
    return ToString(name.str());
}

} // namespace

// Where the text goes when the document is closed.
class eSDLWriter::eTarget {
public:
    virtual ~eTarget() = default;
    // Returns why not all of the text arrived.
    virtual IO::eFailure Take(eWriteStream& text, const std::shared_ptr<eSDLCipher>& transform, IO::eSaveEnd end) = 0;
    virtual bool WarnsOfFailure() const = 0;
    // Takes the text while another exception unwinds the stack.
    virtual void TakeQuietly(eWriteStream& text, const std::shared_ptr<eSDLCipher>& transform) noexcept = 0;
};

class eSDLWriter::eStreamTarget : public eTarget {
public:
    explicit eStreamTarget(IO::eStream* target) : stream(target) {}

    IO::eFailure Take(eWriteStream& text, const std::shared_ptr<eSDLCipher>& transform, IO::eSaveEnd) override {
        text.Flush(stream, transform);
        return stream->Failure();
    }
    bool WarnsOfFailure() const override { return false; }

    void TakeQuietly(eWriteStream& text, const std::shared_ptr<eSDLCipher>& transform) noexcept override {
        const bool reports = stream->Enabled(IO::StreamMode::Errors);
        stream->Disable(IO::StreamMode::Errors);
        try {
            text.Flush(stream, transform);
        } catch (...) {
            // The exception in progress is the one that matters.
        }
        if (reports)
            stream->Enable(IO::StreamMode::Errors);
    }

private:
    IO::eStream* stream;
};

template <class eName>
class eSDLWriter::eFileTarget : public eTarget {
public:
    explicit eFileTarget(const eName& path) : name(path) {}

    IO::eFailure Take(eWriteStream& text, const std::shared_ptr<eSDLCipher>& transform, IO::eSaveEnd end) override {
        IO::eSaveFile file(name, end);
        if (file.IsOpen())
            text.Flush(&file, transform);
        file.Commit();
        return file.Failure();
    }
    bool WarnsOfFailure() const override { return true; }

    // A document that may not be complete is not saved.
    void TakeQuietly(eWriteStream&, const std::shared_ptr<eSDLCipher>&) noexcept override {}

private:
    eName name;
};

eSDLWriter::eDocument::eDocument() : text(std::make_shared<eRefusingText>()) {}
eSDLWriter::eDocument::eDocument(eDocument&&) noexcept = default;
eSDLWriter::eDocument& eSDLWriter::eDocument::operator=(eDocument&&) noexcept = default;
eSDLWriter::eDocument::~eDocument() = default;

template <class eName>
void eSDLWriter::StartFile(const eName& path) {
    if (IO::Platform::PrepareSave(IO::System::WholeText(path)))
        Start(std::make_unique<eFileTarget<eName>>(path));
    else
        Start(nullptr, CannotBeSaved(Narrow(path)));
}

eSDLWriter::eSDLWriter() : eSDLWriter(std::shared_ptr<eSDLCipher>()) {}

eSDLWriter::eSDLWriter(std::shared_ptr<eSDLCipher> transform)
    : document(std::make_shared<eDocument>()), cipher(std::move(transform)), saveEnd(IO::eSaveEnd::OnDisk) {}

eSDLWriter::eSDLWriter(const eFileName& path, std::shared_ptr<eSDLCipher> transform)
    : eSDLWriter(std::move(transform)) {
    StartFile(path);
}

eSDLWriter::eSDLWriter(const eFileNameW& path, std::shared_ptr<eSDLCipher> transform)
    : eSDLWriter(std::move(transform)) {
    StartFile(path);
}

eSDLWriter::eSDLWriter(IO::eStream* stream, std::shared_ptr<eSDLCipher> transform) : eSDLWriter(std::move(transform)) {
    Start(stream ? std::make_unique<eStreamTarget>(stream) : nullptr);
}

eSDLWriter::eSDLWriter(const eSDLWriter& other)
    : document(other.document), keywords(other.keywords), cipher(other.cipher), saveEnd(other.saveEnd) {}

eSDLWriter& eSDLWriter::operator=(const eSDLWriter& other) {
    if (this == &other)
        return *this;
    Release();
    document = other.document;
    keywords = other.keywords;
    cipher = other.cipher;
    saveEnd = other.saveEnd;
    return *this;
}

eSDLWriter::~eSDLWriter() noexcept(false) {
    Release();
}

void eSDLWriter::Release() {
    if (document.use_count() > 1)
        return;
    if (unwinding.IsUnderWay())
        CloseQuietly();
    else
        Close();
}

void eSDLWriter::Init() {
    document = std::make_shared<eDocument>();
}

// Copies of a closed document do not follow this writer to its new one.
void eSDLWriter::Start(std::unique_ptr<eTarget> target, IO::eFailure failure) {
    auto started = std::make_shared<eDocument>();
    started->target = std::move(target);
    started->failure = std::move(failure);
    started->text = std::make_shared<eSDLTextStream>();
    document = std::move(started);
}

void eSDLWriter::Open(IO::eStream* stream) {
    Close();
    Start(stream ? std::make_unique<eStreamTarget>(stream) : nullptr);
}

bool eSDLWriter::Open(const eFileName& path) {
    Close();
    StartFile(path);
    return Opened();
}

bool eSDLWriter::Open(const eFileNameW& path) {
    Close();
    StartFile(path);
    return Opened();
}

// The document counts as closed from the start: if writing it throws, nothing is written twice, and a handler of what
// it reports may open the writer again.
void eSDLWriter::Close() {
    const std::shared_ptr<eDocument> closed = document;
    eDocument closing = std::exchange(*closed, eDocument());
    IO::eFailure& failure = closed->failure;
    if (!closing.target) {
        failure = std::move(closing.failure);
        return;
    }
    failure.text = "Not all of the text was written."; // told if writing it throws
    failure = closing.target->Take(*closing.text, cipher, saveEnd);
    if (failure && closing.target->WarnsOfFailure())
        xError::Warning(WriterReport::kSource, WriterReport::kNotSavedLine, failure.text, 0);
}

// The document is about to be released. Closing it as Close does would take memory, and nothing may be thrown here.
void eSDLWriter::CloseQuietly() noexcept {
    if (document->target)
        document->target->TakeQuietly(*document->text, cipher);
}
