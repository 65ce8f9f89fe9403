// The benchmark: a fixed list of middlegame positions searched one after
// the other, with the time per position and the total node rate.
#pragma once

struct BenchTotals {
    double nodes;
    double seconds;
};

// Searches the first `count` positions (20 or 10). With `direct` the search
// runs on the calling thread instead of the worker pool.
BenchTotals run_benchmark(int count, bool direct);

// "bench" as test frameworks run it: the node-signature benchmark (depth
// 13, one thread, the default table), ending with "<nodes> nodes <nps> nps".
void run_short_benchmark();
