// One search of one position for a tool, with the limits the command line
// set: either the worker pool (the calling thread keeps the clock and, at a
// terminal, the keyboard) or the main worker's record run on this thread.
#pragma once

#include "board/position.h"

#include <cstdint>

struct ToolSearch {
    Move best;            // the main worker's best move, 0 when it has none
    int score;            // its root score
    int depth;            // last completed iteration
    uint64_t nodes;       // over the workers that searched
    double seconds;       // wall time of the search alone
    Move pv[MAX_PLY + 2]; // the main worker's line, ended by 0
};

// Searches `pos` (which the search copies; it stays as it is). With
// `hash_off` the table is neither read nor written during this search.
void tool_search(const Position* pos, bool threaded, bool hash_off, ToolSearch* out);

// Zeroes the hash table when it is in use.
void tool_clear_hash();
