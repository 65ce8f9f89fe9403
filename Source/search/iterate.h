// Iterative deepening with aspiration windows, the root move loop, and the
// info lines of the main thread.
#pragma once

#include <cstdint>

struct SearchThread;

// A worker's whole search: copies the game position, builds the root move
// list, puts the root to the tablebases (main thread) and iterates.
void run_search(SearchThread* t);

void iterate(SearchThread* t);

// Root move loop for line k of a MultiPV search, window (alpha, beta).
int search_root(SearchThread* t, int depth, int alpha, int beta, int line);

// A helper goes one deeper when more than half of the threads already
// search `depth` or beyond.
int helper_depth(int depth, int threads_at_depth, int thread_count);

// Nodes and tablebase hits over all search threads.
uint64_t total_nodes();
uint64_t total_tbhits();

// (N(d) / N(d - 4)) ^ 0.25 over the nodes of the last search's iterations, or 2.0.
double effective_branching_factor();
