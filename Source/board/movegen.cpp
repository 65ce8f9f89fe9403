#include "board/movegen.h"

#include "board/attacks.h"
#include "board/legality.h"

namespace
{

// Writes one entry; its score is the picker's to write.
inline MoveEntry* put(MoveEntry* list, int code, int piece, int captured)
{
    list->move = Move(code);
    list->piece = uint8_t(piece);
    list->captured = uint8_t(captured);
    return list + 1;
}

// The moves of the man on `from` to each target. Onto empty squares the
// captured code is known to be 0 without a look at the board.
template <bool Onto_men>
inline MoveEntry* add_targets(MoveEntry* list, const Position* pos, int from, Bitboard targets)
{
    int piece = pos->board[from], base = from << 8;
    while (targets) {
        int to = pop_lsb(targets);
        list = put(list, base | to, piece, Onto_men ? pos->board[to] : 0);
    }
    return list;
}

// Pawn moves that all share one step: from = to - step.
template <bool Onto_men>
inline MoveEntry* add_pawn_targets(MoveEntry* list, const Position* pos, int piece, Bitboard targets, int step)
{
    while (targets) {
        int to = pop_lsb(targets);
        list = put(list, (to - step) << 8 | to, piece, Onto_men ? pos->board[to] : 0);
    }
    return list;
}

template <int Type>
inline Bitboard attacks_of(int from, Bitboard occ)
{
    return Type == KNIGHT   ? KNIGHT_ATTACKS[from]
           : Type == BISHOP ? bishop_attacks(from, occ)
           : Type == ROOK   ? rook_attacks(from, occ)
           : Type == QUEEN  ? queen_attacks(from, occ)
                            : KING_ATTACKS[from];
}

template <int Type, bool Onto_men>
MoveEntry* add_piece_moves(MoveEntry* list, const Position* pos, int side, Bitboard targets)
{
    Bitboard men = pos->pieces[side][Type];
    Bitboard occ = occupancy(pos);
    while (men) {
        int from = pop_lsb(men);
        list = add_targets<Onto_men>(list, pos, from, attacks_of<Type>(from, occ) & targets);
    }
    return list;
}

// Pawn captures (en passant included when its square is in `mask`) of every
// target on ranks 2..7: towards the a-file first, then towards the h-file.
inline MoveEntry* add_pawn_captures(MoveEntry* list, const Position* pos, int side, Bitboard targets, Bitboard mask)
{
    // An absent en-passant square (64) shifts to bit 0, which the rank mask drops.
    Bitboard pawn_targets = (targets | (bit(pos->ep_square & 63) & mask)) & INNER_RANKS;
    Bitboard pawns = pos->pieces[side][PAWN];
    int piece = piece_code(PAWN, side);
    if (side == WHITE) {
        list = add_pawn_targets<true>(list, pos, piece, (pawns << 7) & ~FILE_H & pawn_targets, 7);
        return add_pawn_targets<true>(list, pos, piece, (pawns << 9) & ~FILE_A & pawn_targets, 9);
    }
    list = add_pawn_targets<true>(list, pos, piece, (pawns >> 9) & ~FILE_H & pawn_targets, -9);
    return add_pawn_targets<true>(list, pos, piece, (pawns >> 7) & ~FILE_A & pawn_targets, -7);
}

// Single steps short of the last rank, then double steps, onto targets.
inline MoveEntry* add_pawn_pushes(MoveEntry* list, const Position* pos, int side, Bitboard targets, Bitboard empty)
{
    Bitboard pawns = pos->pieces[side][PAWN];
    int piece = piece_code(PAWN, side);
    if (side == WHITE) {
        list = add_pawn_targets<false>(list, pos, piece, (pawns << 8) & targets & INNER_RANKS, 8);
        Bitboard hop = ((pawns & rank_mask(1)) << 8) & empty;
        return add_pawn_targets<false>(list, pos, piece, (hop << 8) & targets & rank_mask(3), 16);
    }
    list = add_pawn_targets<false>(list, pos, piece, (pawns >> 8) & targets & INNER_RANKS, -8);
    Bitboard hop = ((pawns & rank_mask(6)) >> 8) & empty;
    return add_pawn_targets<false>(list, pos, piece, (hop >> 8) & targets & rank_mask(4), -16);
}

// King side, then queen side, onto squares of `mask`; the attack tests are
// the legality test's.
// Chess960: every square king and rook pass or land on, but their own,
// must be empty. The move is written king takes rook.
bool castling_path_clear_960(const Position* pos, int side, int right, Bitboard occ)
{
    int king = pos->castle_king[side], rook = pos->castle_rook[right];
    bool king_side = rook > king;
    int king_to = castle_king_target(side, king_side), rook_to = castle_rook_target(side, king_side);
    Bitboard path = BETWEEN[king][king_to] | bit(king_to) | BETWEEN[rook][rook_to] | bit(rook_to);
    return !(path & occ & ~bit(king) & ~bit(rook));
}

MoveEntry* add_castling_960(MoveEntry* list, const Position* pos, int side, Bitboard occ, Bitboard mask)
{
    int from = pos->king_square[side];
    if (from != pos->castle_king[side])
        return list;
    for (int right = 2 * side; right < 2 * side + 2; right++) {
        if (!(pos->castling & (1 << right)) || !castling_path_clear_960(pos, side, right, occ))
            continue;
        int rook = pos->castle_rook[right];
        if (pos->board[rook] == piece_code(ROOK, side) && (mask & bit(castle_king_target(side, rook > from))))
            list = put(list, from << 8 | rook, pos->board[from], 0);
    }
    return list;
}

inline MoveEntry* add_castling(MoveEntry* list, const Position* pos, int side, Bitboard occ, Bitboard mask)
{
    if (pos->chess960)
        return add_castling_960(list, pos, side, occ, mask);
    int from = pos->king_square[side];
    if (from == KING_START[side]) {
        int king = pos->board[from];
        if ((pos->castling & (1 << (2 * side))) && !(occ & (bit(from + 1) | bit(from + 2))) && (mask & bit(from + 2)))
            list = put(list, from << 8 | (from + 2), king, 0);
        if ((pos->castling & (2 << (2 * side))) && !(occ & (bit(from - 1) | bit(from - 2) | bit(from - 3)))
            && (mask & bit(from - 2)))
            list = put(list, from << 8 | (from - 2), king, 0);
    }
    return list;
}

inline MoveEntry* add_promotion(MoveEntry* list, int from, int to, int piece, int captured, bool all_pieces)
{
    int code = from << 8 | to;
    list = put(list, code | PROMO_QUEEN, piece, captured);
    if (all_pieces) {
        list = put(list, code | PROMO_KNIGHT, piece, captured);
        list = put(list, code | PROMO_BISHOP, piece, captured);
        list = put(list, code | PROMO_ROOK, piece, captured);
    }
    return list;
}

// The men's targets of one piece kind, kept from the captures for the quiet moves.
template <int Type>
inline MoveEntry* add_captures_keeping(MoveEntry* list, const Position* pos, int side, Bitboard occ, Bitboard targets,
                                       Bitboard* reach, uint8_t* from_sq, int& n)
{
    Bitboard men = pos->pieces[side][Type];
    while (men) {
        int from = pop_lsb(men);
        Bitboard att = attacks_of<Type>(from, occ);
        reach[n] = att;
        from_sq[n++] = uint8_t(from);
        list = add_targets<true>(list, pos, from, att & targets);
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
    list = add_pawn_captures(list, pos, side, targets, mask);
    list = add_piece_moves<KNIGHT, true>(list, pos, side, targets);
    list = add_piece_moves<BISHOP, true>(list, pos, side, targets);
    list = add_piece_moves<ROOK, true>(list, pos, side, targets);
    list = add_piece_moves<QUEEN, true>(list, pos, side, targets);
    return add_piece_moves<KING, true>(list, pos, side, enemy & mask);
}

MoveEntry* promotions_into(const Position* pos, int side, bool all_pieces, MoveEntry* list, Bitboard mask)
{
    Bitboard pawns = pos->pieces[side][PAWN] & SEVENTH_RANK[side];
    Bitboard enemy = pos->pieces[side ^ 1][0] & mask;
    Bitboard occ = occupancy(pos);
    int step = PAWN_STEP[side];
    int piece = piece_code(PAWN, side);
    // Captures towards the a-file are step - 1, towards the h-file step + 1.
    while (pawns) {
        int from = pop_lsb(pawns);
        int to = from + step;
        if (!(occ & bit(to)) && (mask & bit(to)))
            list = add_promotion(list, from, to, piece, 0, all_pieces);
        if (file_of(from) != 0 && (enemy & bit(to - 1)))
            list = add_promotion(list, from, to - 1, piece, pos->board[to - 1], all_pieces);
        if (file_of(from) != 7 && (enemy & bit(to + 1)))
            list = add_promotion(list, from, to + 1, piece, pos->board[to + 1], all_pieces);
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
    list = add_pawn_pushes(list, pos, side, targets, empty);
    list = add_piece_moves<KNIGHT, false>(list, pos, side, targets);
    list = add_piece_moves<BISHOP, false>(list, pos, side, targets);
    list = add_piece_moves<ROOK, false>(list, pos, side, targets);
    list = add_piece_moves<QUEEN, false>(list, pos, side, targets);
    list = add_piece_moves<KING, false>(list, pos, side, empty & mask);
    return add_castling(list, pos, side, occ, mask);
}

} // namespace

MoveEntry* gen_pseudo_legal(const Position* pos, int side, MoveEntry* list, int checker)
{
    Bitboard occ = occupancy(pos);
    Bitboard empty = ~occ;
    Bitboard enemy = pos->pieces[side ^ 1][0];
    Bitboard targets = checker == NO_SQUARE ? enemy : bit(checker);
    // Each man's attacks are worked out once, for its captures, and kept for
    // its quiet moves: at most fifteen men besides the king.
    Bitboard reach[16];
    uint8_t from_sq[16];
    int n = 0;
    list = add_pawn_captures(list, pos, side, targets, ~Bitboard(0));
    list = add_captures_keeping<KNIGHT>(list, pos, side, occ, targets, reach, from_sq, n);
    list = add_captures_keeping<BISHOP>(list, pos, side, occ, targets, reach, from_sq, n);
    list = add_captures_keeping<ROOK>(list, pos, side, occ, targets, reach, from_sq, n);
    list = add_captures_keeping<QUEEN>(list, pos, side, occ, targets, reach, from_sq, n);
    list = add_piece_moves<KING, true>(list, pos, side, enemy);

    list = gen_promotions(pos, side, true, list);

    Bitboard quiet = empty;
    if (checker != NO_SQUARE)
        quiet &= BETWEEN[checker][pos->king_square[side]];
    list = add_pawn_pushes(list, pos, side, quiet, empty);
    for (int i = 0; i < n; i++)
        list = add_targets<false>(list, pos, from_sq[i], reach[i] & quiet);
    list = add_piece_moves<KING, false>(list, pos, side, empty);
    return add_castling(list, pos, side, occ, ~Bitboard(0));
}

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
    list = gen_pseudo_legal(pos, pos->side, list, NO_SQUARE);
    list->move = MOVE_END;
    return list;
}

MoveEntry* gen_all_to(const Position* pos, Bitboard mask, MoveEntry* list)
{
    list = captures_into(pos, pos->side, list, NO_SQUARE, mask);
    list = promotions_into(pos, pos->side, true, list, mask);
    list = quiets_into(pos, pos->side, list, NO_SQUARE, mask);
    list->move = MOVE_END;
    return list;
}

namespace
{

// Castling as the generator offers it: the right is still held, the king and
// the rook stand on their squares and every square between them is empty.
// Attacks are the legality test's business. A stored move (a book entry
// whose key collided, a hash move) must pass every one of these, or the
// engine could castle through a knight or without the right.
bool castling_could_be_generated(const Position* pos, int side, int from, int to)
{
    if (pos->chess960) {
        if (from != pos->castle_king[side] || pos->board[to] != piece_code(ROOK, side))
            return false;
        for (int right = 2 * side; right < 2 * side + 2; right++)
            if ((pos->castling & (1 << right)) && pos->castle_rook[right] == to)
                return castling_path_clear_960(pos, side, right, occupancy(pos));
        return false;
    }
    if (from != KING_START[side])
        return false;
    int rook = piece_code(ROOK, side);
    Bitboard occ = occupancy(pos);
    if (to == from + 2)
        return (pos->castling & (CASTLE_WHITE_KING << (2 * side))) && pos->board[from + 3] == rook
               && !(occ & (bit(from + 1) | bit(from + 2)));
    if (to == from - 2)
        return (pos->castling & (CASTLE_WHITE_QUEEN << (2 * side))) && pos->board[from - 4] == rook
               && !(occ & (bit(from - 1) | bit(from - 2) | bit(from - 3)));
    return false;
}

} // namespace

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
    if (pos->chess960 && type == KING && target == piece_code(ROOK, side))
        return castling_could_be_generated(pos, side, from, to);
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
    case KING:
        return (KING_ATTACKS[from] & bit(to)) || castling_could_be_generated(pos, side, from, to);
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
    list = add_pawn_pushes(list, pos, side, pawn_squares, empty);
    list = add_piece_moves<KNIGHT, false>(list, pos, side, KNIGHT_ATTACKS[ek] & empty);
    Bitboard diagonal = bishop_attacks(ek, occ) & empty, straight = rook_attacks(ek, occ) & empty;
    list = add_piece_moves<BISHOP, false>(list, pos, side, diagonal);
    list = add_piece_moves<ROOK, false>(list, pos, side, straight);
    return add_piece_moves<QUEEN, false>(list, pos, side, diagonal | straight);
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
