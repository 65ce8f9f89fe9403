// Counting the legal move tree: the check that generation, legality and
// make/unmake agree.
#pragma once

#include <cstdint>

struct SearchThread;

// Adds the number of legal move sequences of exactly `depth` plies (depth >= 1)
// from the thread's position to the thread's node counter.
void perft(SearchThread* thread, int side, int ply, int depth);

// "go perft": a line "<move>: <count>" per legal root move, then
// "Nodes searched: <total>" (the form interfaces and move generators
// compare); returns the total.
uint64_t perft_divide(SearchThread* thread, int depth);

// The console command: counts from the thread's position, prints
// "visited %0.0f nodes in %0.3f seconds, nps= %0.0f" and returns the count.
uint64_t perft_command(SearchThread* thread, int depth);
