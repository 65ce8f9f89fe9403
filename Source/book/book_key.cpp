#include "book/book_key.h"

#include "board/attacks.h"
#include "book/book_random.h"

#include <cstring>

namespace
{

uint64_t man_key(int code, int sq)
{
    // The format orders kinds black pawn, white pawn, black knight, ...
    int kind = 2 * (piece_type(code) - 1) + (piece_side(code) == WHITE ? 1 : 0);
    return BOOK_RANDOM[64 * kind + sq];
}

} // namespace

uint64_t book_key_men(const Position* pos)
{
    uint64_t key = 0;
    Bitboard men = occupancy(pos);
    while (men) {
        int sq = pop_lsb(men);
        key ^= man_key(pos->board[sq], sq);
    }
    return key;
}

uint64_t book_key_state(const Position* pos)
{
    uint64_t key = 0;
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

uint64_t book_key(const Position* pos)
{
    return book_key_men(pos) ^ book_key_state(pos);
}

uint64_t book_key_men_change(const uint8_t* before, const uint8_t* after)
{
    uint64_t change = 0;
    for (int word = 0; word < 8; word++) {
        uint64_t a, b;
        std::memcpy(&a, before + 8 * word, 8);
        std::memcpy(&b, after + 8 * word, 8);
        // One bit per changed square (the lowest bit of each differing byte).
        uint64_t diff = a ^ b;
        diff = (diff | diff >> 1 | diff >> 2 | diff >> 3 | diff >> 4 | diff >> 5 | diff >> 6 | diff >> 7)
               & 0x0101010101010101ULL;
        while (diff) {
            int sq = 8 * word + lsb(diff) / 8;
            diff &= diff - 1;
            if (before[sq])
                change ^= man_key(before[sq], sq);
            if (after[sq])
                change ^= man_key(after[sq], sq);
        }
    }
    return change;
}
