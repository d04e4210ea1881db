// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include <qzl_base/export.h>

// Error and warning reports.
//
// The code that detects a failure reports it once, with the source unit, a fixed line number and a fixed message. The
// application decides what a report does: by default an error throws eException and a warning prints one line on
// standard error; SetErrorHandler and SetWarningHandler install other handlers, for all threads at once.

namespace xError {

struct eDiagnostic;

// A report, as passed to handlers and stored in eException.
struct eReport {
    std::string file;    // path of the reporting source unit, without an extension
    int line = 0;        // number of the check in that unit
    std::string message; // one sentence
    std::string context; // text of the reporting thread's diagnostic stack (stack_entry.h), empty if the stack is empty
    std::shared_ptr<const eDiagnostic> diagnostic =
        nullptr; // of a mistake in a text, its parts (diagnostic.h), or null
};

// The exception that the default error handler throws. what() is the report's message alone.
class QZL_BASE_API eException : public std::runtime_error {
public:
    explicit eException(const eReport& report);
    eException(const eException&) noexcept;
    eException& operator=(const eException&) noexcept;
    ~eException() override;

    const eReport& Report() const noexcept;

private:
    std::shared_ptr<const eReport> report;
};

// A handler runs on the reporting thread and outside all locks: it may return, throw, report again or install handlers.
// Several threads may call it at the same time.
using eHandler = std::function<void(const eReport&)>;

// Installs the handler of all errors from now on and returns the previous one. An empty handler stands for the default
// (throw eException), both as argument and as result, so passing the result back restores the previous state.
QZL_BASE_API eHandler SetErrorHandler(eHandler handler);

// Installs the handler of all warnings, with the rules of SetErrorHandler. The default prints "warning: FILE(LINE):
// MESSAGE" as one line on standard error.
QZL_BASE_API eHandler SetWarningHandler(eHandler handler);

// Installs a handler of all errors, or of all warnings, during its lifetime, and then the one from before. Guards end
// in the reverse order of their beginnings; handlers are those of all threads.
class [[nodiscard]] eErrorHandlerGuard {
public:
    explicit eErrorHandlerGuard(eHandler handler) : previous(SetErrorHandler(std::move(handler))) {}
    ~eErrorHandlerGuard() { SetErrorHandler(std::move(previous)); }
    eErrorHandlerGuard(const eErrorHandlerGuard&) = delete;
    eErrorHandlerGuard& operator=(const eErrorHandlerGuard&) = delete;

private:
    eHandler previous;
};
class [[nodiscard]] eWarningHandlerGuard {
public:
    explicit eWarningHandlerGuard(eHandler handler) : previous(SetWarningHandler(std::move(handler))) {}
    ~eWarningHandlerGuard() { SetWarningHandler(std::move(previous)); }
    eWarningHandlerGuard(const eWarningHandlerGuard&) = delete;
    eWarningHandlerGuard& operator=(const eWarningHandlerGuard&) = delete;

private:
    eHandler previous;
};

// Reports an error to the installed handler, and returns if the handler returns. A null text counts as empty; the last
// argument has no meaning and is true in every report.
QZL_BASE_API void Error(const char* file, int line, const char* message, bool);
QZL_BASE_API void Error(const char* file, int line, const std::string& message, bool);

// Reports an error and never returns: if the handler returns, throws eException with that report.
[[noreturn]] QZL_BASE_API void Fatal(const char* file, int line, const std::string& message,
                                     std::shared_ptr<const eDiagnostic> diagnostic = nullptr);

// Reports a warning to the installed handler, and returns unless the handler throws. The level has no meaning and is 0
// in every report.
QZL_BASE_API void Warning(const char* file, int line, const char* message, int level);
QZL_BASE_API void Warning(const char* file, int line, const std::string& message, int level);

} // namespace xError
