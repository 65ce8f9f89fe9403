// Legality of pseudo-legal moves, decided without making them.
#pragma once

#include "board/position.h"

// 1 if the move of `side` leaves its king unattacked (for castling: the king
// does not start on, pass or land on an attacked square), else 0.
int is_legal(const Position* pos, int side, Move move);

// Per-node facts that let most moves skip the attack test: the men of the
// side to move pinned against their king, and whether that king is in check.
struct PinInfo {
    Bitboard pinned;
    uint8_t king_square;
    uint8_t in_check;
    uint8_t checker; // a checking man's square, 64 when not in check
};

PinInfo pin_info(const Position* pos, int side);

// Same answer as is_legal; a man that is not pinned can only expose its king
// when the king moves, is already in check, or an en-passant victim vanishes.
int is_legal_fast(const Position* pos, int side, Move move, const PinInfo& info);
