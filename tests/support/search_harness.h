// Runs the engine's own search inside the test process: worker threads, the
// hash table and the game record, without the command loop.
#pragma once

#include "board/types.h"

#include <string>

struct SearchOutcome {
    Move best;
    int score; // the main thread's root score
    int depth; // last completed iteration
    uint64_t nodes;
};

// Sets up the table and parameters once per process, and a pool of
// `threads` workers on every call.
void harness_start(int threads = 1);

// Searches `fen` (then `moves`, coordinate text separated by blanks) to `depth`.
SearchOutcome harness_search(const std::string& fen, int depth, const std::string& moves = "", int fifty = 0);
