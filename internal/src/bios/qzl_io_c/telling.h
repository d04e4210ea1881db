// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include <qzl_base/diagnostic.h>
#include <qzl_io_c.h>

namespace xC {

// What a function throws to return a status other than QZL_OK together with a message.
struct eRefusal {
    qzl_status status;
    std::string message;
};

// A failure or a mistake, kept for as long as a caller may look at its texts.
class eTelling {
public:
    // Forgets what has been taken.
    void Clear() noexcept;

    // The status with its own text.
    qzl_status Take(qzl_status itsStatus) noexcept;
    qzl_status Take(qzl_status itsStatus, const std::string& message);
    // The source is the name of a text that the diagnostic does not name.
    qzl_status Take(qzl_status itsStatus, xError::eDiagnostic diagnostic, const std::string& source = {});
    // The exception that is being handled. Returns its status, QZL_NO_MEMORY if there is no memory for the message.
    qzl_status TakeException(const std::string& source) noexcept;

    qzl_status Status() const { return status; }
    qzl_status Tell(qzl_mistake* target) const noexcept;

private:
    qzl_status TakeKnownException(const std::string& source);

    qzl_status status = QZL_OK;
    bool plain = true; // the message is the status's own text
    bool placed = false;
    xError::eDiagnostic parts;
    std::string rendered;
};

// QZL_LIMIT or QZL_FILE for a message of the library that says so, and else the other status.
qzl_status StatusOf(const std::string& message, qzl_status other);

} // namespace xC
