// The shared transposition table.
#pragma once

// (Re)allocates the table for `megabytes`; the first call also makes the
// hashing keys. Returns 1 on success, 0 when the memory cannot be had.
int tt_allocate(int megabytes);

// Size of the current table in megabytes.
int tt_megabytes();

// Zeroes the table.
void tt_clear();
