// Stands in for cpprestsdk's precompiled header: what its JSON facility needs, without the network.
#pragma once

#include <cpprest/json.h>

#include <cpprest/asyncrt_utils.h>

#include <objbase.h>
#include <urlmon.h>
#include <winhttp.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <mutex>
#include <vector>
