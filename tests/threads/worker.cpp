// SPDX-License-Identifier: BSL-1.0
#include "worker.h"

#include <mutex>

namespace {

struct eExpected {
    bool isError;
    std::string message;
    std::string context;
    unsigned arrived = 0;
    unsigned right = 0;
};

thread_local eExpected* expected = nullptr;

std::mutex unexpectedMutex;
std::string unexpected;

} // namespace

void eWorker::ExpectReport(bool isError, const std::string& message, const std::string& context,
                           const std::function<void()>& reporting) {
    eExpected one{isError, message, context};
    expected = &one;
    reporting();
    expected = nullptr;
    Expect(one.arrived == 1, "one report arrived: " + message);
    Expect(one.right == 1, "it had its message and context: " + message);
}

xError::eHandler eWorker::Handler(bool isError) {
    return [isError](const xError::eReport& report) {
        if (!expected) {
            const std::lock_guard lock(unexpectedMutex);
            unexpected += report.message + " " + report.context + "\n";
            return;
        }
        ++expected->arrived;
        expected->right += expected->isError == isError && report.message == expected->message &&
                           report.context.find(expected->context) != report.context.npos;
    };
}

std::string eWorker::Unexpected() {
    const std::lock_guard lock(unexpectedMutex);
    return unexpected;
}
