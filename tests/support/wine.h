// SPDX-License-Identifier: BSL-1.0
#pragma once

// True under Wine, which lacks parts of Windows; a check that needs such a part is skipped only there.
bool IsUnderWine();
