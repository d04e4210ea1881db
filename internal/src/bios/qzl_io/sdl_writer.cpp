// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/writer.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_base/format.h>
#include <qzl_io/detail/compiler.h>
#include <qzl_io/streams/save_file.h>

#include "files/whole_name.h"
#include "platform/file_handle.h"
#include "platform/saved_file.h"
#include "sdl/copy.h"
#include "streams/failure_text.h"
#include "streams/steps.h"

namespace {

namespace WriterReport {
constexpr const char* kSource = "internal/src/bios/qzl_io/sdl_writer";
constexpr int kNotOpenLine = 40;
constexpr int kUnknownKeywordLine = 60;
constexpr int kInvalidFloatLine = 80;
constexpr int kNotSavedLine = 100;
} // namespace WriterReport

constexpr unsigned kTabsAtOnce = 32;
constexpr char kTabs[kTabsAtOnce + 1] = "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";
constexpr unsigned long long kTextCapacity = 1024;
// The heap never keeps a larger block for the next one, so the block may as well be released while it is written.
constexpr unsigned long long kKeptByHeap = 32ULL << 20;
// The position of a block that cannot be removed any more: it has gone to the target, or an int cannot hold where it
// began.
constexpr int kOutOfReach = INT_MAX;

std::string_view View(const char* text) {
    return text ? std::string_view(text) : std::string_view();
}

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

void WriteEncoded(IO::eStream& target, eSDLCipher& cipher, const void* text, std::size_t size) {
    const std::size_t capacity = cipher.GetEncodedSize(size);
    const std::unique_ptr<unsigned char[]> encoded(capacity ? new unsigned char[capacity] : nullptr);
    const std::size_t encodedSize = cipher.Encode(encoded.get(), capacity, text, size);
    target.Write(encoded.get(), std::min(encodedSize, capacity));
}

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

void WarnOfInvalid(float value) {
    const std::string message = format("Saving invalid floating number %1%. It was truncated to 0") % value;
    xError::Warning(WriterReport::kSource, WriterReport::kInvalidFloatLine, message, 0);
}

} // namespace

// --- eWriteStream ---

eSDLWriter::eWriteStream::~eWriteStream() = default;

void eSDLWriter::eWriteStream::WriteInt(int) {
    formatFlag = false;
}

void eSDLWriter::eWriteStream::MarkEmpty() {}

// --- eSDLTextStream: the bytes ---

eSDLTextStream::eSDLTextStream() {
    Resize(kTextCapacity);
}

eSDLTextStream::~eSDLTextStream() = default;

void eSDLTextStream::eFree::operator()(char* block) const {
    std::free(block);
}

void eSDLTextStream::Resize(unsigned long long capacity) {
    const unsigned long long size = Size();
    char* const resized = static_cast<char*>(std::realloc(text.get(), capacity));
    if (!resized)
        throw std::bad_alloc();
    static_cast<void>(text.release());
    text.reset(resized);
    end = resized + size;
    roomEnd = resized + capacity;
}

QZL_IO_NOINLINE char* eSDLTextStream::MakeRoom(unsigned long long room) {
    const unsigned long long size = Size();
    unsigned long long capacity = std::max(size + Room(), kTextCapacity);
    while (capacity - size < room)
        capacity *= 2;
    Resize(capacity);
    return end;
}

// The separator step. Returns the place for the item's own bytes, with `room` bytes of room.
inline char* eSDLTextStream::Separate(unsigned long long room) {
    constexpr unsigned long long kLineBreakAndBlank = 3;
    room += kLineBreakAndBlank + kTabsAtOnce + Indentation();
    char* to = Room() >= room ? end : MakeRoom(room);
    if (newlinePending)
        to = BreakLine(to);
    if (layout & kSpacePending) {
        layout &= ~kSpacePending;
        *to++ = ' ';
    }
    return to;
}

inline char* eSDLTextStream::BreakLine(char* to) {
    *to++ = '\r';
    *to++ = '\n';
    const unsigned tabs = layout & kDepthMask;
    for (unsigned put = 0; put < tabs; put += kTabsAtOnce)
        std::memcpy(to + put, kTabs, kTabsAtOnce);
    newlinePending = false;
    layout &= ~kSpacePending;
    return to + tabs;
}

// --- eSDLTextStream: items ---

void eSDLTextStream::WriteString(const char* string) {
    const std::string_view characters = View(string);
    char* to = Separate(characters.size() + 2);
    *to++ = '"';
    if (xSDL::CopyPlain(to, characters.data(), characters.size()))
        to += characters.size();
    else
        to = PutEscapedAt(to, characters);
    *to++ = '"';
    end = to;
    layout |= kSpacePending;
}

QZL_IO_NOINLINE char* eSDLTextStream::PutEscapedAt(char* to, std::string_view characters) {
    end = to;
    const std::size_t size = EscapedSize(characters) + 1;
    return PutEscaped(Room() >= size ? end : MakeRoom(size), characters);
}

void eSDLTextStream::WriteFloat(float value) {
    end = Separate(kNumberTextRoom);
    if (!std::isfinite(value)) {
        WriteInvalid(value);
        return;
    }
    end = PutFloat(end, value);
    layout |= kSpacePending;
}

// The warning's handler may write to this text, flush it, or close its writer, who then leaves it.
QZL_IO_NOINLINE void eSDLTextStream::WriteInvalid(float value) {
    const std::shared_ptr<eSDLTextStream> kept = weak_from_this().lock();
    WarnOfInvalid(value);
    eSDLTextStream::WriteFloat(0);
}

void eSDLTextStream::WriteInt(int value) {
    end = PutInt(Separate(kNumberTextRoom), value, formatFlag);
    layout |= kSpacePending;
    formatFlag = false;
}

void eSDLTextStream::WriteIdent(const char* name, int) {
    const std::string_view word = View(name);
    end = xSDL::CopyText(Separate(word.size()), word.data(), word.size());
    layout |= kSpacePending;
}

void eSDLTextStream::WriteHashed(const char* mark) {
    const std::string_view word = View(mark);
    if (word.empty())
        return;
    char* to = Separate(word.size() + 1);
    *to++ = '#';
    end = xSDL::CopyText(to, word.data(), word.size());
    layout |= kSpacePending;
}

void eSDLTextStream::WriteControl(int code) {
    switch (code) {
    case sdlBlockStart:
        OpenBlock();
        break;
    case sdlBlockEnd:
        CloseBlock();
        break;
    case sdlOpen:
        PutStructure('(');
        break;
    case sdlClose:
        PutStructure(')');
        break;
    }
}

inline void eSDLTextStream::PutStructure(char character) {
    char* to = Separate(1);
    *to++ = character;
    end = to;
}

// --- eSDLTextStream: blocks ---

void eSDLTextStream::OpenBlock() {
    positions.push_back(static_cast<int>(std::min<unsigned long long>(Size(), kOutOfReach)));
    PutStructure('{');
    ChangeDepth(1);
}

void eSDLTextStream::CloseBlock() {
    const bool removed = RemoveEmptyBlock();
    if (!positions.empty()) {
        positions.pop_back();
        ChangeDepth(kDepthMask);
    }
    if (removed)
        return;
    layout &= ~kSpacePending;
    PutStructure('}');
}

// Removes the marks from the top of the stack. If one of them shows that the block is empty, the text is cut back to
// the block's beginning.
bool eSDLTextStream::RemoveEmptyBlock() {
    bool empty = false;
    while (!positions.empty() && positions.back() < 0) {
        empty = empty || 0ULL - static_cast<unsigned long long>(positions.back()) == Size();
        positions.pop_back();
    }
    if (!empty || positions.empty() || positions.back() == kOutOfReach)
        return false;
    end = text.get() + positions.back();
    return true;
}

void eSDLTextStream::MarkEmpty() {
    const unsigned long long position = Size();
    if (position > 0 && position < kOutOfReach)
        positions.push_back(-static_cast<int>(position));
}

void eSDLTextStream::Flush(IO::eStream* target, std::shared_ptr<eSDLCipher> cipher) {
    layout &= ~kSpacePending;
    if (Size() != 0)
        end = Separate(0);
    if (target && cipher)
        WriteEncoded(*target, *cipher, text.get(), Size());
    else if (target && HandOver(*target))
        return;
    else if (target && Size() > kKeptByHeap)
        WriteReleasing(*target);
    else if (target)
        target->Write(text.get(), Size());
    Empty();
}

// The target may take the text's own memory; the next item then makes new one.
bool eSDLTextStream::HandOver(IO::eStream& target) {
    if (!IO::eStreamSteps::HandOver(target, text.get(), Size()))
        return false;
    static_cast<void>(text.release());
    roomEnd = nullptr;
    Empty();
    return true;
}

// The text is emptied first, since a part of it is lost if the target throws.
void eSDLTextStream::WriteReleasing(IO::eStream& target) {
    const unsigned long long size = Size();
    Empty();
    target.WriteReleasing(text.get(), size);
}

void eSDLTextStream::Empty() {
    end = text.get();
    std::erase_if(positions, [](int position) { return position < 0; });
    std::fill(positions.begin(), positions.end(), kOutOfReach);
}

// --- eSDLWriter: opening and closing ---

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

// --- eSDLWriter: items ---

void eSDLWriter::PushKeywords(eSDLKeyword* table) {
    keywords.push_back(table);
}

void eSDLWriter::PopKeywords() {
    if (!keywords.empty())
        keywords.pop_back();
}

const char* eSDLWriter::KeywordName(int id) const {
    const char* name = keywords.empty() ? nullptr : eSDLKeyword::FindIn(keywords.back(), id);
    if (!name)
        xError::Fatal(WriterReport::kSource, WriterReport::kUnknownKeywordLine, "SDLWriter: Unknown keyword ID!");
    return name;
}

eSDLWriter& eSDLWriter::operator<<(const block& value) {
    Stream().WriteControl(sdlBlockStart);
    Stream().WriteIdent(KeywordName(value.id), value.id);
    return *this;
}

eSDLWriter& eSDLWriter::operator<<(const keyword& value) {
    Stream().WriteIdent(KeywordName(value.id), value.id);
    return *this;
}

eSDLWriter& eSDLWriter::operator<<(const ident& value) {
    Stream().WriteIdent(value.name, eSDLWriter::eWriteStream::kNoKeyword);
    return *this;
}

eSDLWriter& eSDLWriter::operator<<(long long value) {
    return WriteInteger(value);
}

eSDLWriter& eSDLWriter::operator<<(unsigned long long value) {
    return WriteInteger(value);
}

template <class T>
eSDLWriter& eSDLWriter::WriteInteger(T value) {
    if (std::in_range<int>(value))
        return *this << static_cast<int>(value);
    const bool hexadecimal = std::exchange(Stream().formatFlag, false);
    return *this << ident{ToString(value, hexadecimal).c_str()};
}

// A text stream knows how a float is written that is no number.
eSDLWriter& eSDLWriter::operator<<(double value) {
    if (!std::isfinite(value))
        return *this << static_cast<float>(value);
    char text[kNumberTextRoom + 1];
    *PutDouble(text, value) = 0;
    return *this << ident{text};
}

eSDLWriter& eSDLWriter::operator<<(const std::wstring& string) {
    return *this << ToString(string);
}

eSDLWriter& eSDLWriter::operator<<(const eStrings& strings) {
    for (const eStringKey& string : strings)
        *this << string.c_str() << endl;
    return *this;
}

eSDLWriter& eSDLWriter::operator<<(const eStringsW& strings) {
    for (const eStringKeyW& string : strings)
        *this << string.str() << endl;
    return *this;
}

eSDLWriter& operator<<(eSDLWriter& writer, const eFileName& path) {
    return writer << path.c_str();
}
