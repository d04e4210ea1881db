// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include <qzl_base/error.h>

inline std::vector<std::string> MessagesOf(const std::vector<xError::eReport>& reports) {
    std::vector<std::string> messages;
    for (const xError::eReport& report : reports)
        messages.push_back(report.message);
    return messages;
}

// Collects the reports of all threads from construction to destruction, in place of the installed handlers, which it
// then restores. With eReports::Throws the error handler also throws eException, as the default does; otherwise it
// returns.
class eReports {
public:
    enum eMode { Returns, Throws };

    explicit eReports(eMode mode = Returns)
        : errorHandler([this, mode](const xError::eReport& report) {
              Keep(errorReports, report);
              if (mode == Throws)
                  throw xError::eException(report);
          }),
          warningHandler([this](const xError::eReport& report) { Keep(warningReports, report); }) {}

    // May be called only while no other thread reports.
    const std::vector<xError::eReport>& errors() const { return errorReports; }
    const std::vector<xError::eReport>& warnings() const { return warningReports; }

    void Clear() {
        std::lock_guard lock(mutex);
        errorReports.clear();
        warningReports.clear();
    }

private:
    void Keep(std::vector<xError::eReport>& reports, const xError::eReport& report) {
        std::lock_guard lock(mutex);
        reports.push_back(report);
    }

    std::mutex mutex;
    std::vector<xError::eReport> errorReports;
    std::vector<xError::eReport> warningReports;
    xError::eErrorHandlerGuard errorHandler;
    xError::eWarningHandlerGuard warningHandler;
};
