// Monotonic time and short sleeps.
#pragma once

#include <ctime>

inline double now_seconds()
{
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return double(ts.tv_sec) + double(ts.tv_nsec) * 1e-9;
}

inline void sleep_ms(int ms)
{
    timespec ts{ms / 1000, long(ms % 1000) * 1000000L};
    nanosleep(&ts, nullptr);
}
