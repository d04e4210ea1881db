// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <qzl_io/file_name.h>
#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>
#include <qzl_io/system.h>
