// Time management and search limits.
#pragma once

// Before every search: the target time, the per-search resets, the search
// parameters when settings changed, and the node rate of a strength limit.
void prepare_search();

// Whether the search prepared last stops on the clock (fixed-depth, node and
// infinite searches do not).
bool search_is_timed();

// Once a round from the input thread's loop: refreshes the elapsed time and
// raises the stop flag when a timed search has used its time.
void check_time();

// The stop test of a timed search after `elapsed` seconds while the main
// thread works on iteration `depth`.
bool time_is_up(double elapsed, int depth);

// The Elo that a node rate plays at, and the rate for an Elo (bisection).
double elo_of_rate(double nodes_per_second);
double rate_for_elo(double elo);

// Makes a pondering search a timed one (ponderhit).
void start_clock_on_ponderhit();
