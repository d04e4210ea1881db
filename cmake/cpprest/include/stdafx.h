// SPDX-License-Identifier: BSL-1.0
// Replaces cpprestsdk's precompiled header: what its JSON part needs, without the network.
#pragma once

#include <cpprest/json.h>

#include <cpprest/asyncrt_utils.h>

#include <array>
