// Making and taking back moves, with every key and summary kept incrementally.
#pragma once

#include "board/position.h"

// `move` must be pseudo-legal for the side to move; nothing is checked.
void make_move(Position* pos, Move move);
void unmake_move(Position* pos);
void make_null(Position* pos);
void unmake_null(Position* pos);

// The key after an ordinary move, close enough to prefetch the table bucket
// early (en-passant keys and special moves are not followed exactly).
uint64_t key_after(const Position* pos, Move move);

// Piece placement with every summary kept current.
void place_piece(Position* pos, int code, int sq);
void remove_piece(Position* pos, int sq);

// The same without the keys, for the reader, which computes them from
// scratch once every man stands.
void place_piece_keyless(Position* pos, int code, int sq);
