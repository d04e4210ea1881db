// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/writer.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_base/format.h>
#include <qzl_io/detail/compiler.h>
#include <qzl_io/streams.h>

#include "sdl/copy.h"
#include "sdl_writer_reports.h"
#include "streams/steps.h"

// The items of a writer, and the text that is made of them.

namespace {

namespace WriterReport = xSDL::WriterReport;

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

void WriteEncoded(IO::eStream& target, eSDLCipher& cipher, const void* text, std::size_t size) {
    const std::size_t capacity = cipher.GetEncodedSize(size);
    const std::unique_ptr<unsigned char[]> encoded(capacity ? new unsigned char[capacity] : nullptr);
    const std::size_t encodedSize = cipher.Encode(encoded.get(), capacity, text, size);
    target.Write(encoded.get(), std::min(encodedSize, capacity));
}

void WarnOfInvalid(float value) {
    const std::string message = format("Saving invalid floating number %1%. It was truncated to 0") % value;
    xError::Warning(WriterReport::kSource, WriterReport::kInvalidFloatLine, message, 0);
}

} // namespace

// --- Items of a writer ---

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

// --- The text ---

eSDLWriter::eWriteStream::~eWriteStream() = default;

void eSDLWriter::eWriteStream::WriteInt(int) {
    formatFlag = false;
}

void eSDLWriter::eWriteStream::MarkEmpty() {}

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

// --- Items of a text ---

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

// --- Blocks of a text ---

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
