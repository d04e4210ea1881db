// Stands in for cpprestsdk's tasks: its JSON part includes them for the standard headers alone.
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
