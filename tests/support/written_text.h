// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include <qzl_io/sdl/writer.h>
#include <qzl_io/streams.h>

#include "content.h"

// The text that a writer with the given current keyword table passes to its target after the calls of `write`.
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
