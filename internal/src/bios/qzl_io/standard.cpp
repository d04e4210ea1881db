// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/standard.h>

#include <algorithm>
#include <ios>

namespace IO {

// A hook of an application's stream may throw while the position moves; the position is then ahead of what was read.
eStandardBuffer::~eStandardBuffer() {
    try {
        ReturnUnread();
    } catch (...) {
        stream.Enable(StreamMode::Bad);
    }
}

// Gives back what has been read ahead.
void eStandardBuffer::ReturnUnread() {
    const auto unread = static_cast<unsigned long long>(egptr() - gptr());
    if (unread > 0)
        stream.Seek(stream.Position() - unread, eSeekDir::Begin);
    setg(nullptr, nullptr, nullptr);
}

eStandardBuffer::int_type eStandardBuffer::underflow() {
    const unsigned long long n = std::min<unsigned long long>(stream.Remaining(), ahead.size());
    const unsigned long long before = stream.Position();
    stream.Read(ahead.data(), n);
    const auto read = static_cast<std::size_t>(stream.Position() - before);
    setg(ahead.data(), ahead.data(), ahead.data() + read);
    return read > 0 ? traits_type::to_int_type(ahead.front()) : traits_type::eof();
}

std::streamsize eStandardBuffer::xsputn(const char* source, std::streamsize n) {
    ReturnUnread();
    const unsigned long long before = stream.Position();
    stream.Write(source, static_cast<unsigned long long>(n));
    return static_cast<std::streamsize>(stream.Position() - before);
}

eStandardBuffer::int_type eStandardBuffer::overflow(int_type character) {
    if (traits_type::eq_int_type(character, traits_type::eof()))
        return traits_type::not_eof(character);
    const char byte = traits_type::to_char_type(character);
    return xsputn(&byte, 1) == 1 ? character : traits_type::eof();
}

int eStandardBuffer::sync() {
    ReturnUnread();
    if (stream.Enabled(StreamMode::Modified))
        stream.Flush();
    return stream.Enabled(StreamMode::Bad) ? -1 : 0;
}

// Positions beyond the data or before the start are refused before the stream reports them.
eStandardBuffer::pos_type eStandardBuffer::seekoff(off_type offset, std::ios_base::seekdir dir,
                                                   std::ios_base::openmode) {
    ReturnUnread();
    const auto size = static_cast<off_type>(stream.Size());
    const off_type from = dir == std::ios_base::beg   ? 0
                          : dir == std::ios_base::cur ? static_cast<off_type>(stream.Position())
                                                      : size;
    if (offset < -from || offset > size - from)
        return pos_type(off_type(-1));
    const off_type position = from + offset;
    stream.Seek(static_cast<unsigned long long>(position), eSeekDir::Begin);
    return pos_type(position);
}

eStandardBuffer::pos_type eStandardBuffer::seekpos(pos_type position, std::ios_base::openmode which) {
    return seekoff(off_type(position), std::ios_base::beg, which);
}

std::streamsize eStandardBuffer::showmanyc() {
    return stream.Remaining() > 0 ? static_cast<std::streamsize>(stream.Remaining()) : -1;
}

} // namespace IO
