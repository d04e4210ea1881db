// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <qzl_io/streams/failure.h>
#include <qzl_io/streams/limits.h>
#include <qzl_io/streams/read_transaction.h>
#include <qzl_io/streams/save_file.h>
#include <qzl_io/streams/stream.h>
#include <qzl_io/streams/stream_file.h>
#include <qzl_io/streams/stream_memory.h>
#include <qzl_io/streams/stream_text.h>
