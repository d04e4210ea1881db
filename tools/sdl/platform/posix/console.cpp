// SPDX-License-Identifier: BSL-1.0
#include "platform/console.h"

#include <unistd.h>

namespace console {

bool IsTerminal(eStream stream) {
    return isatty(static_cast<int>(stream)) != 0;
}

void Prepare() {}

std::vector<std::string> Arguments(int argc, char** argv) {
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

} // namespace console
