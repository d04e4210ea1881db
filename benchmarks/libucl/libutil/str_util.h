// SPDX-License-Identifier: BSL-1.0
// Lower case, which libucl's copy takes from rspamd.
#pragma once

#include <strings.h>

#define rspamd_lc_cmp(a, b, bytes) strncasecmp(a, b, bytes)
