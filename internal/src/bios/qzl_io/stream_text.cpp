#include <qzl_io/streams/stream_text.h>

#include <cstring>
#include <memory>
#include <utility>

#include <qzl_io/streams/stream_file.h>

namespace IO {

const char* TextLineSeparator() noexcept {
    return "\r\n";
}
const wchar_t* TextLineSeparatorW() noexcept {
    return L"\r\n";
}

eTextStream::eTextStream(const eFileName& name, int mode) : owns(true), stream(GetStream(name, mode)) {}

eTextStream::eTextStream(const eFileNameW& name, int mode) : owns(true), stream(GetStream(name, mode)) {}

eTextStream::eTextStream(eStream* target) noexcept : owns(false), stream(target) {}

eTextStream::eTextStream(eTextStream&& other) noexcept
    : owns(std::exchange(other.owns, false)),
      stream(std::exchange(other.stream, nullptr)),
      owners(std::move(other.owners)) {}

eTextStream::~eTextStream() {
    Release();
}

eTextStream& eTextStream::operator=(const eTextStream& other) {
    if (this != &other) {
        eShare joined = other.owners;
        Release();
        owns = other.owns;
        stream = other.stream;
        owners = std::move(joined);
    }
    return *this;
}

eTextStream& eTextStream::operator=(eTextStream&& other) noexcept {
    if (this != &other) {
        Release();
        owns = std::exchange(other.owns, false);
        stream = std::exchange(other.stream, nullptr);
        owners = std::move(other.owners);
    }
    return *this;
}

void eTextStream::Release() noexcept {
    const std::unique_ptr<eStream> mine(owns && owners.Sole() ? stream : nullptr);
    stream = nullptr;
    owners.Leave();
}

unsigned long long eTextStream::Position() const noexcept {
    return stream ? stream->Position() : 0;
}

eTextStream& eTextStream::WriteStr(const char* text) {
    if (stream && text)
        stream->Write(text, std::strlen(text));
    return *this;
}

} // namespace IO
