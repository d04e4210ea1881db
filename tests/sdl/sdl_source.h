// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <utility>

#include <qzl_base/error.h>
#include <qzl_io/sdl/reader.h>
#include <qzl_io/streams.h>

// A reader over a text.
inline eSDLReader ReaderOf(const std::string& text) {
    IO::eBufferStream stream(text);
    return eSDLReader(&stream, nullptr);
}

// The source unit, the line and the message of the report with which an action fails.
struct eFailure {
    std::string unit;
    int line = 0;
    std::string message;

    bool operator==(const eFailure&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const eFailure& failure) {
    return out << failure.unit << "(" << failure.line << "): " << failure.message;
}

inline eFailure ReaderFailure(int line, std::string message) {
    return {"internal/src/bios/qzl_io/sdl_reader", line, std::move(message)};
}

// Runs the action. The result is an empty failure if the action succeeds.
template <class eAction>
eFailure FailureOf(const eAction& action) {
    try {
        action();
    } catch (const xError::eException& exception) {
        return {exception.Report().file, exception.Report().line, exception.Report().message};
    }
    return {};
}

template <class eAction>
std::string ContextOf(const eAction& action) {
    try {
        action();
    } catch (const xError::eException& exception) {
        return exception.Report().context;
    }
    return "(no report)";
}
