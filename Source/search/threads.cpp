#include "search/threads.h"

#include "search/limits.h"

bool start_threads(int n)
{
    limits.thread_count = n;
    return true;
}

void stop_threads() {}

int count_busy_threads() { return 0; }

void stop_and_wait(uint8_t signal) { limits.stop_signal = signal; }

int worker_count() { return 0; }

SearchThread* worker(int) { return nullptr; }
