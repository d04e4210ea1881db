// SPDX-License-Identifier: BSL-1.0
// Found before the header of this name for all systems; adds what the Windows parts of the sources need.
#pragma once

#include_next <stdafx.h>

#include <objbase.h>
#include <urlmon.h>
#include <winhttp.h>
