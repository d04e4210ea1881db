// SPDX-License-Identifier: BSL-1.0
#pragma once

// The version, and in a build from a checkout what git says of it: "1.0.0 (v1.0.0-3-g0123456)".
extern const char* const kVersionText;
