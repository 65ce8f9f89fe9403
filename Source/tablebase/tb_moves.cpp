#include "tablebase/tb_moves.h"

#include "board/attacks.h"

namespace
{

int type_at(const TbBoard* b, int sq)
{
    for (int t = PAWN; t <= KING; t++)
        if (b->type[t] & bit(sq))
            return t;
    return EMPTY;
}

Bitboard attacks_from(int type, int sq, int side, Bitboard occ)
{
    switch (type) {
    case PAWN:
        return PAWN_ATTACKS[side][sq];
    case KNIGHT:
        return KNIGHT_ATTACKS[sq];
    case BISHOP:
        return bishop_attacks(sq, occ);
    case ROOK:
        return rook_attacks(sq, occ);
    case QUEEN:
        return queen_attacks(sq, occ);
    default:
        return KING_ATTACKS[sq];
    }
}

// Would the side to move's king stand attacked after the man on `from`
// goes to `to` and the man on `victim` (if any) leaves the board?
bool king_safe_after(const TbBoard* b, int from, int to, int victim)
{
    int us = b->stm, them = us ^ 1;
    Bitboard removed = bit(victim);
    Bitboard occ = ((b->side[WHITE] | b->side[BLACK]) & ~bit(from) & ~removed) | bit(to);
    Bitboard king = tb_men(b, us, KING);
    if (!king)
        return false;
    int ksq = (king & bit(from)) ? to : lsb(king);
    Bitboard enemy = b->side[them] & ~removed;
    Bitboard diagonal = (b->type[BISHOP] | b->type[QUEEN]) & enemy;
    Bitboard straight = (b->type[ROOK] | b->type[QUEEN]) & enemy;
    return !((PAWN_ATTACKS[us][ksq] & b->type[PAWN] & enemy) || (KNIGHT_ATTACKS[ksq] & b->type[KNIGHT] & enemy)
             || (KING_ATTACKS[ksq] & b->type[KING] & enemy) || (bishop_attacks(ksq, occ) & diagonal)
             || (rook_attacks(ksq, occ) & straight));
}

inline bool promotes(int side, int to)
{
    return rank_of(to) == (side == WHITE ? 7 : 0);
}

int add_capture(TbMove* list, int n, int from, int to, int victim, bool promotion)
{
    static constexpr uint8_t PIECES[4] = {QUEEN, ROOK, BISHOP, KNIGHT};
    for (int i = 0; i < (promotion ? 4 : 1) && n < TB_MAX_CAPTURES; i++)
        list[n++] = TbMove{uint8_t(from), uint8_t(to), uint8_t(victim), uint8_t(promotion ? PIECES[i] : 0)};
    return n;
}

} // namespace

int tb_legal_captures(const TbBoard* b, TbMove* list)
{
    int us = b->stm, them = us ^ 1;
    Bitboard occ = b->side[WHITE] | b->side[BLACK];
    Bitboard prey = b->side[them] & ~b->type[KING];
    int n = 0;
    for (Bitboard own = b->side[us]; own;) {
        int from = pop_lsb(own);
        int type = type_at(b, from);
        for (Bitboard to = attacks_from(type, from, us, occ) & prey; to;) {
            int sq = pop_lsb(to);
            if (king_safe_after(b, from, sq, sq))
                n = add_capture(list, n, from, sq, sq, type == PAWN && promotes(us, sq));
        }
        if (type == PAWN && b->ep < 64 && (PAWN_ATTACKS[us][from] & bit(b->ep))) {
            int victim = b->ep - PAWN_STEP[us];
            if ((tb_men(b, them, PAWN) & bit(victim)) && !(occ & bit(b->ep)) && king_safe_after(b, from, b->ep, victim))
                n = add_capture(list, n, from, b->ep, victim, false);
        }
    }
    return n;
}

bool tb_has_quiet_move(const TbBoard* b)
{
    int us = b->stm;
    Bitboard occ = b->side[WHITE] | b->side[BLACK];
    // The king first: it is the man most likely to have a free square.
    Bitboard own = b->side[us];
    Bitboard order[2] = {own & b->type[KING], own & ~b->type[KING]};
    for (Bitboard men : order)
        while (men) {
            int from = pop_lsb(men);
            int type = type_at(b, from);
            Bitboard targets;
            if (type == PAWN) {
                int step = PAWN_STEP[us], one = from + step;
                targets = 0;
                if (one >= 0 && one < 64 && !(occ & bit(one))) {
                    targets = bit(one);
                    int home_rank = us == WHITE ? 1 : 6;
                    if (rank_of(from) == home_rank && !(occ & bit(one + step)))
                        targets |= bit(one + step);
                }
            } else {
                targets = attacks_from(type, from, us, occ) & ~occ;
            }
            while (targets) {
                int to = pop_lsb(targets);
                if (king_safe_after(b, from, to, to))
                    return true;
            }
        }
    return false;
}

TbBoard tb_after(const TbBoard* b, const TbMove& m)
{
    TbBoard c = *b;
    int us = b->stm, them = us ^ 1;
    int moving = type_at(b, m.from);
    int taken = type_at(b, m.victim);
    c.side[them] &= ~bit(m.victim);
    c.type[taken] &= ~bit(m.victim);
    c.side[us] ^= bit(m.from) | bit(m.to);
    c.type[moving] &= ~bit(m.from);
    c.type[m.promotion ? m.promotion : moving] |= bit(m.to);
    c.ep = NO_SQUARE;
    c.stm = uint8_t(them);
    return c;
}
