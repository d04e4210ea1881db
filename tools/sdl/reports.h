// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <map>
#include <string>

#include <qzl_base/diagnostic.h>
#include <qzl_base/error.h>

// What goes wrong, on standard error.

// One line: "sdl: MESSAGE".
void ShowMessage(const std::string& message);

// "1 number", "2 numbers".
std::string Counted(unsigned long long count, const std::string& what);

// The diagnostic as a compiler shows it.
void ShowDiagnostic(const xError::eDiagnostic& diagnostic);

// The diagnostic of a report of the library, or its message and context.
void ShowReport(const xError::eReport& report);

// While it exists, shows each warning of the library when it first occurs; at the end, how often it was repeated.
class eShownWarnings {
public:
    eShownWarnings();
    ~eShownWarnings();
    eShownWarnings(const eShownWarnings&) = delete;
    eShownWarnings& operator=(const eShownWarnings&) = delete;

private:
    void Take(const xError::eReport& report);

    std::map<std::string, unsigned long long> counts;
    xError::eHandler previous;
};

// While it exists, keeps the last warning of the library instead of showing it.
class eKeptWarning {
public:
    eKeptWarning();
    ~eKeptWarning();
    eKeptWarning(const eKeptWarning&) = delete;
    eKeptWarning& operator=(const eKeptWarning&) = delete;

    const std::string& Message() const { return message; }

private:
    std::string message;
    xError::eHandler previous;
};
