#include "board/movegen.h"

#include "board/attacks.h"
#include "board/legality.h"

namespace
{

inline MoveEntry* add(MoveEntry* list, const Position* pos, int from, int to, Move flags = 0)
{
    list->move = Move(make_move_code(from, to) | flags);
    list->piece = pos->board[from];
    list->captured = pos->board[to];
    return list + 1;
}

// Pawn moves that all share one step: from = to - step.
inline MoveEntry* add_pawn_targets(MoveEntry* list, const Position* pos, Bitboard targets, int step)
{
    while (targets) {
        int to = pop_lsb(targets);
        list = add(list, pos, to - step, to);
    }
    return list;
}

template <int Type>
MoveEntry* add_piece_moves(MoveEntry* list, const Position* pos, int side, Bitboard targets)
{
    Bitboard men = pos->pieces[side][Type];
    Bitboard occ = occupancy(pos);
    while (men) {
        int from = pop_lsb(men);
        Bitboard att = Type == KNIGHT   ? KNIGHT_ATTACKS[from]
                       : Type == BISHOP ? bishop_attacks(from, occ)
                       : Type == ROOK   ? rook_attacks(from, occ)
                       : Type == QUEEN  ? queen_attacks(from, occ)
                                        : KING_ATTACKS[from];
        att &= targets;
        while (att)
            list = add(list, pos, from, pop_lsb(att));
    }
    return list;
}

inline MoveEntry* add_promotion(MoveEntry* list, const Position* pos, int from, int to, bool all_pieces)
{
    list = add(list, pos, from, to, PROMO_QUEEN);
    if (all_pieces) {
        list = add(list, pos, from, to, PROMO_KNIGHT);
        list = add(list, pos, from, to, PROMO_BISHOP);
        list = add(list, pos, from, to, PROMO_ROOK);
    }
    return list;
}

// The generators below, limited to moves whose to-square is in `mask`
// (every square for the public generators), so that a caller after the
// moves to a few squares need not generate the rest.
MoveEntry* captures_into(const Position* pos, int side, MoveEntry* list, int checker, Bitboard mask)
{
    Bitboard enemy = pos->pieces[side ^ 1][0];
    Bitboard targets = (checker == NO_SQUARE ? enemy : bit(checker)) & mask;
    // An absent en-passant square (64) shifts to bit 0, which the mask drops.
    Bitboard pawn_targets = (targets | (bit(pos->ep_square & 63) & mask)) & INNER_RANKS;
    Bitboard pawns = pos->pieces[side][PAWN];
    if (side == WHITE) {
        list = add_pawn_targets(list, pos, (pawns << 7) & ~FILE_H & pawn_targets, 7);
        list = add_pawn_targets(list, pos, (pawns << 9) & ~FILE_A & pawn_targets, 9);
    } else {
        list = add_pawn_targets(list, pos, (pawns >> 9) & ~FILE_H & pawn_targets, -9);
        list = add_pawn_targets(list, pos, (pawns >> 7) & ~FILE_A & pawn_targets, -7);
    }
    list = add_piece_moves<KNIGHT>(list, pos, side, targets);
    list = add_piece_moves<BISHOP>(list, pos, side, targets);
    list = add_piece_moves<ROOK>(list, pos, side, targets);
    list = add_piece_moves<QUEEN>(list, pos, side, targets);
    return add_piece_moves<KING>(list, pos, side, enemy & mask);
}

MoveEntry* promotions_into(const Position* pos, int side, bool all_pieces, MoveEntry* list, Bitboard mask)
{
    Bitboard pawns = pos->pieces[side][PAWN] & SEVENTH_RANK[side];
    Bitboard enemy = pos->pieces[side ^ 1][0] & mask;
    Bitboard occ = occupancy(pos);
    int step = PAWN_STEP[side];
    // Captures towards the a-file are step - 1, towards the h-file step + 1.
    while (pawns) {
        int from = pop_lsb(pawns);
        int to = from + step;
        if (!(occ & bit(to)) && (mask & bit(to)))
            list = add_promotion(list, pos, from, to, all_pieces);
        if (file_of(from) != 0 && (enemy & bit(to - 1)))
            list = add_promotion(list, pos, from, to - 1, all_pieces);
        if (file_of(from) != 7 && (enemy & bit(to + 1)))
            list = add_promotion(list, pos, from, to + 1, all_pieces);
    }
    return list;
}

MoveEntry* quiets_into(const Position* pos, int side, MoveEntry* list, int checker, Bitboard mask)
{
    Bitboard occ = occupancy(pos);
    Bitboard empty = ~occ;
    Bitboard targets = empty & mask;
    if (checker != NO_SQUARE)
        targets &= BETWEEN[checker][pos->king_square[side]];
    Bitboard pawns = pos->pieces[side][PAWN];
    if (side == WHITE) {
        list = add_pawn_targets(list, pos, (pawns << 8) & targets & INNER_RANKS, 8);
        Bitboard hop = ((pawns & rank_mask(1)) << 8) & empty;
        list = add_pawn_targets(list, pos, (hop << 8) & targets & rank_mask(3), 16);
    } else {
        list = add_pawn_targets(list, pos, (pawns >> 8) & targets & INNER_RANKS, -8);
        Bitboard hop = ((pawns & rank_mask(6)) >> 8) & empty;
        list = add_pawn_targets(list, pos, (hop >> 8) & targets & rank_mask(4), -16);
    }
    list = add_piece_moves<KNIGHT>(list, pos, side, targets);
    list = add_piece_moves<BISHOP>(list, pos, side, targets);
    list = add_piece_moves<ROOK>(list, pos, side, targets);
    list = add_piece_moves<QUEEN>(list, pos, side, targets);
    list = add_piece_moves<KING>(list, pos, side, empty & mask);

    int from = pos->king_square[side];
    if (from == KING_START[side]) {
        if ((pos->castling & (1 << (2 * side))) && !(occ & (bit(from + 1) | bit(from + 2))) && (mask & bit(from + 2)))
            list = add(list, pos, from, from + 2);
        if ((pos->castling & (2 << (2 * side))) && !(occ & (bit(from - 1) | bit(from - 2) | bit(from - 3)))
            && (mask & bit(from - 2)))
            list = add(list, pos, from, from - 2);
    }
    return list;
}

} // namespace

MoveEntry* gen_captures(const Position* pos, int side, MoveEntry* list, int checker)
{
    return captures_into(pos, side, list, checker, ~Bitboard(0));
}

MoveEntry* gen_promotions(const Position* pos, int side, bool all_pieces, MoveEntry* list)
{
    return promotions_into(pos, side, all_pieces, list, ~Bitboard(0));
}

MoveEntry* gen_quiets(const Position* pos, int side, MoveEntry* list, int checker)
{
    return quiets_into(pos, side, list, checker, ~Bitboard(0));
}

MoveEntry* gen_all(const Position* pos, MoveEntry* list)
{
    return gen_all_to(pos, ~Bitboard(0), list);
}

MoveEntry* gen_all_to(const Position* pos, Bitboard mask, MoveEntry* list)
{
    list = captures_into(pos, pos->side, list, NO_SQUARE, mask);
    list = promotions_into(pos, pos->side, true, list, mask);
    list = quiets_into(pos, pos->side, list, NO_SQUARE, mask);
    list->move = MOVE_END;
    return list;
}

bool is_pseudo_legal(const Position* pos, Move move)
{
    int side = pos->side;
    int from = move_from(move), to = move_to(move);
    if (from == to)
        return false;
    int piece = pos->board[from];
    int type = piece_type(piece);
    if (type == EMPTY || type > KING || piece_side(piece) != side)
        return false;
    int target = pos->board[to];
    if (target && (piece_side(target) == side || piece_type(target) == KING))
        return false;
    Bitboard last_rank = side == WHITE ? RANK_8 : RANK_1;
    if (is_promotion(move) && (type != PAWN || !(bit(to) & last_rank)))
        return false;
    Bitboard occ = occupancy(pos);
    switch (type) {
    case KNIGHT:
        return KNIGHT_ATTACKS[from] & bit(to);
    case BISHOP:
        return (BISHOP_RAYS[from] & bit(to)) && !(BETWEEN[from][to] & occ);
    case ROOK:
        return (ROOK_RAYS[from] & bit(to)) && !(BETWEEN[from][to] & occ);
    case QUEEN:
        return ((BISHOP_RAYS[from] | ROOK_RAYS[from]) & bit(to)) && !(BETWEEN[from][to] & occ);
    case KING: {
        if (KING_ATTACKS[from] & bit(to))
            return true;
        int back_rank = side == WHITE ? 0 : 7;
        if (rank_of(from) != back_rank)
            return false;
        // The rook on its corner stands for the castling right here.
        int rook = piece_code(ROOK, side);
        if (to == from + 2)
            return file_of(from) <= 4 && !(occ & bit(from + 1)) && !target && pos->board[from + 3] == rook;
        if (to == from - 2)
            return file_of(from) >= 4 && !(occ & bit(from - 1)) && !target && pos->board[from - 4] == rook;
        return false;
    }
    default:
        break;
    }
    // Pawns. A pawn reaching the last rank must carry a promotion flag: a
    // plain move there is never generated.
    if ((bit(to) & last_rank) && !is_promotion(move))
        return false;
    if (PAWN_ATTACKS[side][from] & bit(to)) {
        if (to == pos->ep_square)
            return !target && pos->board[to - PAWN_STEP[side]] == piece_code(PAWN, side ^ 1);
        return target != 0;
    }
    int step = PAWN_STEP[side];
    if (to == from + step)
        return !target;
    int start_rank = side == WHITE ? 1 : 6;
    return to == from + 2 * step && rank_of(from) == start_rank && !target && !(occ & bit(from + step));
}

MoveEntry* gen_quiet_checks(const Position* pos, MoveEntry* list)
{
    int side = pos->side;
    int ek = pos->king_square[side ^ 1];
    Bitboard occ = occupancy(pos);
    Bitboard empty = ~occ;
    Bitboard pawn_squares = PAWN_ATTACKS[side ^ 1][ek] & empty & INNER_RANKS;
    Bitboard pawns = pos->pieces[side][PAWN];
    if (side == WHITE) {
        list = add_pawn_targets(list, pos, (pawns << 8) & pawn_squares, 8);
        Bitboard hop = ((pawns & rank_mask(1)) << 8) & empty;
        list = add_pawn_targets(list, pos, (hop << 8) & pawn_squares & rank_mask(3), 16);
    } else {
        list = add_pawn_targets(list, pos, (pawns >> 8) & pawn_squares, -8);
        Bitboard hop = ((pawns & rank_mask(6)) >> 8) & empty;
        list = add_pawn_targets(list, pos, (hop >> 8) & pawn_squares & rank_mask(4), -16);
    }
    list = add_piece_moves<KNIGHT>(list, pos, side, KNIGHT_ATTACKS[ek] & empty);
    Bitboard diagonal = bishop_attacks(ek, occ) & empty, straight = rook_attacks(ek, occ) & empty;
    list = add_piece_moves<BISHOP>(list, pos, side, diagonal);
    list = add_piece_moves<ROOK>(list, pos, side, straight);
    return add_piece_moves<QUEEN>(list, pos, side, diagonal | straight);
}

int gen_legal(const Position* pos, MoveEntry* list)
{
    MoveEntry buffer[MAX_MOVES];
    gen_all(pos, buffer);
    PinInfo info = pin_info(pos, pos->side);
    int n = 0;
    for (MoveEntry* e = buffer; e->move != MOVE_END; e++)
        if (is_legal_fast(pos, pos->side, e->move, info))
            list[n++] = *e;
    list[n].move = MOVE_END;
    return n;
}
