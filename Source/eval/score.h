// A packed pair of opening and endgame values: endgame * 65536 + opening.
// Pairs add and scale as plain integers.
#pragma once

#include <cstdint>

using Score = int32_t;

constexpr Score make_score(int opening, int endgame)
{
    return Score(uint32_t(endgame) * 65536u + uint32_t(opening));
}
// Pairs add, subtract and scale as unsigned numbers wrap: a sum whose
// halves leave their range (values from a hand-made params.txt, extreme
// personality weights) is a wrong score, never undefined behaviour.
constexpr Score score_plus(Score a, Score b)
{
    return Score(uint32_t(a) + uint32_t(b));
}
constexpr Score score_minus(Score a, Score b)
{
    return Score(uint32_t(a) - uint32_t(b));
}
constexpr Score score_times(int n, Score s)
{
    return Score(uint32_t(n) * uint32_t(s));
}
constexpr int opening_of(Score s)
{
    return int16_t(uint16_t(uint32_t(s) & 0xFFFF));
}
constexpr int endgame_of(Score s)
{
    return int32_t(uint32_t(s) + 32768u) >> 16;
}
