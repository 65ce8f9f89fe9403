// What the prober is given of a position: the men of each side and of each
// type as bitboards, the en-passant square and the side to move. The tables
// know nothing of castling and count the fifty-move rule from zero.
#pragma once

#include "board/position.h"

struct TbBoard {
    Bitboard side[2]; // men of White and of Black
    Bitboard type[8]; // men of each type (PAWN..KING), both sides together
    uint8_t ep;       // en-passant square, 64 when none
    uint8_t stm;      // side to move
};

inline TbBoard tb_board_of(const Position* pos)
{
    TbBoard b{};
    b.side[WHITE] = pos->pieces[WHITE][0];
    b.side[BLACK] = pos->pieces[BLACK][0];
    for (int t = PAWN; t <= KING; t++)
        b.type[t] = pos->pieces[WHITE][t] | pos->pieces[BLACK][t];
    b.ep = pos->ep_square;
    b.stm = pos->side;
    return b;
}

inline Bitboard tb_men(const TbBoard* b, int side, int type)
{
    return b->side[side] & b->type[type];
}

// Material key: four bits per side and type from pawn to queen (the kings
// are one a side in every table). White's counts sit in the low 20 bits.
inline uint64_t tb_material_key(const TbBoard* b)
{
    uint64_t key = 0;
    for (int s = 0; s < 2; s++)
        for (int t = PAWN; t <= QUEEN; t++)
            key |= uint64_t(popcount(tb_men(b, s, t))) << (20 * s + 4 * (t - 1));
    return key;
}
