// SPDX-License-Identifier: BSL-1.0
#include "platform/unattended.h"

namespace IO::Platform {

// This system never shows a dialog.
eUnattended::eUnattended() noexcept = default;
eUnattended::~eUnattended() = default;

} // namespace IO::Platform
