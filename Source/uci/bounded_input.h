// Numbers and texts from a GUI, a file or the command line are cut to the
// range or buffer that holds them here, so that no input lands outside.
#pragma once

#include <cstddef>
#include <cstring>

inline int clamp_int(long long v, int lo, int hi)
{
    return v < lo ? lo : v > hi ? hi : int(v);
}

// Copies at most size - 1 characters and always terminates.
inline void copy_text(char* dest, size_t size, const char* text)
{
    size_t n = strnlen(text, size - 1);
    std::memmove(dest, text, n);
    dest[n] = 0;
}
