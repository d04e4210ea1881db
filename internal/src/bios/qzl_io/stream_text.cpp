// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/streams/stream_text.h>

#include <cstring>

#include <qzl_io/streams/stream_file.h>

namespace IO {

const char* TextLineSeparator() noexcept {
    return "\r\n";
}
const wchar_t* TextLineSeparatorW() noexcept {
    return L"\r\n";
}

eTextStream::eTextStream(const eFileName& name, int mode) : target(eTarget{GetStream(name, mode), true}) {}

eTextStream::eTextStream(const eFileNameW& name, int mode) : target(eTarget{GetStream(name, mode), true}) {}

eTextStream::eTextStream(eStream* stream) noexcept : target(eTarget{stream, false}) {}

void eTextStream::eDeletion::Release(eTarget target) noexcept {
    if (target.opened)
        delete target.stream;
}

unsigned long long eTextStream::Position() const noexcept {
    return target->stream ? Stream().Position() : 0;
}

eTextStream& eTextStream::WriteStr(const char* text) {
    if (target->stream && text)
        Stream().Write(text, std::strlen(text));
    return *this;
}

} // namespace IO
