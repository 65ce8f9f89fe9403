#include "board/see.h"

#include "board/attack_queries.h"

#include <algorithm>

namespace
{

// A king is never exchanged by value: taking it ends the sequence, and it may
// not step onto a defended square.
constexpr int KING_CAPTURE = 9999;

} // namespace

int swap_gain(const Position* pos, int s, int to, int target_type, Bitboard occ)
{
    int a = least_attacker(pos, to, s, occ);
    if (a == NO_SQUARE)
        return 0;
    if (target_type == KING)
        return KING_CAPTURE;
    int b = least_attacker(pos, to, s ^ 1, occ & ~bit(a));
    if (b == NO_SQUARE)
        return SEE_VALUE[target_type];
    int a_type = piece_type(pos->board[a]);
    if (a_type == KING)
        return 0;
    int back = swap_gain(pos, s, to, piece_type(pos->board[b]), occ & ~bit(a) & ~bit(b));
    int loss = std::max(SEE_VALUE[a_type] - back, 0);
    return std::max(SEE_VALUE[target_type] - loss, 0);
}

int swap(const Position* pos, int s, int from, int to)
{
    Bitboard full = occupancy(pos);
    if (from == NO_SQUARE)
        return swap_gain(pos, s, to, piece_type(pos->board[to]), full);

    int o = s ^ 1;
    int mover = piece_type(pos->board[from]);
    int captured = piece_type(pos->board[to]);
    Bitboard occ = full & ~bit(from);
    int b1 = least_attacker(pos, to, o, occ);
    if (b1 == NO_SQUARE)
        return SEE_VALUE[captured];
    if (mover == KING)
        return SEE_VALUE[captured] - KING_CAPTURE;
    int a2 = least_attacker(pos, to, s, occ & ~bit(b1));
    if (a2 == NO_SQUARE)
        return SEE_VALUE[captured] - SEE_VALUE[mover];
    int b1_type = piece_type(pos->board[b1]);
    if (b1_type == KING)
        return SEE_VALUE[captured];
    int a2_type = piece_type(pos->board[a2]);
    int gain_o = SEE_VALUE[b1_type];
    Bitboard rest = occ & ~bit(b1) & ~bit(a2);
    int b3 = least_attacker(pos, to, o, rest);
    if (b3 != NO_SQUARE) {
        int back = swap_gain(pos, s, to, piece_type(pos->board[b3]), rest & ~bit(b3));
        int term = a2_type == KING ? KING_CAPTURE : SEE_VALUE[a2_type] - back;
        gain_o = SEE_VALUE[b1_type] - std::max(term, 0);
    }
    int opp = SEE_VALUE[mover] - std::max(gain_o, 0);
    return SEE_VALUE[captured] - std::max(opp, 0);
}
