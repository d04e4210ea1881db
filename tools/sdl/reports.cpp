// SPDX-License-Identifier: BSL-1.0
#include "reports.h"

#include <iostream>
#include <sstream>
#include <utility>

#include <qzl_base/diagnostic.h>

#include "terminal.h"
#include "utf8.h"

namespace {

// A context marks the place in a line with the byte 171, which is not UTF-8; it is shown as "»".
std::string Marked(const std::string& line) {
    std::string text = terminal::Printable(line);
    const std::size_t mark = text.find(utf8::kReplacement);
    return mark == std::string::npos ? text : text.replace(mark, utf8::kReplacement.size(), "\xC2\xBB");
}

} // namespace

void ShowMessage(const std::string& message) {
    terminal::EndProgress();
    std::cout.flush();
    std::cerr << "sdl: " << message << '\n';
}

void ShowDiagnostic(const xError::eDiagnostic& diagnostic) {
    terminal::EndProgress();
    std::cout.flush();
    std::cerr << xError::Render(diagnostic);
}

std::string Counted(unsigned long long count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

void ShowReport(const xError::eReport& report) {
    if (report.diagnostic)
        return ShowDiagnostic(*report.diagnostic);
    ShowMessage(terminal::Printable(report.message));
    std::istringstream context(report.context);
    for (std::string line; std::getline(context, line);)
        std::cerr << "    " << Marked(line) << '\n';
}

eShownWarnings::eShownWarnings()
    : previous(xError::SetWarningHandler([this](const xError::eReport& report) { Take(report); })) {}

eShownWarnings::~eShownWarnings() {
    xError::SetWarningHandler(std::move(previous));
    for (const auto& [message, count] : counts)
        if (count > 1)
            ShowMessage(std::to_string(count) + " times: " + terminal::Printable(message));
}

void eShownWarnings::Take(const xError::eReport& report) {
    if (++counts[report.message] == 1)
        ShowReport(report);
}

eKeptWarning::eKeptWarning()
    : previous(xError::SetWarningHandler([this](const xError::eReport& report) { message = report.message; })) {}

eKeptWarning::~eKeptWarning() {
    xError::SetWarningHandler(std::move(previous));
}
