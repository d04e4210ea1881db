// SPDX-License-Identifier: BSL-1.0
#include "support/wine.h"

bool IsUnderWine() {
    return false;
}
