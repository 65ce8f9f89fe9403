#include "board/legality.h"

#include "board/attack_queries.h"
#include "board/attacks.h"
#include "board/movegen.h"

namespace
{

// Is `sq` attacked by `them`, leaving out the men on `removed`, with occupancy `occ`?
int attacked_after(const Position* pos, int sq, int them, Bitboard removed, Bitboard occ)
{
    const Bitboard* p = pos->pieces[them];
    if (p[PAWN] & ~removed & pawn_attackers_mask(them, sq))
        return 1;
    if (p[KNIGHT] & ~removed & KNIGHT_ATTACKS[sq])
        return 1;
    Bitboard diag = (p[BISHOP] | p[QUEEN]) & ~removed & BISHOP_RAYS[sq];
    while (diag)
        if (!(BETWEEN[pop_lsb(diag)][sq] & occ))
            return 1;
    Bitboard ortho = (p[ROOK] | p[QUEEN]) & ~removed & ROOK_RAYS[sq];
    while (ortho)
        if (!(BETWEEN[pop_lsb(ortho)][sq] & occ))
            return 1;
    return (p[KING] & ~removed & KING_ATTACKS[sq]) ? 1 : 0;
}

} // namespace

int is_legal(const Position* pos, int side, Move move)
{
    int from = move_from(move), to = move_to(move);
    int piece = pos->board[from];
    int them = side ^ 1;
    if (piece_type(piece) == KING && pos->chess960 && pos->board[to] == piece_code(ROOK, side)) {
        // Chess960: no square of the king's way, its start and end included,
        // may be attacked, with king and rook off the board.
        int king_to = castle_king_target(side, to > from);
        Bitboard occ = occupancy(pos) & ~bit(from) & ~bit(to);
        Bitboard way = BETWEEN[from][king_to] | bit(from) | bit(king_to);
        while (way)
            if (attacked_after(pos, pop_lsb(way), them, 0, occ))
                return 0;
        return 1;
    }
    if (piece_type(piece) == KING && (to == from + 2 || to == from - 2))
        return !is_square_attacked(pos, from, them) && !is_square_attacked(pos, to, them)
               && !is_square_attacked(pos, (from + to) / 2, them);
    int target = piece_type(piece) == KING ? to : pos->king_square[side];
    Bitboard removed = bit(to);
    Bitboard occ = (occupancy(pos) & ~bit(from)) | bit(to);
    if (piece_type(piece) == PAWN && to == pos->ep_square) {
        int victim = to - PAWN_STEP[side];
        removed |= bit(victim);
        occ &= ~bit(victim);
    }
    return !attacked_after(pos, target, them, removed, occ);
}

int is_legal_move(const Position* pos, Move move)
{
    return move && is_pseudo_legal(pos, move) && is_legal(pos, pos->side, move);
}

namespace
{

// Men of `side` that stand alone between an enemy slider and their king.
Bitboard pinned_men(const Position* pos, int side, int ksq, Bitboard occ)
{
    const Bitboard* p = pos->pieces[side ^ 1];
    Bitboard snipers = ((p[BISHOP] | p[QUEEN]) & BISHOP_RAYS[ksq]) | ((p[ROOK] | p[QUEEN]) & ROOK_RAYS[ksq]);
    Bitboard pinned = 0;
    while (snipers) {
        Bitboard b = BETWEEN[pop_lsb(snipers)][ksq] & occ;
        if (b && !(b & (b - 1)) && (b & pos->pieces[side][0]))
            pinned |= b;
    }
    return pinned;
}

} // namespace

PinInfo pin_info(const Position* pos, int side)
{
    PinInfo info;
    int ksq = pos->king_square[side];
    const Bitboard* p = pos->pieces[side ^ 1];
    Bitboard occ = occupancy(pos);
    info.pinned = pinned_men(pos, side, ksq, occ);
    info.king_square = uint8_t(ksq);
    Bitboard checkers = (p[PAWN] & PAWN_ATTACKS[side][ksq]) | (p[KNIGHT] & KNIGHT_ATTACKS[ksq])
                        | ((p[BISHOP] | p[QUEEN]) & bishop_attacks(ksq, occ))
                        | ((p[ROOK] | p[QUEEN]) & rook_attacks(ksq, occ));
    info.checkers = checkers;
    info.in_check = checkers != 0;
    info.checker = uint8_t(checkers ? lsb(checkers) : NO_SQUARE);
    info.careful = checkers ? ~0ULL : info.pinned | bit(ksq);
    return info;
}

PinInfo pin_info_unchecked(const Position* pos, int side)
{
    PinInfo info;
    int ksq = pos->king_square[side];
    info.pinned = pinned_men(pos, side, ksq, occupancy(pos));
    info.king_square = uint8_t(ksq);
    info.checkers = 0;
    info.in_check = 0;
    info.checker = NO_SQUARE;
    info.careful = info.pinned | bit(ksq);
    return info;
}

int is_legal_careful(const Position* pos, int side, Move move, const PinInfo& info)
{
    int from = move_from(move), to = move_to(move);
    int ksq = info.king_square;
    if (from == ksq)
        return is_legal(pos, side, move);
    if (to == pos->ep_square && piece_type(pos->board[from]) == PAWN)
        return is_legal(pos, side, move);
    if (info.checkers) {
        // Against two checkers only the king can help; against one, another
        // man must take it or step between.
        if (info.checkers & (info.checkers - 1))
            return 0;
        if (!(bit(to) & (info.checkers | BETWEEN[ksq][info.checker])))
            return 0;
    }
    if (!(info.pinned & bit(from)))
        return 1;
    // A pinned man may only move along the line through its king.
    return (BETWEEN[ksq][to] & bit(from)) || (BETWEEN[ksq][from] & bit(to));
}
