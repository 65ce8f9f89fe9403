// Bit tricks over 64-bit square sets.
#pragma once

#include "board/types.h"

constexpr Bitboard FILE_A = 0x0101010101010101ULL;
constexpr Bitboard FILE_H = 0x8080808080808080ULL;
constexpr Bitboard RANK_1 = 0x00000000000000FFULL;
constexpr Bitboard RANK_8 = 0xFF00000000000000ULL;
constexpr Bitboard INNER_RANKS = 0x00FFFFFFFFFFFF00ULL; // ranks 2..7
constexpr Bitboard LIGHT_SQUARES = 0x55AA55AA55AA55AAULL;
constexpr Bitboard DARK_SQUARES = ~LIGHT_SQUARES;

constexpr Bitboard bit(int sq)
{
    return 1ULL << sq;
}
constexpr Bitboard file_mask(int file)
{
    return FILE_A << file;
}
constexpr Bitboard rank_mask(int rank)
{
    return RANK_1 << (8 * rank);
}

inline int lsb(Bitboard b)
{
    return __builtin_ctzll(b);
}
inline int msb(Bitboard b)
{
    return 63 ^ __builtin_clzll(b);
}
inline int popcount(Bitboard b)
{
    return __builtin_popcountll(b);
}

inline int pop_lsb(Bitboard& b)
{
    int sq = lsb(b);
    b &= b - 1;
    return sq;
}

constexpr int distance(int a, int b)
{
    int df = file_of(a) - file_of(b), dr = rank_of(a) - rank_of(b);
    df = df < 0 ? -df : df;
    dr = dr < 0 ? -dr : dr;
    return df > dr ? df : dr;
}
