// SPDX-License-Identifier: BSL-1.0
// The table of lower case that libucl's copy takes from rspamd.
const unsigned char lc_map[256] = {
#define ROW(n) n, n + 1, n + 2, n + 3, n + 4, n + 5, n + 6, n + 7
#define ROWS(n) ROW(n), ROW(n + 8), ROW(n + 16), ROW(n + 24)
    ROWS(0), ROWS(32), 64, ROW('a'), ROW('i'), ROW('q'),  'y',       'z',       91,
    92,      93,       94, 95,       ROWS(96), ROWS(128), ROWS(160), ROWS(192), ROWS(224)};
