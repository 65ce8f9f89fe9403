// The search-tree trace: every move made in the tree, down to a chosen ply,
// written to "trace.txt" one path per line. A developer tool for one thread.
#pragma once

#include <atomic>
#include <cstdint>

struct SearchThread;

// Deepest ply traced; 0 switches the trace off.
// Set by the console, read by a running search: a relaxed atomic.
extern std::atomic<int8_t> trace_depth;

void trace_move_write(const SearchThread* thread, uint16_t move);

// Called before every move or null move (0) the search makes.
inline void trace_move(const SearchThread* thread, uint16_t move)
{
    if (trace_depth.load(std::memory_order_relaxed))
        trace_move_write(thread, move);
}

void close_trace_file();
