// SPDX-License-Identifier: BSL-1.0
// The hash of keys, which libucl's copy takes from rspamd: here the one that libucl uses on its own.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "mum.h"

typedef unsigned char guchar;
typedef uint64_t rspamd_cryptobox_fast_hash_state_t;

static inline uint64_t rspamd_cryptobox_fast_hash(const void* data, size_t bytes, uint64_t seed) {
    return mum_hash(data, bytes, seed);
}

static inline void rspamd_cryptobox_fast_hash_init(rspamd_cryptobox_fast_hash_state_t* state, uint64_t seed) {
    *state = seed;
}

static inline void rspamd_cryptobox_fast_hash_update(rspamd_cryptobox_fast_hash_state_t* state, const void* data,
                                                     size_t bytes) {
    *state = mum_hash(data, bytes, *state);
}

static inline uint64_t rspamd_cryptobox_fast_hash_final(rspamd_cryptobox_fast_hash_state_t* state) {
    return *state;
}
