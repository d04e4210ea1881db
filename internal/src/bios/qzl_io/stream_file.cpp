// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/streams/stream_file.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <typeinfo>
#include <utility>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_base/format.h>
#include <qzl_io/streams/save_file.h>

#include "files/whole_name.h"
#include "platform/file_handle.h"
#include "streams/means.h"
#include "streams/reported.h"
#include "streams/reports.h"
#include "streams/steps.h"
#include "streams/wide_units.h"

namespace IO {
namespace {

namespace FileReport {
constexpr char kSource[] = "internal/src/bios/qzl_io/stream_file";
constexpr int kNoMemoryLine = 10;
constexpr int kOpenErrorLine = 20;
constexpr int kOpenErrorWideLine = 21;
constexpr char kOpenError[] = "%1% - open error!";
} // namespace FileReport

// What Failure tells.
namespace FileLoss {
constexpr char kNotOpened[] = "The file could not be opened";
constexpr char kNotRead[] = "The file could not be read to its end";
constexpr char kShortened[] = "The file is shorter than when it was opened";
constexpr char kNotWritten[] = "Not all bytes could be written to the file";
constexpr char kReadOnly[] = "The file is open for reading alone, and takes no bytes";
constexpr char kNotTruncated[] = "The file could not be truncated";
} // namespace FileLoss

constexpr unsigned long long kLargestBuffer = 32768;

// Whole cache lines: systems copy up to a tenth slower to and from the unaligned places where the heap puts large
// blocks.
constexpr std::align_val_t kBlockAlignment{64};

unsigned char* NewBlock(unsigned long long size) {
    return static_cast<unsigned char*>(size > 0 ? ::operator new(size, kBlockAlignment, std::nothrow) : nullptr);
}

void ReportOpenError(int line, const std::string& name) {
    xError::Error(FileReport::kSource, line, (format(FileReport::kOpenError) % name).str(), true);
}

std::string DumpName(const std::string& name) {
    return "FileStream '" + name + "'";
}

void AppendWithoutLineEnds(std::string* line, const unsigned char* from, unsigned long long n) {
    for (const unsigned char* at = from; at != from + n; ++at)
        if (*at != '\r' && *at != '\n')
            line->push_back(static_cast<char>(*at));
}

} // namespace

// --- Past the buffer ---

struct eFileStreamBase::eDirectWays {
    static bool Serves(const eStream& stream);
    static unsigned long long Read(eStream& stream, void* target, unsigned long long at, unsigned long long n);
    static void Write(eStream& stream, const void* source, unsigned long long at, unsigned long long n);
    static bool AreApart(const eStream& source, const eStream& target);
    static unsigned long long Copy(eStream& source, eStream& target, unsigned long long n);

    static_assert(kOpenRead == Platform::kOpenRead && kOpenWrite == Platform::kOpenWrite &&
                  kOpenCreate == Platform::kOpenCreate);

    static constexpr eStreamDirect kDirect = {Serves, Read, Write, AreApart, Copy};
    static constexpr eStreamMeans kMeans = {&kDirect, nullptr, nullptr};
};

bool eFileStreamBase::eDirectWays::Serves(const eStream& stream) {
    const bool ours = typeid(stream) == typeid(eFileStream) || typeid(stream) == typeid(eFileStreamW) ||
                      typeid(stream) == typeid(eSaveFile);
    return ours && static_cast<const eFileStreamBase&>(stream).handle != -1;
}

unsigned long long eFileStreamBase::eDirectWays::Read(eStream& stream, void* target, unsigned long long at,
                                                      unsigned long long n) {
    return static_cast<eFileStreamBase&>(stream).ReadPromised(target, n, at, n);
}

void eFileStreamBase::eDirectWays::Write(eStream& stream, const void* source, unsigned long long at,
                                         unsigned long long n) {
    auto& file = static_cast<eFileStreamBase&>(stream);
    if (!Platform::WriteAt(file.handle, source, n, at))
        file.Lose(FileLoss::kNotWritten, Platform::TakeRefusal());
}

bool eFileStreamBase::eDirectWays::AreApart(const eStream& source, const eStream& target) {
    if (target.means != &kMeans)
        return true;
    const int from = static_cast<const eFileStreamBase&>(source).handle;
    const int to = static_cast<const eFileStreamBase&>(target).handle;
    return to == -1 || !Platform::MayBeOneFile(from, to);
}

unsigned long long eFileStreamBase::eDirectWays::Copy(eStream& source, eStream& target, unsigned long long n) {
    const int from = static_cast<eFileStreamBase&>(source).handle;
    const int to = static_cast<eFileStreamBase&>(target).handle;
    return Platform::CopyBetween(from, source.Position(), to, target.Position(), n);
}

// --- Life ---

eFileStreamBase::~eFileStreamBase() {
    Close();
}

// Joining the owners may throw, so it comes before anything is released.
template <class eOther>
eFileStreamBase& eFileStreamBase::Assign(eOther&& other) {
    if (this == &other)
        return *this;
    auto joinedHandle = std::forward<eOther>(other).handle;
    auto joinedBlock = std::forward<eOther>(other).bufferBlock;
    Close();
    eStream::operator=(std::forward<eOther>(other));
    handle = std::move(joinedHandle);
    bufferBlock = std::move(joinedBlock);
    return *this;
}

eFileStreamBase& eFileStreamBase::operator=(const eFileStreamBase& other) {
    return Assign(other);
}
eFileStreamBase& eFileStreamBase::operator=(eFileStreamBase&& other) noexcept {
    return Assign(std::move(other));
}

void eFileStreamBase::Open(int mode) {
    Close();
    flags = static_cast<unsigned short>(mode);
    offset = 0;
    const bool writes = Enabled(StreamMode::Write);
    const int openFlags = !writes ? kOpenRead : Enabled(StreamMode::Create) ? kOpenCreate : kOpenWrite;
    unsigned long long length = 0;
    const auto openFile = [&] {
        Platform::TakeRefusal(); // of an earlier call
        handle = eShare<eClosing>(CreateHandle(openFlags));
        if (handle != -1 && !Platform::FileLength(handle, &length))
            handle.Reset();
        loss = {};
        if (handle == -1)
            NoteLoss(FileLoss::kNotOpened, Platform::TakeRefusal());
        return handle != -1;
    };
    while (!openFile()) {
        Enable(StreamMode::Failed);
        if (Disabled(StreamMode::Errors))
            return;
        const eReportedStream context(*this);
        CreateHandleError();
    }
    if (!(mode & StreamMode::Failed))
        Disable(StreamMode::Failed);
    means = &eDirectWays::kMeans;
    CreateBuffer(writes ? kLargestBuffer : std::min(length, kLargestBuffer), length);
    Underflow();
}

void eFileStreamBase::Close() {
    if (handle != -1 && Enabled(StreamMode::Write | StreamMode::Modified))
        RunHook(&eStream::Flush);
    const int closing = handle;
    if (handle.Leave() && closing != -1 && !Platform::CloseFile(closing) && Enabled(StreamMode::Write))
        Lose(FileLoss::kNotWritten, Platform::TakeRefusal());
    ReleaseBuffer();
}

void eFileStreamBase::eClosing::Release(int handle) noexcept {
    Platform::CloseFile(handle);
}

// --- The buffer ---

// Only the room after the data is cleared, since filling the buffer overwrites the rest.
void eFileStreamBase::CreateBuffer(unsigned long long capacity, unsigned long long length) {
    ReleaseBuffer();
    UseBlock(NewBlock(capacity), capacity, length);
    if (buffer && length == 0)
        std::memset(buffer, 0, capacity);
    if (capacity > 0 && !buffer)
        Report(FileReport::kSource, FileReport::kNoMemoryLine, StreamReport::kNoMemory);
}

void eFileStreamBase::UseBlock(unsigned char* block, unsigned long long capacity, unsigned long long length) noexcept {
    bufferBlock = eShare<eBlockDeletion>(block);
    UseBuffer(block, capacity, length);
}

void eFileStreamBase::eBlockDeletion::Release(unsigned char* block) noexcept {
    ::operator delete(block, kBlockAlignment);
}

void eFileStreamBase::ReleaseBuffer() noexcept {
    bufferBlock.Reset();
    const unsigned long long size = bufferSize;
    UseBuffer(nullptr, 0, 0);
    bufferSize = size;
}

void eFileStreamBase::Detach() {
    if (!buffer || bufferBlock.Sole())
        return;
    const unsigned long long held = Capacity();
    const long long length = Distance(buffer, eos);
    const long long position = Distance(buffer, ptr);
    unsigned char* const block = NewBlock(bufferSize);
    if (block) {
        std::memcpy(block, buffer, held);
        std::memset(block + held, 0, bufferSize - held);
    }
    UseBlock(block, bufferSize, static_cast<unsigned long long>(length));
    SetCapacity(held);
    MoveTo(Shifted(buffer, static_cast<unsigned long long>(position)));
    if (!block)
        Report(FileReport::kSource, FileReport::kNoMemoryLine, StreamReport::kNoMemory);
}

unsigned long long eFileStreamBase::ReadPromised(void* target, unsigned long long n, unsigned long long at,
                                                 unsigned long long promised) {
    unsigned long long arrived = 0;
    const bool read = Platform::ReadAt(handle, target, n, at, &arrived);
    if (arrived < promised)
        Lose(read ? FileLoss::kShortened : FileLoss::kNotRead, read ? 0 : Platform::TakeRefusal());
    return arrived;
}

// The buffer ends where data are missing: a flush then writes no bytes that were never read.
void eFileStreamBase::Fill() {
    if (handle == -1 || !buffer || static_cast<long long>(offset) < 0)
        return;
    const auto data = static_cast<unsigned long long>(std::max(Distance(buffer, eos), 0ll));
    const unsigned long long promised = std::min(data, bufferSize);
    const unsigned long long arrived = ReadPromised(buffer, bufferSize, offset, promised);
    std::memset(buffer + arrived, 0, bufferSize - arrived);
    SetCapacity(arrived < promised ? arrived : bufferSize);
}

void eFileStreamBase::FillIfDataRemain() {
    if (Distance(buffer, eos) > 0)
        Fill();
    else if (buffer)
        SetCapacity(bufferSize);
}

void eFileStreamBase::Fresh() {
    FlushIfModified();
    Detach();
    Fill();
}

void eFileStreamBase::Underflow() {
    FlushIfModified();
    Detach();
    eStream::Underflow();
    FillIfDataRemain();
}

// A stream that only writes is filled, too, if data follow the position: a later flush writes everything that the
// position passes.
void eFileStreamBase::Overflow() {
    FlushIfModified();
    if (Enabled(StreamMode::Read)) {
        Underflow();
        return;
    }
    Detach();
    PlaceBuffer();
    FillIfDataRemain();
}

void eFileStreamBase::Flush() {
    const bool placed = buffer && static_cast<long long>(offset) >= 0 && Distance(buffer, ptr) > 0;
    if (handle != -1 && placed && Enabled(StreamMode::Write)) {
        const auto held = std::min(static_cast<unsigned long long>(Distance(buffer, ptr)), Capacity());
        if (!Platform::WriteAt(handle, buffer, held, offset))
            Lose(FileLoss::kNotWritten, Platform::TakeRefusal());
    } else if (handle != -1 && placed && Enabled(StreamMode::Modified)) {
        NoteLoss(FileLoss::kReadOnly, 0);
    }
    eStream::Flush();
}

void eFileStreamBase::Trunc() {
    eStream::Trunc();
    if (BeforeStart())
        return;
    Flush();
    if (handle != -1 && !Platform::SetFileLength(handle, Position()))
        Lose(FileLoss::kNotTruncated, Platform::TakeRefusal());
}

// --- Lines ---

unsigned long long eFileStreamBase::LineInBuffer(bool* complete) const noexcept {
    const unsigned long long run = DataInBuffer();
    const auto* const feed = static_cast<const unsigned char*>(run > 0 ? std::memchr(ptr, '\n', run) : nullptr);
    *complete = feed != nullptr;
    return feed ? static_cast<unsigned long long>(feed - ptr) + 1 : run;
}

// A line that crosses the end of the buffer is moved to its beginning, so that the line is in one piece if it fits.
unsigned long long eFileStreamBase::LinePiece(eStreamSteps& steps, bool* complete) {
    *complete = true;
    if (ToEnd() <= 0 || (DataInBuffer() == 0 && !steps.MakeData()))
        return 0;
    const unsigned long long piece = LineInBuffer(complete);
    if (*complete || ptr == buffer || ToEnd() <= static_cast<long long>(piece))
        return piece;
    steps.Fails(&eStream::Refill);
    return LineInBuffer(complete);
}

std::string eFileStreamBase::GetLine() {
    std::string line;
    eStreamSteps steps(*this);
    for (bool complete = false; !complete;) {
        const unsigned long long piece = LinePiece(steps, &complete);
        AppendWithoutLineEnds(&line, ptr, piece);
        ptr = Shifted(ptr, piece);
    }
    steps.End();
    return line;
}

unsigned long long eFileStreamBase::GetLineLength() {
    unsigned long long length = 0;
    eStreamSteps steps(*this);
    for (bool complete = false; !complete;) {
        const unsigned long long piece = LinePiece(steps, &complete);
        ptr = Shifted(ptr, piece);
        length += piece;
    }
    MoveTo(Shifted(ptr, 0 - length));
    if (OutsideBuffer())
        steps.Fails(&eStream::Refill);
    steps.End();
    return length;
}

// --- eFileStream ---

eFileStream::eFileStream(const eFileName& file, int mode) : name(file) {
    if (!name.empty())
        eFileStreamBase::Open(mode);
}

eFileStream::~eFileStream() = default;

void eFileStream::Open(const eFileName& file, int mode) {
    Close();
    name = file;
    eFileStreamBase::Open(mode);
}

std::string eFileStream::Dump() const {
    return DumpName(name.str()) + eStream::Dump();
}

int eFileStream::CreateHandle(int openFlags) const {
    return Platform::OpenFile(System::WholeText(name), openFlags);
}

void eFileStream::CreateHandleError() const {
    ReportOpenError(FileReport::kOpenErrorLine, name.str());
}

void eFileStream::WriteStr(const char* text) {
    if (text)
        Write(text, std::strlen(text));
}

// --- eFileStreamW ---

eFileStreamW::eFileStreamW(const eFileNameW& file, int mode) : name(file) {
    if (!name.empty())
        eFileStreamBase::Open(mode);
}

eFileStreamW::~eFileStreamW() = default;

void eFileStreamW::Open(const eFileNameW& file, int mode) {
    Close();
    name = file;
    eFileStreamBase::Open(mode);
}

std::string eFileStreamW::Dump() const {
    return DumpName(ToString(name.str())) + eStream::Dump();
}

int eFileStreamW::CreateHandle(int openFlags) const {
    return Platform::OpenFile(System::WholeText(name), openFlags);
}

void eFileStreamW::CreateHandleError() const {
    ReportOpenError(FileReport::kOpenErrorWideLine, ToString(name.str()));
}

void eFileStreamW::WriteStr(const wchar_t* text) {
    if (!text)
        return;
    const std::wstring_view characters = text;
    if constexpr (sizeof(wchar_t) == sizeof(char16_t)) {
        Write(characters.data(), characters.size() * sizeof(char16_t));
    } else {
        const std::u16string units = UnitsOf(characters);
        Write(units.data(), units.size() * sizeof(char16_t));
    }
}

// --- Factory ---

namespace {

template <class Stream, class Name>
eStream* NewStream(const Name& name, int mode) {
    try {
        return new Stream(name, mode);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

} // namespace

eStream* GetStream(const eFileName& name, int mode) {
    return NewStream<eFileStream>(name, mode);
}
eStream* GetStream(const eFileNameW& name, int mode) {
    return NewStream<eFileStreamW>(name, mode);
}

} // namespace IO
