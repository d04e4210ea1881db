#pragma once

#include <string>

#include <qzl_io/sdl/writer.h>
#include <qzl_io/streams.h>

// All bytes of a stream in memory, wherever its position is.
inline std::string Content(const IO::eStream& stream) {
    return std::string(reinterpret_cast<const char*>(stream.Buffer()), stream.Size());
}

// What a writer with the given current keyword table hands to its target after the calls of `write`.
template <class eWrite>
std::string WrittenText(eSDLKeyword* table, const eWrite& write) {
    IO::eMemoryStream target;
    eSDLWriter writer(&target);
    writer.PushKeywords(table);
    write(writer);
    writer.Close();
    return Content(target);
}

template <class eWrite>
std::string WrittenText(const eWrite& write) {
    return WrittenText(nullptr, write);
}
