#pragma once

#include <string>

#include "platform/file_handle.h"

// One sentence that says what could not be done, with the system's reason if there is one: "NOT DONE: REASON."
inline std::string FailureText(const std::string& notDone) {
    std::string reason = IO::Platform::TakeFailureReason();
    while (!reason.empty() && (reason.back() == '.' || reason.back() == '\n' || reason.back() == '\r'))
        reason.pop_back();
    return reason.empty() ? notDone + '.' : notDone + ": " + reason + '.';
}
