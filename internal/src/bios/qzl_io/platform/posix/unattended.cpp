#include "platform/unattended.h"

namespace IO::Platform {

// This system never asks.
eUnattended::eUnattended() noexcept = default;
eUnattended::~eUnattended() = default;

} // namespace IO::Platform
