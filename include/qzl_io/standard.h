// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <array>
#include <cstddef>
#include <streambuf>
#include <string>
#include <string_view>
#include <version>

#include <qzl_io/export.h>
#include <qzl_io/file_name.h>
#include <qzl_io/streams/stream.h>

#if defined(__cpp_lib_format)
#include <format>
#endif

// What connects the library with the standard one, in a header of its own because it includes large ones.

namespace IO {

// A buffer for streams of the standard library over the bytes of an eStream, which must outlive it:
//
//     IO::eStandardBuffer buffer(file);
//     std::ostream out(&buffer);
//     out << "any text" << std::endl;
//
// Reading and writing share the position, which is that of the eStream after each write, after `sync` (std::flush) and
// after a seek; reading is ahead of it by up to 512 bytes otherwise, which `sync` and the destructor give back. What is
// written goes to the eStream at once, and `sync` flushes that. A position is one of `pos_type` in bytes. Errors are
// those of the eStream: reading ends where its data end, and a write that finds no room, or a stream that is Bad, sets
// badbit.
class QZL_IO_API eStandardBuffer : public std::streambuf {
public:
    explicit eStandardBuffer(eStream& target) : stream(target) {}
    ~eStandardBuffer() override;
    eStandardBuffer(const eStandardBuffer&) = delete;
    eStandardBuffer& operator=(const eStandardBuffer&) = delete;

protected:
    int_type underflow() override;
    std::streamsize xsputn(const char* source, std::streamsize n) override;
    int_type overflow(int_type character) override;
    int sync() override;
    pos_type seekoff(off_type offset, std::ios_base::seekdir dir, std::ios_base::openmode which) override;
    pos_type seekpos(pos_type position, std::ios_base::openmode which) override;
    std::streamsize showmanyc() override;

private:
    void ReturnUnread();

    eStream& stream;
    std::array<char, 512> ahead;
};

} // namespace IO

#if defined(__cpp_lib_format)
template <>
struct std::formatter<eFileName, char> : std::formatter<std::string_view, char> {
    template <class eContext>
    auto format(const eFileName& name, eContext& context) const {
        return std::formatter<std::string_view, char>::format(name.str(), context);
    }
};
template <>
struct std::formatter<eFileNameW, wchar_t> : std::formatter<std::wstring_view, wchar_t> {
    template <class eContext>
    auto format(const eFileNameW& name, eContext& context) const {
        return std::formatter<std::wstring_view, wchar_t>::format(name.str(), context);
    }
};
#endif
