// A packed pair of opening and endgame values: endgame * 65536 + opening.
// Pairs add and scale as plain integers.
#pragma once

#include <cstdint>

using Score = int32_t;

constexpr Score make_score(int opening, int endgame)
{
    return Score(uint32_t(endgame) * 65536u + uint32_t(opening));
}
constexpr int opening_of(Score s)
{
    return int16_t(uint16_t(uint32_t(s) & 0xFFFF));
}
constexpr int endgame_of(Score s)
{
    return int32_t(uint32_t(s) + 32768u) >> 16;
}
