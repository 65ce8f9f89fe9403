#include "board/gives_check.h"

#include "board/attacks.h"

CheckInfo check_info(const Position* pos)
{
    CheckInfo ci;
    int s = pos->side, e = s ^ 1;
    int ek = pos->king_square[e];
    ci.enemy_king = ek;
    ci.occ = occupancy(pos);
    ci.check_squares[EMPTY] = 0;
    ci.check_squares[PAWN] = PAWN_ATTACKS[e][ek];
    ci.check_squares[KNIGHT] = KNIGHT_ATTACKS[ek];
    ci.check_squares[BISHOP] = bishop_attacks(ek, ci.occ);
    ci.check_squares[ROOK] = rook_attacks(ek, ci.occ);
    ci.check_squares[QUEEN] = ci.check_squares[BISHOP] | ci.check_squares[ROOK];
    ci.check_squares[KING] = 0;
    ci.discoverers = 0;
    const Bitboard* p = pos->pieces[s];
    Bitboard snipers = ((p[BISHOP] | p[QUEEN]) & BISHOP_RAYS[ek]) | ((p[ROOK] | p[QUEEN]) & ROOK_RAYS[ek]);
    while (snipers) {
        Bitboard b = BETWEEN[pop_lsb(snipers)][ek] & ci.occ;
        if (b && !(b & (b - 1)) && (b & p[0]))
            ci.discoverers |= b;
    }
    return ci;
}

namespace
{

bool slider_sees_king(const Position* pos, int side, int ek, Bitboard occ)
{
    const Bitboard* p = pos->pieces[side];
    return (bishop_attacks(ek, occ) & (p[BISHOP] | p[QUEEN])) || (rook_attacks(ek, occ) & (p[ROOK] | p[QUEEN]));
}

} // namespace

bool gives_check(const Position* pos, Move move, const CheckInfo& ci)
{
    int from = move_from(move), to = move_to(move);
    int type = piece_type(pos->board[from]);
    int ek = ci.enemy_king;
    if (is_promotion(move)) {
        Bitboard occ = ci.occ & ~bit(from);
        int promoted = promotion_type(move);
        Bitboard att = promoted == KNIGHT   ? KNIGHT_ATTACKS[to]
                       : promoted == BISHOP ? bishop_attacks(to, occ)
                       : promoted == ROOK   ? rook_attacks(to, occ)
                                            : queen_attacks(to, occ);
        if (att & bit(ek))
            return true;
    } else if (ci.check_squares[type] & bit(to)) {
        return true;
    }
    if (type == KING && (to == from + 2 || to == from - 2)) {
        int rook_from = to > from ? from + 3 : from - 4;
        int rook_to = to > from ? from + 1 : from - 1;
        Bitboard occ = (ci.occ & ~bit(from) & ~bit(rook_from)) | bit(to) | bit(rook_to);
        if (rook_attacks(rook_to, occ) & bit(ek))
            return true;
    }
    if (type == PAWN && to == pos->ep_square) {
        int victim = to - PAWN_STEP[pos->side];
        Bitboard occ = (ci.occ & ~bit(from) & ~bit(victim)) | bit(to);
        return slider_sees_king(pos, pos->side, ek, occ);
    }
    if (ci.discoverers & bit(from))
        return !(BETWEEN[ek][to] & bit(from)) && !(BETWEEN[ek][from] & bit(to));
    return false;
}
