// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <unistd.h>

#include "support/platform/posix/open_descriptors.h"

// Closes standard input, as for a service in the background, so that the next file that is opened is descriptor 0.
class eClosedInput {
public:
    eClosedInput() : kept(::dup(STDIN_FILENO)) {
        ::close(STDIN_FILENO);
        open = OpenDescriptors();
    }
    ~eClosedInput() {
        ::dup2(kept, STDIN_FILENO);
        ::close(kept);
    }
    eClosedInput(const eClosedInput&) = delete;
    eClosedInput& operator=(const eClosedInput&) = delete;

    // The number of descriptors that were open then.
    int Open() const { return open; }

private:
    int kept;
    int open;
};
