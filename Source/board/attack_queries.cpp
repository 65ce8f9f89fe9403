#include "board/attack_queries.h"

#include "board/attacks.h"

int is_square_attacked(const Position* pos, int sq, int s)
{
    const Bitboard* p = pos->pieces[s];
    if (p[PAWN] & pawn_attackers_mask(s, sq))
        return 1;
    if (p[KNIGHT] & KNIGHT_ATTACKS[sq])
        return 1;
    if (p[KING] & KING_ATTACKS[sq])
        return 1;
    Bitboard occ = occupancy(pos);
    if ((p[BISHOP] | p[QUEEN]) & bishop_attacks(sq, occ))
        return 1;
    if ((p[ROOK] | p[QUEEN]) & rook_attacks(sq, occ))
        return 1;
    return 0;
}

namespace
{

int attacker_in(const Position* pos, int sq, int side, Bitboard men, Bitboard occ)
{
    const Bitboard* p = pos->pieces[side];
    Bitboard b = p[PAWN] & men & pawn_attackers_mask(side, sq);
    if (b)
        return lsb(b);
    b = p[KNIGHT] & men & KNIGHT_ATTACKS[sq];
    if (b)
        return lsb(b);
    // A slider's line to the square is clear exactly when it stands among
    // the squares a like slider on the square would reach.
    Bitboard diagonal = bishop_attacks(sq, occ) & men;
    b = p[BISHOP] & diagonal;
    if (b)
        return lsb(b);
    Bitboard straight = rook_attacks(sq, occ) & men;
    b = p[ROOK] & straight;
    if (b)
        return lsb(b);
    b = p[QUEEN] & (diagonal | straight);
    if (b)
        return lsb(b);
    b = p[KING] & men & KING_ATTACKS[sq];
    return b ? lsb(b) : NO_SQUARE;
}

} // namespace

int find_attacker(const Position* pos, int sq, int side, Bitboard occ)
{
    return attacker_in(pos, sq, side, ~0ULL, occ);
}

int least_attacker(const Position* pos, int sq, int side, Bitboard mask)
{
    return attacker_in(pos, sq, side, mask, mask);
}
