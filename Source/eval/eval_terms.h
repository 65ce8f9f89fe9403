// Bit masks the evaluation terms are built from.
#pragma once

#include "board/attacks.h"

#include <array>

// Squares strictly in front of `sq` for `side`, on its file.
inline Bitboard forward_file(int side, int sq)
{
    return side == 0 ? RAY[NORTH][sq] : RAY[SOUTH][sq];
}

inline Bitboard adjacent_files(int sq)
{
    Bitboard f = file_mask(file_of(sq));
    return ((f << 1) & ~FILE_A) | ((f >> 1) & ~FILE_H);
}

// Squares in front of `sq` on its own and the adjacent files.
inline Bitboard passed_span(int side, int sq)
{
    Bitboard front = forward_file(side, sq);
    return front | ((front << 1) & ~FILE_A) | ((front >> 1) & ~FILE_H);
}

// Squares on the adjacent files at `sq`'s rank and behind it (for `side`).
inline Bitboard support_span(int side, int sq)
{
    Bitboard adj = adjacent_files(sq);
    int r = rank_of(sq);
    Bitboard ranks = side == 0 ? (r == 7 ? ~0ULL : (bit(8 * (r + 1)) - 1)) : ~(bit(8 * r) - 1);
    return adj & ranks;
}

inline Bitboard shift_up(Bitboard b)
{
    return b << 8;
}
inline Bitboard shift_down(Bitboard b)
{
    return b >> 8;
}
inline Bitboard shift_forward(int side, Bitboard b)
{
    return side == 0 ? b << 8 : b >> 8;
}

inline Bitboard pawn_attacks_of(int side, Bitboard pawns)
{
    return side == 0 ? ((pawns << 7) & ~FILE_H) | ((pawns << 9) & ~FILE_A)
                     : ((pawns >> 9) & ~FILE_H) | ((pawns >> 7) & ~FILE_A);
}

// Every square that pawns of `side` could attack by advancing.
inline Bitboard pawn_attack_span(int side, Bitboard pawns)
{
    Bitboard b = pawn_attacks_of(side, pawns);
    if (side == 0) {
        b |= b << 8;
        b |= b << 16;
        b |= b << 32;
    } else {
        b |= b >> 8;
        b |= b >> 16;
        b |= b >> 32;
    }
    return b;
}

// One king step in every direction.
inline Bitboard dilate(Bitboard b)
{
    Bitboard side = ((b << 1) & ~FILE_A) | ((b >> 1) & ~FILE_H);
    Bitboard row = b | side;
    return row | (row << 8) | (row >> 8);
}

constexpr Bitboard CENTER_BLOCK = 0x00003C3C3C3C0000ULL; // c3-f6
constexpr Bitboard QUEEN_SIDE = 0x0F0F0F0F0F0F0F0FULL;   // files a-d

namespace eval_tables
{

constexpr std::array<std::array<Bitboard, 64>, 2> make_shield_zones()
{
    std::array<std::array<Bitboard, 64>, 2> t{};
    for (int side = 0; side < 2; side++)
        for (int sq = 0; sq < 64; sq++) {
            int f = sq & 7, r = sq >> 3;
            int first = f == 0 ? 0 : f == 7 ? 5 : f - 1;
            for (int i = 1; i <= 3; i++) {
                int rank = side == 0 ? r + i : r - i;
                if (rank < 0 || rank > 7)
                    break;
                t[side][sq] |= (Bitboard(7) << first) << (8 * rank);
            }
        }
    return t;
}

} // namespace eval_tables

// The squares that shelter a king: the three ranks in front of it on its own
// file and the files beside it (the three nearest files when it stands on an
// edge file). Three unmoved pawns in front of a castled king fill all nine.
inline constexpr auto SHIELD_ZONE = eval_tables::make_shield_zones(); // [side][king square]
