// SPDX-License-Identifier: BSL-1.0
// Found before cpprestsdk's own header of this name, and leads to it with the ground prepared for this compiler.
#pragma once

#include "../cpprest_mingw.h"

#include_next <cpprest/json.h>
