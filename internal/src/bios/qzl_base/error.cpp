// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/error.h>

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <utility>

#include "diagnostic_stack.h"

namespace xError {

namespace {

class eHandlerSlot {
public:
    eHandler Exchange(eHandler next) {
        auto replaced = next ? std::make_shared<const eHandler>(std::move(next)) : nullptr;
        {
            std::lock_guard lock(mutex);
            handler.swap(replaced);
        }
        return replaced ? *replaced : eHandler();
    }

    // Null stands for the default handler.
    std::shared_ptr<const eHandler> Current() const {
        std::lock_guard lock(mutex);
        return handler;
    }

private:
    mutable std::mutex mutex;
    std::shared_ptr<const eHandler> handler;
};

struct eSlots {
    eHandlerSlot errors, warnings;
};

// Never destroyed, since static objects may report while they are destroyed.
eSlots& Slots() {
    static eSlots& slots = *new eSlots;
    return slots;
}

[[noreturn]] void ThrowReport(const eReport& report) {
    throw eException(report);
}

void PrintReport(const eReport& report) {
    std::string text = "warning: " + report.file + "(" + std::to_string(report.line) + "): " + report.message;
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
    text += '\n';
    static_cast<void>(std::fputs(text.c_str(), stderr));
}

eReport MakeReport(const char* file, int line, const std::string& message) {
    return {file ? file : "", line, message, xDebug::DiagnosticContext(), nullptr};
}

void Raise(const eReport& report) {
    if (const auto handler = Slots().errors.Current())
        (*handler)(report);
    else
        ThrowReport(report);
}

std::string TextOf(const char* message) {
    return message ? message : "";
}

} // namespace

eException::eException(const eReport& reported)
    : std::runtime_error(reported.message), report(std::make_shared<const eReport>(reported)) {}

eException::eException(const eException&) noexcept = default;
eException& eException::operator=(const eException&) noexcept = default;
eException::~eException() = default;

const eReport& eException::Report() const noexcept {
    return *report;
}

eHandler SetErrorHandler(eHandler handler) {
    return Slots().errors.Exchange(std::move(handler));
}

eHandler SetWarningHandler(eHandler handler) {
    return Slots().warnings.Exchange(std::move(handler));
}

void Error(const char* file, int line, const std::string& message, bool) {
    Raise(MakeReport(file, line, message));
}

void Error(const char* file, int line, const char* message, bool raised) {
    Error(file, line, TextOf(message), raised);
}

void Fatal(const char* file, int line, const std::string& message, std::shared_ptr<const eDiagnostic> diagnostic) {
    eReport report = MakeReport(file, line, message);
    report.diagnostic = std::move(diagnostic);
    Raise(report);
    ThrowReport(report);
}

void Warning(const char* file, int line, const std::string& message, int) {
    const eReport report = MakeReport(file, line, message);
    if (const auto handler = Slots().warnings.Current())
        (*handler)(report);
    else
        PrintReport(report);
}

void Warning(const char* file, int line, const char* message, int level) {
    Warning(file, line, TextOf(message), level);
}

} // namespace xError
