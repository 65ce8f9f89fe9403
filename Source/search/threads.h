// The pool of search workers, driven by one command byte per worker.
#pragma once

#include <cstdint>

// Creates `n` workers (at least one); false when a thread cannot be created.
bool start_threads(int n);

struct SearchThread;

// The workers that exist now, by number.
int worker_count();
SearchThread* worker(int i);

// Stops and frees every worker.
void stop_threads();

// Workers whose command byte is not 0 (0 when there are none).
int count_busy_threads();

// Sets the shared stop flag and waits, 1 ms at a time, until no worker is busy.
void stop_and_wait(uint8_t signal);
