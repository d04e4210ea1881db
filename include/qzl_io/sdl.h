// SPDX-License-Identifier: BSL-1.0
#pragma once

// SDL, the structured text format: reading, writing, keyword tables and the conversion from JSON.

#include <qzl_io/sdl/cipher.h>
#include <qzl_io/sdl/document.h>
#include <qzl_io/sdl/keyword.h>
#include <qzl_io/sdl/layout.h>
#include <qzl_io/sdl/limits.h>
#include <qzl_io/sdl/parser.h>
#include <qzl_io/sdl/reader.h>
#include <qzl_io/sdl/schema.h>
#include <qzl_io/sdl/token.h>
#include <qzl_io/sdl/writer.h>
#include <qzl_io/version.h>

#if QZL_IO_HAS_JSON
#include <qzl_io/sdl/json_to_sdl.h>
#endif
