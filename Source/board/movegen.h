// Pseudo-legal move generation into caller-owned lists.
#pragma once

#include "board/position.h"

// One list entry: 6 bytes. The piece codes travel with the move so that
// ordering never has to look at the board.
struct MoveEntry {
    Move move;
    int16_t score;    // ordering score, written by the move picker
    uint8_t piece;    // code of the moving man (before promotion)
    uint8_t captured; // code on the to-square, 0 if empty (also en passant)
};
static_assert(sizeof(MoveEntry) == 6, "move list entry layout");

// Room for the longest list of one position.
constexpr int MAX_MOVES = 256;

// Captures of `side` except pawn captures onto the last rank. With a checker
// square only captures of that man (plus en passant and any king capture).
MoveEntry* gen_captures(const Position* pos, int side, MoveEntry* list, int checker);

// Promotions by push and capture; queen only unless `all_pieces`.
MoveEntry* gen_promotions(const Position* pos, int side, bool all_pieces, MoveEntry* list);

// Non-captures except promotions, with castling. With a checker square the
// men other than the king may only block the check.
MoveEntry* gen_quiets(const Position* pos, int side, MoveEntry* list, int checker);

// Captures, all four promotions and quiet moves, in that order: what the
// three generators above give one after the other, each man's attacks
// worked out once. Returns the end of the list (no end marker).
MoveEntry* gen_pseudo_legal(const Position* pos, int side, MoveEntry* list, int checker);

// Every pseudo-legal move of the side to move, ended by MOVE_END; returns the
// address of the end marker.
MoveEntry* gen_all(const Position* pos, MoveEntry* list);

// The moves of gen_all whose to-square is in `mask`, castling included.
MoveEntry* gen_all_to(const Position* pos, Bitboard mask, MoveEntry* list);

// Could `move` have been generated here for the side to move?
bool is_pseudo_legal(const Position* pos, Move move);

// Quiet moves of the side to move that check the enemy king directly (pawn
// pushes short of promotion, knights and sliders).
MoveEntry* gen_quiet_checks(const Position* pos, MoveEntry* list);

// Legal moves only (for the front end and the tools); returns the count.
int gen_legal(const Position* pos, MoveEntry* list);
