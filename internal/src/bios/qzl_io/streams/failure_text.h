// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include "platform/file_handle.h"

// A sentence that says what could not be done, with the system's reason if it gave a number for one: "NOT DONE:
// REASON."
inline std::string FailureText(const std::string& notDone, int refusal) {
    std::string reason = IO::Platform::RefusalText(refusal);
    while (!reason.empty() && (reason.back() == '.' || reason.back() == '\n' || reason.back() == '\r'))
        reason.pop_back();
    return reason.empty() ? notDone + '.' : notDone + ": " + reason + '.';
}
