// SPDX-License-Identifier: BSL-1.0
#include "call.h"

#include <cstdint>

#include <qzl_base/error.h>

namespace xC {
namespace {

thread_local eWarnings* listening = nullptr;

void KeepWarning(const xError::eReport& report) {
    if (listening)
        listening->message = report.message;
}

} // namespace

eHandle::eHandle() {
    static const bool listens = (xError::SetWarningHandler(KeepWarning), true);
    static_cast<void>(listens);
}

eWarnings::eWarnings() noexcept : previous(listening) {
    listening = this;
}

eWarnings::~eWarnings() {
    listening = previous;
}

void RefuseArgument(const char* message) {
    throw eRefusal{QZL_BAD_ARGUMENT, message};
}

std::string_view TextOf(const char* text, std::size_t size) {
    if (!text) {
        RequireArgument(size == 0, "A text is null.");
        return {};
    }
    if (size == QZL_TERMINATED)
        return text;
    RequireArgument(size <= PTRDIFF_MAX, "The size of a text is none.");
    return {text, size};
}

std::string FileNameOf(const char* name, std::size_t size) {
    const std::string_view text = TextOf(name, size);
    RequireArgument(!text.empty(), "The name of a file is empty.");
    RequireArgument(text.find('\0') == std::string_view::npos, "The name of a file contains a NUL.");
    return std::string(text);
}

void GiveText(const std::string& kept, const char** text, std::size_t* size) {
    if (text)
        *text = kept.c_str();
    if (size)
        *size = kept.size();
}

void TakeLimits(const qzl_limits* limits, qzl_limits* kept) {
    qzl_limits taken = kNoLimits;
    RequireArgument(!limits || Take(limits, &taken), "The limits have a wrong size or settings of a later version.");
    *kept = taken;
}

eSDLLimits SDLLimitsOf(const qzl_limits& limits) {
    eSDLLimits result;
    result.sourceBytes = limits.source_bytes;
    result.tokenBytes = limits.token_bytes;
    return result;
}

} // namespace xC
