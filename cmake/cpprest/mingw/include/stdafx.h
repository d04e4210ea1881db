// Found before the header of this name that every system shares, and adds what Windows' parts of the sources need.
#pragma once

#include_next <stdafx.h>

#include <objbase.h>
#include <urlmon.h>
#include <winhttp.h>
