#include "book/book_key.h"

#include "board/attacks.h"
#include "book/book_random.h"

uint64_t book_key(const Position* pos)
{
    uint64_t key = 0;
    Bitboard men = occupancy(pos);
    while (men) {
        int sq = pop_lsb(men);
        int code = pos->board[sq];
        // The format orders kinds black pawn, white pawn, black knight, ...
        int kind = 2 * (piece_type(code) - 1) + (piece_side(code) == WHITE ? 1 : 0);
        key ^= BOOK_RANDOM[64 * kind + sq];
    }
    for (int right = 0; right < 4; right++)
        if (pos->castling & (1 << right))
            key ^= BOOK_RANDOM[BOOK_RANDOM_CASTLING + right];
    // An en-passant square counts only when a pawn of the side to move could
    // take there; after most double steps it could not, and the key must then
    // match the same position reached without the double step.
    int ep = pos->ep_square;
    if (ep < 64 && (PAWN_ATTACKS[pos->side ^ 1][ep] & pos->pieces[pos->side][PAWN]))
        key ^= BOOK_RANDOM[BOOK_RANDOM_EN_PASSANT + file_of(ep)];
    if (pos->side == WHITE)
        key ^= BOOK_RANDOM[BOOK_RANDOM_WHITE_TO_MOVE];
    return key;
}
