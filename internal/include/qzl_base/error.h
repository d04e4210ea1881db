#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include <qzl_base/export.h>

// Error and warning reports.
//
// Whoever detects a failure reports it once, with the source unit, a fixed line number and a fixed message. The
// application decides what a report does: by default an error throws eException and a warning prints one line on
// standard error; SetErrorHandler and SetWarningHandler put other handlers in their place, for all threads at once.
namespace xError {

// One report, as handlers and eException carry it.
struct eReport {
    std::string file;    // path of the reporting source unit, without an extension
    int line = 0;        // number of the check within that unit
    std::string message; // one sentence
    std::string context; // texts of the reporting thread's diagnostic stack (stack_entry.h), empty when that is empty
};

// What the default error handler throws. what() is the report's message, nothing more.
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

// A handler runs on the reporting thread and outside every lock: it may return, throw, report again or exchange
// handlers. It may be called by several threads at the same time.
using eHandler = std::function<void(const eReport&)>;

// Installs the handler of all errors from now on and returns the one that it replaces. An empty handler stands for the
// default (throw eException) both as argument and as result, so that passing the result back restores what was there.
QZL_BASE_API eHandler SetErrorHandler(eHandler handler);

// The same for warnings. The default prints "warning: FILE(LINE): MESSAGE" as one line on standard error.
QZL_BASE_API eHandler SetWarningHandler(eHandler handler);

// Reports an error to the installed handler. Returns when the handler does. A null text counts as empty; the last
// argument carries no meaning and is true in every report.
QZL_BASE_API void Error(const char* file, int line, const char* message, bool);
QZL_BASE_API void Error(const char* file, int line, const std::string& message, bool);

// Reports an error and never returns: where the handler does, throws eException with the same report.
[[noreturn]] QZL_BASE_API void Fatal(const char* file, int line, const std::string& message);

// Reports a warning to the installed handler and returns, unless the handler throws. The level carries no meaning and
// is 0 in every report.
QZL_BASE_API void Warning(const char* file, int line, const char* message, int level);
QZL_BASE_API void Warning(const char* file, int line, const std::string& message, int level);

} // namespace xError
