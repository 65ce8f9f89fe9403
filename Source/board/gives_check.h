// Whether a move gives check, from facts gathered once per node.
#pragma once

#include "board/position.h"

struct CheckInfo {
    Bitboard check_squares[8]; // by piece type: squares from which it would check
    Bitboard discoverers;      // own men whose leaving uncovers a slider on the enemy king
    Bitboard occ;
    int enemy_king;
};

CheckInfo check_info(const Position* pos);

// Direct and discovered checks; promotions, castling and en passant are
// worked out on the occupancy after the move.
bool gives_check(const Position* pos, Move move, const CheckInfo& ci);
