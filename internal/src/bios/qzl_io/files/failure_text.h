#pragma once

#include <string>

#include "platform/file_handle.h"

// What could not be done, with the system's reason where there is one, as one sentence: "NOT DONE: REASON."
inline std::string FailureText(const std::string& notDone) {
    std::string reason = IO::Platform::TakeFailureReason();
    while (!reason.empty() && (reason.back() == '.' || reason.back() == '\n' || reason.back() == '\r'))
        reason.pop_back();
    return reason.empty() ? notDone + '.' : notDone + ": " + reason + '.';
}
