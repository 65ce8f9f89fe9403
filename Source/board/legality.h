// Legality of pseudo-legal moves, decided without making them.
#pragma once

#include "board/bitboard.h"
#include "board/position.h"

// 1 if the move of `side` leaves its king unattacked (for castling: the king
// does not start on, pass or land on an attacked square), else 0.
int is_legal(const Position* pos, int side, Move move);

// The one test for a move that no generator produced in this position (a
// book move, a typed or stored move, a hash move shown to the user): 1 when
// it could have been generated and does not leave the mover's king attacked.
int is_legal_move(const Position* pos, Move move);

// Per-node facts that let most moves skip the attack test: the men of the
// side to move pinned against their king, and whether that king is in check.
struct PinInfo {
    Bitboard pinned;
    Bitboard checkers;
    Bitboard careful; // men whose moves need a closer look: pinned men and the king, everyone in check
    uint8_t king_square;
    uint8_t in_check;
    uint8_t checker; // a checking man's square, 64 when not in check
};

PinInfo pin_info(const Position* pos, int side);

// The same for a side known not to be in check: the checkers are not looked for.
PinInfo pin_info_unchecked(const Position* pos, int side);

// The closer look of is_legal_fast, for a move from a careful square or onto
// the en-passant square.
int is_legal_careful(const Position* pos, int side, Move move, const PinInfo& info);

// Same answer as is_legal; a man that is not pinned can only expose its king
// when the king moves, is already in check, or an en-passant victim vanishes.
inline int is_legal_fast(const Position* pos, int side, Move move, const PinInfo& info)
{
    if (!(info.careful & bit(move_from(move))) && move_to(move) != pos->ep_square)
        return 1;
    return is_legal_careful(pos, side, move, info);
}
