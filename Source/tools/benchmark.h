// The benchmark: a fixed list of middlegame positions searched one after
// the other, with the time per position and the total node rate.
#pragma once

// Searches the first `count` positions (20 or 10). With `direct` the search
// runs on the calling thread instead of the worker pool.
void run_benchmark(int count, bool direct);
