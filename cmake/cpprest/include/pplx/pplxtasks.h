// SPDX-License-Identifier: BSL-1.0
// Replaces cpprestsdk's tasks: its JSON part includes them only for the standard headers.
#pragma once

#include <algorithm>
#include <atomic>
#include <cassert>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>
