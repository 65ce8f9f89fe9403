// Reading a fuzz input as a stream of choices. Grammar-aware targets take
// their decisions from the input's bytes, so that a mutation of the bytes
// changes the session or position they build step by step, and an input that
// runs dry reads as zeros (the first choice of every list).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

struct FuzzInput {
    const uint8_t* data;
    size_t size;
    size_t used;
};

inline bool input_left(const FuzzInput* in)
{
    return in->used < in->size;
}

inline int take_byte(FuzzInput* in)
{
    return in->used < in->size ? in->data[in->used++] : 0;
}

// A number in lo..hi (inclusive), from one or two bytes as the range needs.
inline int take_range(FuzzInput* in, int lo, int hi)
{
    if (hi <= lo)
        return lo;
    unsigned span = unsigned(hi - lo) + 1;
    unsigned v = unsigned(take_byte(in));
    if (span > 256)
        v = v << 8 | unsigned(take_byte(in));
    return lo + int(v % span);
}

// True about once in `n` draws.
inline bool take_chance(FuzzInput* in, int n)
{
    return take_range(in, 0, n - 1) == 0;
}

template <size_t N>
const char* take_one_of(FuzzInput* in, const char* const (&list)[N])
{
    return list[take_range(in, 0, int(N) - 1)];
}

// Up to `max` raw bytes, stopping after a line feed.
inline std::string take_line(FuzzInput* in, size_t max)
{
    std::string text;
    while (input_left(in) && text.size() < max) {
        char c = char(take_byte(in));
        text.push_back(c);
        if (c == '\n')
            break;
    }
    return text;
}
