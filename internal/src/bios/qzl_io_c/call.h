// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <qzl_io/sdl/limits.h>

#include "structures.h"
#include "telling.h"

// The border: what callers pass, and how a call ends.

namespace xC {

// What every handle has.
struct eHandle {
    // Sends the warnings of this library's own copy of the C++ library to eWarnings.
    eHandle();

    eTelling told;
    std::string source; // the name of the text, for places that have none
};

// Runs the work of a call, which returns a status or throws; keeps in the handle what went wrong.
template <class eWork>
qzl_status Run(eHandle* handle, const eWork& work) noexcept {
    if (!handle)
        return QZL_BAD_ARGUMENT;
    handle->told.Clear();
    try {
        const qzl_status status = work();
        if (status != QZL_OK && handle->told.Status() == QZL_OK)
            handle->told.Take(status);
        return status;
    } catch (...) {
        return handle->told.TakeException(handle->source);
    }
}

// Makes a handle of a class that is derived from eHandle.
template <class T>
qzl_status Make(T** handle) noexcept {
    if (!handle)
        return QZL_BAD_ARGUMENT;
    *handle = nullptr;
    try {
        *handle = new T;
        return QZL_OK;
    } catch (...) {
        return eTelling().TakeException({});
    }
}

// Tells what is kept in a handle.
inline qzl_status TellError(const eHandle* handle, qzl_mistake* error) noexcept {
    return handle ? handle->told.Tell(error) : QZL_BAD_ARGUMENT;
}

// Throws eRefusal with QZL_BAD_ARGUMENT.
[[noreturn]] void RefuseArgument(const char* message);
// Likewise, unless it is so.
inline void RequireArgument(bool good, const char* message) {
    if (!good)
        RefuseArgument(message);
}

// The text; throws eRefusal for a null one that is not empty.
std::string_view TextOf(const char* text, std::size_t size);
// The name of a file; throws eRefusal for an empty one and for one with a NUL.
std::string FileNameOf(const char* name, std::size_t size);

// Gives the text of a handle to the caller, where both targets may be null.
void GiveText(const std::string& kept, const char** text, std::size_t* size);

// Takes limits, of which null stands for none; throws eRefusal for a structure that is none.
void TakeLimits(const qzl_limits* limits, qzl_limits* kept);
inline constexpr qzl_limits kNoLimits{sizeof(qzl_limits), QZL_UNLIMITED, QZL_UNLIMITED, QZL_UNLIMITED};
eSDLLimits SDLLimitsOf(const qzl_limits& limits);

// While it exists, keeps the last warning that the library makes on this thread; all others are dropped.
class eWarnings {
public:
    eWarnings() noexcept;
    ~eWarnings();
    eWarnings(const eWarnings&) = delete;
    eWarnings& operator=(const eWarnings&) = delete;

    std::string message;

private:
    eWarnings* previous;
};

} // namespace xC
