// The pool of search workers, driven by one command byte per worker.
#pragma once

#include <cstdint>
#include <mutex>
#include <sched.h>

struct SearchThread;

// Creates `n` workers (at least one); false when a thread cannot be created.
bool start_threads(int n);

// Stops and frees every worker.
void stop_threads();

// The workers that exist now, by number (0 is the main search thread).
int worker_count();
SearchThread* worker(int i);

// Workers whose command byte is not 0 (0 when there are none).
int count_busy_threads();

// Sets the shared stop flag and waits, 1 ms at a time, until no worker is busy.
void stop_and_wait(uint8_t signal);

// Wakes the workers for a search: the main one first, the others 5 ms later.
void start_search_threads();

// Zeroes the hash table; with several workers each clears its own slice.
void clear_hash_table();

// The CPUs of a sysfs list such as "0-3,8-11"; nothing past what cannot be read.
void parse_cpu_list(const char* list, cpu_set_t* set);

// Bind workers to NUMA nodes (the -numa switch; always with more than 32 threads).
extern bool numa_binding;

// Serialises the main thread's info lines and the per-depth statistics.
extern std::mutex info_lock;
extern std::mutex stats_lock;
