// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <memory>
#include <string>

#include <qzl_io/sdl/reader.h>
#include <qzl_io/streams.h>

// Makes the protected operations public.
class eOpenReader : public eSDLReader {
public:
    using eSDLReader::eSDLReader;
    explicit eOpenReader(const std::string& text)
        : eSDLReader(std::make_unique<IO::eBufferStream>(text).get(), nullptr) {}

    using eSDLReader::Get;
    using eSDLReader::GetOperand;
    using eSDLReader::GetParameters;
    using eSDLReader::Parser;
    using eSDLReader::PushParser;
};
