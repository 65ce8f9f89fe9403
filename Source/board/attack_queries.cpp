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
    Bitboard diag = (p[BISHOP] | p[QUEEN]) & BISHOP_RAYS[sq];
    while (diag)
        if (!(BETWEEN[pop_lsb(diag)][sq] & occ))
            return 1;
    Bitboard ortho = (p[ROOK] | p[QUEEN]) & ROOK_RAYS[sq];
    while (ortho)
        if (!(BETWEEN[pop_lsb(ortho)][sq] & occ))
            return 1;
    return 0;
}

namespace
{

// First man of the candidate set whose line to `sq` is clear in `occ`.
int first_clear(Bitboard candidates, int sq, Bitboard occ)
{
    while (candidates) {
        int from = pop_lsb(candidates);
        if (!(BETWEEN[from][sq] & occ))
            return from;
    }
    return NO_SQUARE;
}

int attacker_in(const Position* pos, int sq, int side, Bitboard men, Bitboard occ)
{
    const Bitboard* p = pos->pieces[side];
    Bitboard b = p[PAWN] & men & pawn_attackers_mask(side, sq);
    if (b)
        return lsb(b);
    b = p[KNIGHT] & men & KNIGHT_ATTACKS[sq];
    if (b)
        return lsb(b);
    int from = first_clear(p[BISHOP] & men & BISHOP_RAYS[sq], sq, occ);
    if (from != NO_SQUARE)
        return from;
    from = first_clear(p[ROOK] & men & ROOK_RAYS[sq], sq, occ);
    if (from != NO_SQUARE)
        return from;
    from = first_clear(p[QUEEN] & men & (BISHOP_RAYS[sq] | ROOK_RAYS[sq]), sq, occ);
    if (from != NO_SQUARE)
        return from;
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
