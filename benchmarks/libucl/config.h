// SPDX-License-Identifier: BSL-1.0
// What rspamd tells its copy of libucl about the system: nothing that reading and writing texts in memory needs.
#pragma once

#define HAVE_ENDIAN_H 1
#define HAVE_STRINGS_H 1
